// The panel of distances and contacts, and the sentence about them.

import { clearanceOf, closestPairs, hydrogenBonds, shortContacts } from './contacts.js';
import { byId, fillRows, made } from './dom.js';
import { fixedText } from './numbers.js';
import { atomText } from './pair.js';

const CLOSEST = 5, MOST_BONDS = 20;

export function criterionWords({ by_radii: byRadii, value, text }) {
  return byRadii ? `up to ${value} of the van der Waals radii` : `up to ${text} \u00c5`;
}

// What there is to say about a placed pair.
export function surveyOf({ pair }, options) {
  return {
    closest: closestPairs(pair, CLOSEST),
    contacts: shortContacts(pair, options.criterion),
    clearance: clearanceOf(pair),
    bonds: hydrogenBonds(pair, options.hydrogenBond),
  };
}

function pairText(pair, { atom1, atom2 }) {
  return `${atomText(pair, atom1)}\u2026${atomText(pair, atom2)}`;
}

function bondText(pair, { donor, hydrogen, acceptor }) {
  return `${atomText(pair, donor)}\u2013${atomText(pair, hydrogen)}\u2026${atomText(pair, acceptor)}`;
}

function isContact(found, criterion) {
  return (criterion.by_radii ? found.ratio : found.distance) <= criterion.value;
}

function ratioText(ratio) {
  return Number.isFinite(ratio) ? fixedText(ratio, 3) : '-';
}

export function showSurvey(pair, survey, criterion) {
  const { closest, contacts, clearance, bonds } = survey;
  const facts = [
    ['shortest', closest.length > 0 ? `${fixedText(closest[0].distance, 4)} \u00c5` : '-'],
    ['clearance', clearance ? `${ratioText(clearance.ratio)}, ${pairText(pair, clearance)}` : '-'],
    ['short contacts', `${contacts.length}, ${criterionWords(criterion)}`]];
  byId('distances').replaceChildren(...[].concat(...facts.map(([name, value]) =>
    [made('dt', { textContent: name }), made('dd', { textContent: value })])));
  fillRows(byId('closest'), closest.map((found) => ({
    cells: [pairText(pair, found), fixedText(found.distance, 4), ratioText(found.ratio)],
    className: isContact(found, criterion) ? 'contact' : '' })));
  byId('bonds-table').hidden = bonds.length === 0;
  fillRows(byId('bonds'), bonds.slice(0, MOST_BONDS).map((bond) => ({
    cells: [bondText(pair, bond), fixedText(bond.distance, 4), fixedText(bond.angle, 1)] })));
}

// "closest atoms O1 and H5, 1.9482 Angstrom".
export function closestSentence(pair, { closest }) {
  if (closest.length === 0) return '';
  const { atom1, atom2, distance } = closest[0];
  return `closest atoms ${atomText(pair, atom1)} and ${atomText(pair, atom2)}, ` +
    `${fixedText(distance, 4)} Angstrom`;
}
