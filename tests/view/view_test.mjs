// Turning, zooming and moving the view.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { cameraAt, isAtRest, pannedCamera, paperOf, sphereAround, turnedCamera } from '../../view/camera.js';
import { widenedCamera, zoomedCamera } from '../../view/camera.js';
import { dot } from '../../view/geometry.js';
import { cameraAfterKey, cameraAfterMove } from '../../view/view.js';

const POINTS = [[0, 0, 0], [4, 0, 0], [0, 3, 1], [-1, -2, 5]];
const CAMERA = cameraAt({ azimuth: 35, elevation: 20 }, POINTS);
const WIDTH = 800, HEIGHT = 600;

function seen(camera, point) {
  const { rows, scale, origin } = paperOf(camera, WIDTH, HEIGHT);
  return [origin[0] + scale * dot(rows[0], point), origin[1] - scale * dot(rows[1], point)];
}

// Of its room: the words, 600 / 36 pixels high, take 3.2 of that at the left and right, 1.4 above and below.
function partFilled(camera) {
  const font = HEIGHT / 36;
  const places = POINTS.map((point) => seen(camera, point));
  return Math.max(
    ...places.map(([x]) => Math.abs(x - WIDTH / 2) / (WIDTH / 2 - 3.2 * font)),
    ...places.map(([, y]) => Math.abs(y - HEIGHT / 2) / (HEIGHT / 2 - 1.4 * font)));
}

test('all points are in the picture, with room for words, from everywhere', () => {
  let camera = CAMERA;
  for (let azimuth = -180; azimuth < 180; azimuth += 20)
    for (let elevation = -90; elevation <= 90; elevation += 30) {
      camera = widenedCamera(turnedCamera(camera, azimuth, elevation), POINTS);
      assert.ok(partFilled(camera) < 1);
    }
});

test('what is seen first fills the picture, also where it is long and turned towards who looks', () => {
  for (const view of [{ azimuth: 35, elevation: 20 }, { azimuth: 0, elevation: 0 }, { azimuth: -90, elevation: 90 }])
    assert.ok(partFilled(cameraAt(view, POINTS)) > 0.85);
});

test('a picture that turns becomes smaller where it must, and not larger', () => {
  let scale = paperOf(CAMERA, WIDTH, HEIGHT).scale, camera = CAMERA;
  for (let step = 0; step < 144; ++step) {
    camera = widenedCamera(cameraAfterKey(camera, 'ArrowRight'), POINTS);
    const next = paperOf(camera, WIDTH, HEIGHT).scale;
    assert.ok(next <= scale && next > 0.9 * scale);
    if (step >= 72) assert.equal(next, scale); // the second time round
    scale = next;
  }
  assert.ok(scale < paperOf(CAMERA, WIDTH, HEIGHT).scale);
});

test('the middle of the sphere is the middle of the picture', () => {
  seen(CAMERA, CAMERA.centre).forEach((value, k) => assert.ok(Math.abs(value - [400, 300][k]) < 1e-9));
});

test('the sphere around the corners of a cube', () => {
  const corners = [0, 1, 2, 3, 4, 5, 6, 7].map((k) => [k & 1, (k >> 1) & 1, k >> 2].map((bit) => 10 * bit));
  const { centre, radius } = sphereAround(corners);
  centre.forEach((value) => assert.ok(Math.abs(value - 5) < 0.5));
  assert.ok(radius >= 5 * Math.sqrt(3) && radius < 1.1 * 5 * Math.sqrt(3) + 0.4);
});

test('the elevation stays between the poles and the azimuth within a turn', () => {
  assert.equal(turnedCamera(CAMERA, 0, 100).elevation, 90);
  assert.equal(turnedCamera(CAMERA, 0, -100).elevation, -90);
  assert.equal(turnedCamera(CAMERA, 190, 0).azimuth, -170);
  assert.equal(turnedCamera(CAMERA, -190, 0).azimuth, 170);
});

