// Turns, moves and zooms the camera of the picture by mouse, touch, wheel and keys.

import { pannedCamera, turnedCamera, zoomedCamera } from './camera.js';

const DEGREES_OF_PIXEL = 0.5;
const DEGREES_OF_KEY = 5;
const PAN_OF_KEY = 0.05; // heights of the picture
const ZOOM_OF_KEY = 1.15;
const ZOOM_OF_WHEEL = 0.0015; // exponent for one pixel
const PIXELS_OF_LINE = 16;

// Degrees; as `dravo draw --view` names them.
export const NAMED_VIEWS = {
  x: { azimuth: 0, elevation: 0 }, y: { azimuth: 90, elevation: 0 }, z: { azimuth: -90, elevation: 90 } };

const ARROWS = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };

// By pixels to the right and downwards, as if the picture were held there.
function dragged(camera, dx, dy, degrees) {
  return turnedCamera(camera, camera.azimuth - degrees * dx, camera.elevation + degrees * dy);
}

// The camera after a key; null for a key that means nothing here.
export function cameraAfterKey(camera, key, withShift) {
  if (key.startsWith('Arrow')) {
    const [dx, dy] = ARROWS[key];
    return withShift ? pannedCamera(camera, PAN_OF_KEY * dx, PAN_OF_KEY * dy)
      : dragged(camera, dx, dy, DEGREES_OF_KEY);
  }
  if (key === '+' || key === '=') return zoomedCamera(camera, ZOOM_OF_KEY, [0, 0]);
  if (key === '-' || key === '_') return zoomedCamera(camera, 1 / ZOOM_OF_KEY, [0, 0]);
  const named = key.length === 1 && NAMED_VIEWS[key.toLowerCase()];
  return named ? turnedCamera(camera, named.azimuth, named.elevation) : null;
}

function middleOf(points) {
  return [0, 1].map((k) => points.reduce((total, point) => total + point[k], 0) / points.length);
}

function spreadOf(points) {
  if (points.length < 2) return 1;
  return Math.max(1, Math.hypot(points[0][0] - points[1][0], points[0][1] - points[1][1]));
}

// What one finger or mouse, or two fingers, did: their points before and after, in a picture of this size.
export function cameraAfterMove(camera, before, after, isPanning, size) {
  const from = middleOf(before), to = middleOf(after);
  const dx = to[0] - from[0], dy = to[1] - from[1];
  if (after.length < 2 && !isPanning) return dragged(camera, dx, dy, DEGREES_OF_PIXEL);
  const panned = pannedCamera(camera, dx / size.height, dy / size.height);
  const place = [(to[0] - size.width / 2) / size.height, (to[1] - size.height / 2) / size.height];
  return zoomedCamera(panned, spreadOf(after) / spreadOf(before), place);
}

// camera(): the one that is. Called are change(camera), reset(), first() (to look from where the page
// began), and rest() when the hand is off.
export function listenToView(canvas, { camera, change, reset, first, rest }) {
  const pointers = new Map();
  let isPanning = false;
  const pointOf = (event) => [event.offsetX, event.offsetY];
  const size = () => ({ width: canvas.clientWidth, height: canvas.clientHeight });

  canvas.addEventListener('pointerdown', (event) => {
    canvas.setPointerCapture(event.pointerId);
    pointers.set(event.pointerId, pointOf(event));
    isPanning = event.button !== 0 || event.shiftKey;
    canvas.classList.add('held');
  });
  canvas.addEventListener('pointermove', (event) => {
    if (!pointers.has(event.pointerId)) return;
    const before = [...pointers.values()].slice(0, 2);
    pointers.set(event.pointerId, pointOf(event));
    change(cameraAfterMove(camera(), before, [...pointers.values()].slice(0, 2), isPanning, size()));
  });
  const release = (event) => {
    if (!pointers.delete(event.pointerId) || pointers.size > 0) return;
    canvas.classList.remove('held');
    rest();
  };
  canvas.addEventListener('pointerup', release);
  canvas.addEventListener('pointercancel', release);
  canvas.addEventListener('contextmenu', (event) => event.preventDefault());

  canvas.addEventListener('wheel', (event) => {
    event.preventDefault();
    const pixels = event.deltaY * (event.deltaMode === 0 ? 1 : PIXELS_OF_LINE);
    const { width, height } = size();
    const place = [(event.offsetX - width / 2) / height, (event.offsetY - height / 2) / height];
    change(zoomedCamera(camera(), Math.exp(-ZOOM_OF_WHEEL * pixels), place));
  }, { passive: false });

  canvas.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const act = { 0: reset, Home: reset, i: first, I: first }[event.key];
    const moved = act ? null : cameraAfterKey(camera(), event.key, event.shiftKey);
    if (!act && moved === null) return;
    event.preventDefault();
    if (act) act();
    else change(moved);
  });
}
