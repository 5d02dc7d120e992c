// Vectors, and where a pose puts molecule 1: the formulas of the program, with their order of operations.

export const RADIANS_PER_DEGREE = 0.017453292519943295;
export const DEGREES_PER_RADIAN = 57.29577951308232;

export const POSE_PARAMETERS = ['r', 'theta', 'phi', 'alpha', 'beta', 'gamma'];
export const LONGEST_DISTANCE = 9999.9;

const FULL_TURN = 360;
const AZIMUTHS = ['phi', 'alpha', 'gamma'];

// --- vectors, as arrays of three numbers ----------------------------------------------------------

export function sum(a, b) {
  return [a[0] + b[0], a[1] + b[1], a[2] + b[2]];
}

export function difference(a, b) {
  return [a[0] - b[0], a[1] - b[1], a[2] - b[2]];
}

export function scaled(factor, a) {
  return [factor * a[0], factor * a[1], factor * a[2]];
}

export function dot(a, b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

export function cross(a, b) {
  return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]];
}

export function modulus(a) {
  return Math.sqrt(dot(a, a));
}

export function product(matrix, a) {
  return [dot(matrix[0], a), dot(matrix[1], a), dot(matrix[2], a)];
}

export function transposed(matrix) {
  return [0, 1, 2].map((k) => [matrix[0][k], matrix[1][k], matrix[2][k]]);
}

// --- angles ---------------------------------------------------------------------------------------

export function isAzimuth(name) {
  return AZIMUTHS.includes(name);
}

// From 0 to below 360.
export function foldedTurn(degrees) {
  let folded = degrees % FULL_TURN;
  if (folded < 0) folded += FULL_TURN;
  return folded < FULL_TURN ? folded + 0 : 0; // no negative zero
}

// 360.3 less 360 is 0.3, not 0.30000000000001137.
function withoutTail(degrees) {
  return Math.round(degrees * 1e9) / 1e9;
}

// phi, alpha and gamma without full turns; 360 stays as it is.
export function withFoldedAzimuths(pose) {
  const folded = Object.assign({}, pose);
  for (const name of AZIMUTHS)
    if (!(folded[name] >= 0 && folded[name] <= FULL_TURN))
      folded[name] = withoutTail(foldedTurn(folded[name]));
  return folded;
}

// What is wrong with the value of a parameter; empty when nothing is.
export function complaintAbout(name, value) {
  if (!Number.isFinite(value)) return 'expected a number';
  if (isAzimuth(name)) return '';
  const highest = name === 'r' ? LONGEST_DISTANCE : FULL_TURN / 2;
  if (value >= 0 && value <= highest) return '';
  const range = `expected 0 to ${highest}`;
  if (name === 'r') return value < 0 ? `${range}: a distance is not negative` : range;
  const turn = foldedTurn(value);
  const inRange = withoutTail(turn > highest ? FULL_TURN - turn : turn);
  const others = name === 'theta' ? 'phi + 180' : 'alpha + 180 and gamma + 180';
  const same = name === 'theta' ? 'direction' : 'orientation';
  return `${range}: ${name} ${inRange}${turn > highest ? ` with ${others}` : ''} is the same ${same}`;
}

// --- poses: r in Angstrom, angles in degrees ------------------------------------------------------

export function inRadians(pose) {
  const radians = { r: pose.r };
  for (const name of POSE_PARAMETERS)
    if (name !== 'r') radians[name] = pose[name] * RADIANS_PER_DEGREE;
  return radians;
}

// Its columns are the directions of x, y and z after the turn.
export function eulerMatrix(alpha, beta, gamma) {
  const sa = Math.sin(alpha), ca = Math.cos(alpha);
  const sb = Math.sin(beta), cb = Math.cos(beta);
  const sg = Math.sin(gamma), cg = Math.cos(gamma);
  return [
    [ca * cb * cg - sa * sg, sa * cb * cg + ca * sg, -sb * cg],
    [-ca * cb * sg - sa * cg, ca * cg - sa * cb * sg, sb * sg],
    [ca * sb, sa * sb, cb],
  ];
}

// Where the centre of molecule 1 is, and how its own frame is turned.
export function relativePose(pose) {
  const { r, theta, phi, alpha, beta, gamma } = inRadians(pose);
  const direction = [
    Math.sin(theta) * Math.cos(phi), Math.sin(theta) * Math.sin(phi), Math.cos(theta)];
  return { place: scaled(r, direction), turn: eulerMatrix(alpha, beta, gamma) };
}

// Atoms of molecule 1, given in its own frame, in the frame of molecule 2.
export function movedAtoms(own, pose) {
  const { place, turn } = relativePose(pose);
  return own.map((atom) => sum(product(turn, atom), place));
}

// The other way round.
export function ownAtoms(moved, pose) {
  const { place, turn } = relativePose(pose);
  const back = transposed(turn);
  return moved.map((atom) => product(back, difference(atom, place)));
}
