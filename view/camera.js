// From where the picture is seen: it does not jump while the view or a molecule turns.
//
// A camera is { azimuth, elevation, zoom, pan, centre, radius, reach }: degrees; pan in heights of the
// picture; a sphere around what is seen; how far to the right and upwards from its centre the picture
// reaches at zoom 1. The last three are in Angstrom.

import { difference, dot, modulus, scaled, sum } from './geometry.js';
import { fontOf, roomWithin, viewRows } from './projection.js';

const SMALLEST_ZOOM = 0.1, LARGEST_ZOOM = 20;
const MARGIN_OF_SPHERE = 0.3; // Angstrom
const SMALLEST_RADIUS = 2, SMALLEST_REACH = 1.5;
const STEPS_OF_SPHERE = 40;

const LARGEST_FONT_OF_SCREEN = 18; // pixels

// A sphere around these points, hardly larger than the smallest: its centre goes towards the point that
// is farthest, by less and less.
export function sphereAround(points) {
  let centre = points[0];
  const farthest = () => points.reduce((found, point) => {
    const distance = modulus(difference(point, centre));
    return distance > found.distance ? { point, distance } : found;
  }, { point: centre, distance: 0 });
  for (let k = 2; k < STEPS_OF_SPHERE; ++k)
    centre = sum(centre, scaled(1 / k, difference(farthest().point, centre)));
  return { centre, radius: Math.max(farthest().distance + MARGIN_OF_SPHERE, SMALLEST_RADIUS) };
}

// How far these points reach from a centre, as they are seen: to the right or left, up or down.
function reachOf(points, centre, rows) {
  const reach = [SMALLEST_REACH, SMALLEST_REACH];
  for (const point of points) {
    const from = difference(point, centre);
    for (const k of [0, 1]) reach[k] = Math.max(reach[k], Math.abs(dot(rows[k], from)) + MARGIN_OF_SPHERE);
  }
  return reach;
}

// From the direction of a view { azimuth, elevation }, filled by points that shall be seen.
export function cameraAt(view, points) {
  const { azimuth, elevation } = view;
  const sphere = sphereAround(points);
  return Object.assign({ azimuth, elevation, zoom: 1, pan: [0, 0] }, sphere,
    { reach: reachOf(points, sphere.centre, viewRows(view)) });
}

// Moved where a point has left its sphere, and widened where one would leave the picture: so it becomes
// smaller in the course of a turn, but not larger and smaller again. What somebody has zoomed stays.
export function widenedCamera(camera, points) {
  if (!isAtRest(camera)) return camera;
  const isInside = (point) => modulus(difference(point, camera.centre)) <= camera.radius;
  const sphere = points.every(isInside) ? camera : sphereAround(points);
  const reach = reachOf(points, sphere.centre, viewRows(camera));
  return Object.assign({}, camera, {
    centre: sphere.centre, radius: Math.max(sphere.radius, camera.radius),
    reach: reach.map((value, k) => Math.max(value, camera.reach[k])) });
}

// An azimuth stays from -180 to below 180.
export function turnedCamera(camera, azimuth, elevation) {
  const turns = Math.floor((azimuth + 180) / 360);
  return Object.assign({}, camera, {
    azimuth: azimuth - 360 * turns, elevation: Math.min(Math.max(elevation, -90), 90) });
}

// So that what is at a place, in heights of the picture from its middle, stays there.
export function zoomedCamera(camera, factor, place) {
  const zoom = Math.min(Math.max(camera.zoom * factor, SMALLEST_ZOOM), LARGEST_ZOOM);
  const pan = camera.pan.map((value, k) => place[k] + (zoom / camera.zoom) * (value - place[k]));
  return Object.assign({}, camera, { zoom, pan });
}

export function pannedCamera(camera, dx, dy) {
  return Object.assign({}, camera, { pan: [camera.pan[0] + dx, camera.pan[1] + dy] });
}

export function isAtRest(camera) {
  return camera.zoom === 1 && camera.pan[0] === 0 && camera.pan[1] === 0;
}

// As `fittedPaper`, for a picture of this size in pixels.
export function paperOf(camera, width, height) {
  const rows = viewRows(camera);
  const font = Math.min(fontOf(height), LARGEST_FONT_OF_SCREEN);
  const room = roomWithin(width, height, font);
  const scale = camera.zoom * 0.5 * Math.min(room[0] / camera.reach[0], room[1] / camera.reach[1]);
  const origin = [
    0.5 * width + camera.pan[0] * height - scale * dot(rows[0], camera.centre),
    0.5 * height + camera.pan[1] * height + scale * dot(rows[1], camera.centre)];
  return { rows, scale, origin, font };
}
