// Molecule 1 goes where `dravo place` puts it, and the texts to copy are those of the program.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { moleculesOf, placedPair } from '../../view/pair.js';
import { extendedXyz, parameterBlock, placeCommand } from '../../view/texts.js';
import { frameOf, outputOf, pageData, PAIRS } from './program.mjs';
import { makeRandom } from './random.mjs';

const RANDOM_POSES = 25; // of each of the eight pairs

function wordsOf(pose) {
  return Object.entries(pose).flatMap(([name, value]) => [`--${name}`, String(value)]);
}

function randomPose(random) {
  const angle = (most) => random() * most;
  return { r: 2 + 8 * random(), theta: angle(180), phi: angle(360), alpha: angle(360), beta: angle(180),
    gamma: angle(360) };
}

// Where angles lose their meaning, and full turns.
const POLES = [
  [0, 0, 0, 0, 0], [180, 0, 0, 180, 0], [90, 360, 360, 90, 360], [0, 77, 12, 0, 200], [180, 300, 45, 180, 7],
  [90, -30, 725, 90, -360], [0.04, 0, 0.05, 179.95, 0.05], [90, 180, 270, 90, 90],
].map(([theta, phi, alpha, beta, gamma]) => ({ r: 5, theta, phi, alpha, beta, gamma }));

function withoutGivenPose(pair) {
  const end = pair.indexOf('--r');
  return end < 0 ? pair : pair.slice(0, end);
}

// How many coordinates of a frame have other digits. The program writes eight decimals, so that two
// numbers that differ by d are written alike unless a rounding limit lies between them, which happens to
// the part d / 1e-8 of all coordinates.
function differentDigits(page, program) {
  const one = frameOf(page), two = frameOf(program);
  assert.deepEqual(one.symbols, two.symbols);
  assert.equal(page.split('\n')[1], program.split('\n')[1]);
  return [].concat(...one.positions.map((position, atom) =>
    position.filter((value, k) => value !== two.positions[atom][k]))).length;
}

for (const [name, pair] of Object.entries(PAIRS))
  test(`${name} in random poses and at the poles`, () => {
    const molecules = moleculesOf(pageData(pair));
    const random = makeRandom();
    const poses = POLES.concat(Array.from({ length: RANDOM_POSES }, () => randomPose(random)));
    let different = 0;
    for (const pose of poses) {
      const words = ['place', ...withoutGivenPose(pair), ...wordsOf(pose)];
      const program = outputOf(words);
      const placed = placedPair(molecules, pose);
      // The program repeats the parameters as they were given; the page has no full turns.
      const page = extendedXyz(Object.assign({}, placed, { pose }));
      if (page !== program) different += differentDigits(page, program);
    }
    const coordinates = 3 * molecules.symbols.length * poses.length;
    assert.ok(different <= 0.001 * coordinates, `${different} of ${coordinates} coordinates differ`);
  });

test('the parameter block is that of identify', () => {
  for (const pair of Object.values(PAIRS).slice(0, 5)) {
    const data = pageData(pair);
    const text = outputOf(['identify', ...pair]);
    if (pair[0].endsWith('QN-input-GEOMETRY.xyz')) {
      // Its page shows the pose that the file asks for; identify finds that of its atoms.
      const pose = JSON.parse(outputOf(['identify', ...pair, '--json'])).parameters;
      assert.equal(parameterBlock(pose), text.slice(0, text.indexOf('note: ')));
    } else {
      assert.equal(parameterBlock(data.pose), text.slice(0, text.indexOf('note: ')));
    }
  }
});

test('the command that is copied places the same pair', () => {
  const pair = PAIRS['two waters'];
  const data = pageData(pair);
  const pose = { r: 3.25, theta: 12.5, phi: 1e-5, alpha: 359.9, beta: 90, gamma: 0 };
  const placed = placedPair(moleculesOf(data), pose);
  const words = placeCommand(['place', ...pair].join(' '), placed.pose).trim().split(' ');
  assert.equal(outputOf(words), extendedXyz(placed));
});
