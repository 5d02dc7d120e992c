// The two molecules of the page, and a pair of them placed by a pose.

import { bondsBetween } from './contacts.js';
import { movedAtoms, ownAtoms, withFoldedAzimuths } from './geometry.js';

function elementsOf(data) {
  return data.molecules.map(({ symbols }) => symbols.map((symbol) => data.elements[symbol]));
}

// own: places of the atoms of molecule 1 in its own frame, of molecule 2 in its own; bonds as pairs of
// atoms, both counted from the first atom of molecule 1.
export function moleculesOf(data) {
  const [one, two] = data.molecules;
  const n1 = one.symbols.length;
  return {
    n1,
    symbols: one.symbols.concat(two.symbols),
    elements: [].concat(...elementsOf(data)),
    shapes: [one.shape, two.shape],
    own: [one.positions, two.positions],
    bonds: one.bonds.concat(two.bonds.map(([a, b]) => [a + n1, b + n1])),
  };
}

// Molecules that bend: those of a frame, whose atoms and pose are given.
export function bentMolecules(molecules, positions, pose, tolerance) {
  const { n1, elements } = molecules;
  const pair = { elements, positions, n1 };
  const bonds = bondsBetween(pair, 0, n1, tolerance)
    .concat(bondsBetween(pair, n1, positions.length, tolerance));
  const own = [ownAtoms(positions.slice(0, n1), pose), positions.slice(n1)];
  return Object.assign({}, molecules, { own, bonds });
}

export function placedPair(molecules, pose) {
  const { n1, symbols, elements, shapes, own, bonds } = molecules;
  const folded = withFoldedAzimuths(pose);
  const positions = movedAtoms(own[0], folded).concat(own[1]);
  return { pair: { symbols, elements, positions, n1 }, pose: folded, shapes, bonds };
}

// "O1".
export function atomText(pair, atom) {
  return `${pair.symbols[atom]}${atom + 1}`;
}
