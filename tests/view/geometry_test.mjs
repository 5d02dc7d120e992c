// Where a pose puts molecule 1, against the rules of the documentation and arithmetic by hand.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import * as geometry from '../../view/geometry.js';
import { makeRandom } from './random.mjs';

const { complaintAbout, cross, dot, foldedTurn, modulus, movedAtoms, ownAtoms, withFoldedAzimuths } = geometry;

function near(found, expected, limit = 1e-12) {
  found.forEach((value, k) =>
    assert.ok(Math.abs(value - expected[k]) < limit, `${found} is not ${expected}`));
}

function pose(values) {
  return Object.assign({ r: 0, theta: 0, phi: 0, alpha: 0, beta: 0, gamma: 0 }, values);
}

const AXIS = { X: [1, 0, 0], Y: [0, 1, 0], Z: [0, 0, 1] };

test('the page of conventions tells where z points', () => {
  const minus = (v) => v.map((value) => -value);
  const rows = [[0, 0, AXIS.Z], [0, 77, AXIS.Z], [180, 0, minus(AXIS.Z)], [180, 200, minus(AXIS.Z)],
    [90, 180, AXIS.X], [90, 90, AXIS.Y], [90, 0, minus(AXIS.X)], [90, 270, minus(AXIS.Y)]];
  for (const alpha of [0, 41])
    for (const [beta, gamma, direction] of rows)
      near(movedAtoms([AXIS.Z], pose({ alpha, beta, gamma }))[0], direction);
});

test('z points away from molecule 2, and towards it', () => {
  const theta = 50, phi = 200;
  const place = movedAtoms([[0, 0, 0]], pose({ r: 1, theta, phi }))[0];
  const away = pose({ beta: theta, gamma: 180 - phi + 360 });
  const towards = pose({ beta: 180 - theta, gamma: 360 - phi });
  near(movedAtoms([AXIS.Z], away)[0], place);
  near(movedAtoms([AXIS.Z], towards)[0], place.map((value) => -value));
});

test('only the sum, or the difference, of alpha and gamma counts at the poles', () => {
  for (const [beta, other] of [[0, 50], [180, -10]]) {
    const one = pose({ alpha: 20, beta, gamma: 30 }), two = pose({ alpha: other, beta });
    for (const axis of Object.values(AXIS)) near(movedAtoms([axis], one)[0], movedAtoms([axis], two)[0]);
  }
});

test('turns by -alpha about Z, -beta about Y, -gamma about Z, anticlockwise', () => {
  // A turn by -90 degrees about Z takes X to -Y and Y to X; one about Y takes Z to -X and X to Z.
  near(movedAtoms([AXIS.X], pose({ alpha: 90 }))[0], [0, -1, 0]);
  near(movedAtoms([AXIS.Y], pose({ gamma: 90 }))[0], [1, 0, 0]);
  near(movedAtoms([AXIS.X], pose({ beta: 90 }))[0], [0, 0, 1]);
  // X to -Y by alpha, which beta leaves, and -Y to -X by gamma.
  near(movedAtoms([AXIS.X], pose({ alpha: 90, beta: 90, gamma: 90 }))[0], [-1, 0, 0]);
});

test('the centre of molecule 1 is at r, theta, phi', () => {
  near(movedAtoms([[0, 0, 0]], pose({ r: 2 }))[0], [0, 0, 2]);
  near(movedAtoms([[0, 0, 0]], pose({ r: 2, theta: 90 }))[0], [2, 0, 0]);
  near(movedAtoms([[0, 0, 0]], pose({ r: 2, theta: 90, phi: 270 }))[0], [0, -2, 0]);
  const half = Math.SQRT2;
  near(movedAtoms([[0, 0, 0]], pose({ r: 2, theta: 45, phi: 180 }))[0], [-half, 0, half]);
});

test('molecule 1 stays rigid and is not mirrored, and the way back is exact', () => {
  const random = makeRandom();
  for (let k = 0; k < 100; ++k) {
    const where = pose({ r: 9 * random(), theta: 180 * random(), phi: 360 * random(),
      alpha: 360 * random(), beta: 180 * random(), gamma: 360 * random() });
    const own = [[0, 0, 0], ...Object.values(AXIS), [0.3, -1.7, 2.2]];
    const [centre, x, y, z, other] = movedAtoms(own, where);
    const [X, Y, Z] = [x, y, z].map((p) => geometry.difference(p, centre));
    near([modulus(X), modulus(Y), dot(X, Y), dot(cross(X, Y), Z)], [1, 1, 0, 1]);
    near(ownAtoms([other], where)[0], own[4]);
  }
});

test('periodic angles are folded, and 360 stays', () => {
  assert.equal(foldedTurn(-30), 330);
  assert.equal(foldedTurn(725), 5);
  assert.equal(foldedTurn(360), 0);
  assert.ok(Object.is(foldedTurn(-360), 0));
  assert.ok(Object.is(foldedTurn(-1e-20), 0));
  const folded = withFoldedAzimuths({ r: 3, theta: 90, phi: -30, alpha: 360.3, beta: 180, gamma: 360 });
  assert.deepEqual(folded, { r: 3, theta: 90, phi: 330, alpha: 0.3, beta: 180, gamma: 360 });
});

test('other values out of range are refused, with what means the same', () => {
  for (const [name, value] of [['r', 0], ['r', 9999.9], ['theta', 180], ['phi', -1e4], ['gamma', 1e4]])
    assert.equal(complaintAbout(name, value), '', name);
  assert.match(complaintAbout('r', -0.1), /0 to 9999\.9: a distance is not negative/);
  assert.match(complaintAbout('r', 10000), /0 to 9999\.9/);
  assert.match(complaintAbout('theta', 190), /theta 170 with phi \+ 180 is the same direction/);
  assert.match(complaintAbout('beta', -30), /beta 30 with alpha \+ 180 and gamma \+ 180 is the same/);
  assert.match(complaintAbout('beta', 400), /: beta 40 is the same orientation/);
  assert.match(complaintAbout('phi', NaN), /a number/);
  assert.match(complaintAbout('alpha', Infinity), /a number/);
});