test('zooming leaves what is under the pointer where it is', () => {
  const place = [0.25, -0.1], pixel = [400 + 0.25 * HEIGHT, 300 - 0.1 * HEIGHT];
  const zoomed = zoomedCamera(CAMERA, 1.7, place);
  const before = paperOf(CAMERA, WIDTH, HEIGHT), after = paperOf(zoomed, WIDTH, HEIGHT);
  for (const k of [0, 1]) {
    const there = (pixel[k] - before.origin[k]) / before.scale;
    assert.ok(Math.abs(after.origin[k] + after.scale * there - pixel[k]) < 1e-9);
  }
  assert.ok(Math.abs(after.scale / before.scale - 1.7) < 1e-12);
  assert.equal(zoomedCamera(CAMERA, 1e9, place).zoom, zoomedCamera(CAMERA, 1e6, place).zoom);
});

test('keys', () => {
  const after = (key, withShift) => cameraAfterKey(CAMERA, key, withShift);
  assert.deepEqual([after('ArrowRight').azimuth, after('ArrowLeft').azimuth], [30, 40]);
  assert.deepEqual([after('ArrowUp').elevation, after('ArrowDown').elevation], [15, 25]);
  assert.ok(after('+').zoom > 1 && after('-').zoom < 1);
  assert.ok(after('ArrowRight', true).pan[0] > 0 && after('ArrowDown', true).pan[1] > 0);
  assert.deepEqual([after('z').azimuth, after('Z').elevation], [-90, 90]);
  assert.equal(after('Tab'), null);
  assert.equal(after('constructor'), null);
});

test('what is turned by the arrow to the right goes to the right', () => {
  // A point before the middle, towards who looks.
  const { rows } = paperOf(CAMERA, WIDTH, HEIGHT);
  const before = CAMERA.centre.map((value, k) => value + rows[2][k]);
  assert.ok(seen(cameraAfterKey(CAMERA, 'ArrowRight'), before)[0] > seen(CAMERA, before)[0]);
  assert.ok(seen(cameraAfterKey(CAMERA, 'ArrowDown'), before)[1] > seen(CAMERA, before)[1]);
});

test('the view widens for what leaves it, unless somebody has zoomed', () => {
  const far = [[0, 0, 0], [30, 0, 0]];
  assert.deepEqual(widenedCamera(CAMERA, POINTS), CAMERA);
  assert.ok(widenedCamera(CAMERA, far).radius >= 15);
  assert.ok(widenedCamera(CAMERA, far).reach[0] > 2 * CAMERA.reach[0]);
  const zoomed = zoomedCamera(CAMERA, 2, [0, 0]);
  assert.equal(widenedCamera(zoomed, far), zoomed);
  assert.ok(isAtRest(CAMERA) && !isAtRest(zoomed) && !isAtRest(pannedCamera(CAMERA, 0.1, 0)));
});

test('one finger turns, two fingers zoom and move', () => {
  const size = { width: WIDTH, height: HEIGHT };
  const turned = cameraAfterMove(CAMERA, [[100, 100]], [[110, 96]], false, size);
  assert.deepEqual([turned.azimuth, turned.elevation], [30, 18]);
  const moved = cameraAfterMove(CAMERA, [[100, 100]], [[160, 130]], true, size);
  assert.deepEqual([moved.azimuth, moved.zoom], [35, 1]);
  moved.pan.forEach((value, k) => assert.ok(Math.abs(value - [0.1, 0.05][k]) < 1e-12));
  // Fingers that were 100 pixels apart around (300, 200) are 200 pixels apart around (320, 230).
  const zoomed = cameraAfterMove(CAMERA, [[250, 200], [350, 200]], [[220, 230], [420, 230]], false, size);
  assert.equal(zoomed.zoom, 2);
  const before = paperOf(CAMERA, WIDTH, HEIGHT), after = paperOf(zoomed, WIDTH, HEIGHT);
  const between = [300, 200].map((pixel, k) => (pixel - before.origin[k]) / before.scale);
  between.forEach((there, k) =>
    assert.ok(Math.abs(after.origin[k] + after.scale * there - [320, 230][k]) < 1e-9));
});
