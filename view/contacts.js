// How close two molecules come: closest atoms, short contacts, clearance, hydrogen bonds.
//
// A pair is { elements, positions, n1 }: the elements of all atoms as the page's table has them,
// places in Angstrom, and how many atoms are molecule 1.

import { cross, difference, dot, modulus, DEGREES_PER_RADIAN } from './geometry.js';

// Calls visit(atom of molecule 1, atom of molecule 2, distance) for all pairs up to a distance that
// visit returns, when it returns one; farther ones need not be visited.
function visitPairs(pair, visit) {
  const { positions, n1 } = pair;
  let reach = Infinity;
  for (let i = 0; i < n1; ++i) {
    const [x, y, z] = positions[i];
    for (let j = n1; j < positions.length; ++j) {
      const other = positions[j];
      const dx = x - other[0], dy = y - other[1], dz = z - other[2];
      const square = dx * dx + dy * dy + dz * dz;
      if (square > reach * reach * (1 + 1e-12)) continue;
      const wanted = visit(i, j, Math.sqrt(square));
      if (wanted !== undefined) reach = wanted;
    }
  }
}

// Not a number where a radius is unknown.
function sumOfRadii(pair, i, j) {
  const one = pair.elements[i].vdw, two = pair.elements[j].vdw;
  return one === null || two === null ? NaN : one + two;
}

function comesBefore(a, b) {
  return a.distance - b.distance || a.atom1 - b.atom1 || a.atom2 - b.atom2;
}

// The closest pairs of atoms of different molecules: by distance, then by atoms.
export function closestPairs(pair, count) {
  const closest = [];
  visitPairs(pair, (atom1, atom2, distance) => {
    const found = { atom1, atom2, distance, ratio: distance / sumOfRadii(pair, atom1, atom2) };
    let k = closest.length;
    while (k > 0 && comesBefore(found, closest[k - 1]) < 0) --k;
    closest.splice(k, 0, found);
    if (closest.length > count) closest.pop();
    return closest.length === count ? closest[count - 1].distance : undefined;
  });
  return closest;
}

// Ordered by the atoms of molecule 1, then of molecule 2.
export function shortContacts(pair, criterion) {
  const contacts = [];
  visitPairs(pair, (atom1, atom2, distance) => {
    const size = criterion.by_radii ? distance / sumOfRadii(pair, atom1, atom2) : distance;
    if (size <= criterion.value) contacts.push({ atom1, atom2, distance });
  });
  return contacts;
}

// The smallest ratio of a distance to the sum of the van der Waals radii, and the first pair of
// atoms with it; null where no radii are known.
export function clearanceOf(pair) {
  let smallest = null;
  visitPairs(pair, (atom1, atom2, distance) => {
    const ratio = distance / sumOfRadii(pair, atom1, atom2);
    if (ratio < (smallest === null ? Infinity : smallest.ratio)) smallest = { atom1, atom2, ratio };
  });
  return smallest;
}

// --- bonds ----------------------------------------------------------------------------------------

function isBonded(element1, element2, distance, tolerance) {
  return distance <= element1.covalent + element2.covalent + tolerance;
}

// Pairs of bonded atoms from begin to below end.
export function bondsBetween(pair, begin, end, tolerance) {
  const { elements, positions } = pair;
  const bonds = [];
  for (let i = begin; i < end; ++i)
    for (let j = i + 1; j < end; ++j)
      if (isBonded(elements[i], elements[j], modulus(difference(positions[i], positions[j])), tolerance))
        bonds.push([i, j]);
  return bonds;
}

// --- hydrogen bonds -------------------------------------------------------------------------------

const HYDROGEN = 1, NITROGEN = 7, FLUORINE = 9;

// D-H...A, degrees.
function angleAt(hydrogen, donor, acceptor) {
  const toDonor = difference(donor, hydrogen), toAcceptor = difference(acceptor, hydrogen);
  return Math.atan2(modulus(cross(toDonor, toAcceptor)), dot(toDonor, toAcceptor)) * DEGREES_PER_RADIAN;
}

// The N, O and F around a hydrogen: those that it is bonded to, and those that may accept it.
function partnersOf(hydrogen, pair, rule) {
  const { elements, positions, n1 } = pair;
  const partners = { donors: [], acceptors: [] };
  elements.forEach((element, atom) => {
    if (element.number < NITROGEN || element.number > FLUORINE) return;
    const distance = modulus(difference(positions[hydrogen], positions[atom]));
    const isSameMolecule = (atom < n1) === (hydrogen < n1);
    const bonded = isBonded(elements[hydrogen], element, distance, rule.bondTolerance);
    if (isSameMolecule && bonded) partners.donors.push(atom);
    if (!isSameMolecule && !bonded && distance <= rule.longest) partners.acceptors.push(atom);
  });
  return partners;
}

// rule: longest H...A in Angstrom, smallestAngle D-H...A in degrees, bondTolerance in Angstrom.
// Ordered by the one of H and A that is of molecule 1, then by the other.
export function hydrogenBonds(pair, rule) {
  const { elements, positions } = pair;
  const bonds = [];
  elements.forEach((element, hydrogen) => {
    if (element.number !== HYDROGEN) return;
    const { donors, acceptors } = partnersOf(hydrogen, pair, rule);
    for (const acceptor of acceptors)
      for (const donor of donors) {
        const angle = angleAt(positions[hydrogen], positions[donor], positions[acceptor]);
        const distance = modulus(difference(positions[acceptor], positions[hydrogen]));
        if (angle >= rule.smallestAngle) bonds.push({ donor, hydrogen, acceptor, distance, angle });
      }
  });
  const key = (bond) => [
    Math.min(bond.hydrogen, bond.acceptor), Math.max(bond.hydrogen, bond.acceptor), bond.donor];
  return bonds.sort((a, b) => {
    const one = key(a), two = key(b);
    return one[0] - two[0] || one[1] - two[1] || one[2] - two[2];
  });
}
