// Distances, contacts and hydrogen bonds of atoms at places where they can be told by hand.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { bondsBetween, clearanceOf, closestPairs, hydrogenBonds, shortContacts } from '../../view/contacts.js';
import { makeRandom } from './random.mjs';

// Radii of Cordero 2008 and Bondi 1964; nobody knows a van der Waals radius of polonium.
const ELEMENTS = {
  H: { number: 1, covalent: 0.31, vdw: 1.2 },
  C: { number: 6, covalent: 0.76, vdw: 1.7 },
  N: { number: 7, covalent: 0.71, vdw: 1.55 },
  O: { number: 8, covalent: 0.66, vdw: 1.52 },
  F: { number: 9, covalent: 0.57, vdw: 1.47 },
  Ne: { number: 10, covalent: 0.58, vdw: 1.54 },
  Po: { number: 84, covalent: 1.4, vdw: null },
};
const RULE = { longest: 2.5, smallestAngle: 120, bondTolerance: 0.4 };

function pairOf(n1, ...atoms) {
  return { n1, elements: atoms.map(([symbol]) => ELEMENTS[symbol]), positions: atoms.map((atom) => atom.slice(1)) };
}

test('the closest pairs come by distance, then by atoms', () => {
  const pair = pairOf(2, ['H', 0, 0, 0], ['H', 0, 0, 1], ['C', 3, 0, 0], ['C', 3, 0, 1], ['O', 0, 4, 0]);
  const found = closestPairs(pair, 3).map(({ atom1, atom2, distance }) => [atom1, atom2, distance]);
  assert.deepEqual(found, [[0, 2, 3], [1, 3, 3], [0, 3, Math.sqrt(10)]]);
  assert.equal(closestPairs(pair, 99).length, 6);
  assert.equal(closestPairs(pair, 1)[0].ratio, 3 / (1.2 + 1.7));
});

test('the closest of many pairs are those of a full sort', () => {
  const random = makeRandom();
  const atoms = Array.from({ length: 60 }, () => ['H', 9 * random(), 9 * random(), 9 * random()]);
  const pair = pairOf(25, ...atoms);
  const all = [];
  for (let i = 0; i < 25; ++i)
    for (let j = 25; j < 60; ++j)
      all.push(Math.hypot(...[0, 1, 2].map((k) => pair.positions[i][k] - pair.positions[j][k])));
  all.sort((a, b) => a - b);
  closestPairs(pair, 7).forEach(({ distance }, k) => assert.ok(Math.abs(distance - all[k]) < 1e-12));
  const limit = 0.5 * (all[9] + all[10]);
  assert.equal(shortContacts(pair, { by_radii: false, value: limit }).length, 10);
});

test('a contact reaches up to its distance, which belongs to it', () => {
  const pair = pairOf(1, ['O', 0, 0, 0], ['H', 1.5, 0, 0], ['H', 0, 1.75, 0]);
  const count = (value) => shortContacts(pair, { by_radii: false, value }).length;
  assert.deepEqual([count(1.49), count(1.5), count(1.74), count(1.75)], [0, 1, 1, 2]);
});

test('contacts by radii pass elements without one', () => {
  const pair = pairOf(1, ['C', 0, 0, 0], ['Po', 1, 0, 0], ['C', 0, 3.06, 0], ['H', 0, 0, 2.7]);
  assert.deepEqual(shortContacts(pair, { by_radii: true, value: 0.9 }).map(({ atom2 }) => atom2), [2]);
  const { atom1, atom2, ratio } = clearanceOf(pair);
  assert.deepEqual([atom1, atom2], [0, 2]);
  assert.ok(Math.abs(ratio - 0.9) < 1e-12);
  assert.equal(clearanceOf(pairOf(1, ['Po', 0, 0, 0], ['C', 2, 0, 0])), null);
  assert.ok(Number.isNaN(closestPairs(pair, 1)[0].ratio));
});

test('bonds are as long as the radii and the tolerance', () => {
  const longest = 0.66 + 0.31 + 0.4;
  const pair = pairOf(3, ['O', 0, 0, 0], ['H', longest - 1e-9, 0, 0], ['H', 0, longest + 1e-9, 0], ['H', 0, 0, 0.9]);
  assert.deepEqual(bondsBetween(pair, 0, 3, 0.4), [[0, 1]]);
  assert.deepEqual(bondsBetween(pair, 2, 4, 0.4), []);
});

// O-H along X with an acceptor that H points to at an angle.
function bonded(acceptor, distance, degrees) {
  const angle = Math.PI * (180 - degrees) / 180;
  return pairOf(2, ['O', 0, 0, 0], ['H', 0.96, 0, 0],
    [acceptor, 0.96 + distance * Math.cos(angle), distance * Math.sin(angle), 0]);
}

test('a hydrogen bond has an angle and a distance', () => {
  const [bond] = hydrogenBonds(bonded('O', 2, 170), RULE);
  assert.deepEqual([bond.donor, bond.hydrogen, bond.acceptor], [0, 1, 2]);
  assert.ok(Math.abs(bond.angle - 170) < 1e-9 && Math.abs(bond.distance - 2) < 1e-12);
  assert.equal(hydrogenBonds(bonded('O', 2, 120.01), RULE).length, 1);
  assert.equal(hydrogenBonds(bonded('O', 2, 119.99), RULE).length, 0);
  assert.equal(hydrogenBonds(bonded('O', 2.4999, 180), RULE).length, 1);
  assert.equal(hydrogenBonds(bonded('O', 2.5001, 180), RULE).length, 0);
});

test('N, O and F alone take part, and no acceptor is bonded to H', () => {
  const count = (symbol) => hydrogenBonds(bonded(symbol, 2, 180), RULE).length;
  assert.deepEqual(['C', 'N', 'O', 'F', 'Ne'].map(count), [0, 1, 1, 1, 0]);
  assert.equal(hydrogenBonds(bonded('O', 1.3, 180), RULE).length, 0);
  const carbon = pairOf(2, ['C', 0, 0, 0], ['H', 1.09, 0, 0], ['O', 3.2, 0, 0]);
  assert.equal(hydrogenBonds(carbon, RULE).length, 0);
  const inside = pairOf(3, ['O', 0, 0, 0], ['H', 0.96, 0, 0], ['O', 2.8, 0, 0], ['O', 0, 9, 0]);
  assert.equal(hydrogenBonds(inside, RULE).length, 0);
});

test('hydrogen bonds come in the order of the atoms of molecule 1', () => {
  // Molecule 2 gives to molecule 1 (atom 0), and molecule 1 gives to molecule 2 (atom 1).
  const pair = pairOf(3, ['N', 5.8, 0, 0], ['H', 0.96, 0, 0], ['O', 0, 0, 0], ['O', 2.9, 0, 0], ['H', 3.86, 0, 0]);
  const found = hydrogenBonds(pair, RULE).map(({ donor, hydrogen, acceptor }) => [donor, hydrogen, acceptor]);
  assert.deepEqual(found, [[3, 4, 0], [2, 1, 3]]);
});
