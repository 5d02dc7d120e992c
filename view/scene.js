// What a picture of a pair shows, as things in space: balls, sticks, arrows, arcs, lines, captions.
//
// A placed pair is { pair, pose, shapes, bonds }: the pair in the frame of molecule 2, its pose
// without full turns, the shapes of both molecules, and pairs of bonded atoms.

import { hydrogenBonds, shortContacts } from './contacts.js';
import { difference, dot, modulus, scaled, sum, transposed } from './geometry.js';
import { inRadians, relativePose, RADIANS_PER_DEGREE } from './geometry.js';
import { fixedText } from './numbers.js';

// Up to half of the last decimal that is shown: degrees, Angstrom.
const NO_ANGLE = 0.05, NO_LENGTH = 0.05;

const AXIS_X = [1, 0, 0], AXIS_Y = [0, 1, 0], AXIS_Z = [0, 0, 1], ORIGIN = [0, 0, 0];

// An arrow reaches this far beyond the atoms that lie in its direction; its letter stands behind.
const BEYOND_ATOMS = 0.9, SHORTEST_ARROW = 1.5, TO_LETTER = 0.3;

// Radii of arcs: those at molecule 2 as parts of r, those at molecule 1 of the radius of its atoms.
const THETA_PART = 0.4, PHI_PART = 0.3;
const LARGEST_THETA = 1.3, LARGEST_PHI = 1; // Angstrom
const GAMMA_PART = 0.9, BETA_PART = 0.75, ALPHA_PART = 0.6;
// From the centre of an arc to the middle of its words, in radii.
const TO_WORDS = 1.2;

// --- atoms ----------------------------------------------------------------------------------------

function addAtoms(scene, placed) {
  const { elements, positions } = placed.pair;
  positions.forEach((centre, atom) =>
    scene.balls.push({ centre, radius: elements[atom].ball, element: elements[atom] }));
  for (const bond of placed.bonds) {
    const [one, two] = bond.map((atom) => positions[atom]);
    const middle = scaled(0.5, sum(one, two));
    scene.sticks.push({ from: one, to: middle, element: elements[bond[0]] });
    scene.sticks.push({ from: two, to: middle, element: elements[bond[1]] });
  }
}

function addNames(scene, { pair }) {
  pair.positions.forEach((at, atom) =>
    scene.captions.push({ at, text: `${pair.symbols[atom]}${atom + 1}`, ink: 'text', isName: true }));
}

// --- contacts -------------------------------------------------------------------------------------

// A contact that is a hydrogen bond is drawn as such.
function contactLines(pair, options) {
  const lines = new Map();
  const note = (atom1, atom2, ink) => lines.set(atom1 * pair.elements.length + atom2, { atom1, atom2, ink });
  for (const { atom1, atom2 } of shortContacts(pair, options.criterion)) note(atom1, atom2, 'contact');
  for (const { hydrogen, acceptor } of hydrogenBonds(pair, options.hydrogenBond))
    note(Math.min(hydrogen, acceptor), Math.max(hydrogen, acceptor), 'hydrogen_bond');
  return [...lines.values()].sort((a, b) => a.atom1 - b.atom1 || a.atom2 - b.atom2);
}

function addContacts(scene, { pair }, options) {
  for (const { atom1, atom2, ink } of contactLines(pair, options)) {
    const from = pair.positions[atom1];
    const along = difference(pair.positions[atom2], from);
    const length = modulus(along);
    const begin = pair.elements[atom1].ball / length;
    const end = 1 - pair.elements[atom2].ball / length;
    if (begin < end)
      scene.lines.push({
        from: sum(from, scaled(begin, along)), to: sum(from, scaled(end, along)), ink, dashed: true });
    scene.captions.push({ at: sum(from, scaled(0.5, along)), text: fixedText(length, 2), ink });
  }
}

// --- frames ---------------------------------------------------------------------------------------

function addFrame(scene, centre, atoms, axes) {
  for (const [letter, direction, ink] of axes) {
    let reach = SHORTEST_ARROW - BEYOND_ATOMS;
    for (const atom of atoms) reach = Math.max(reach, dot(difference(atom, centre), direction));
    const length = reach + BEYOND_ATOMS;
    scene.arrows.push({ from: centre, to: sum(centre, scaled(length, direction)), ink });
    scene.captions.push({ at: sum(centre, scaled(length + TO_LETTER, direction)), text: letter, ink });
  }
}

// Axes of molecule 1 that its shape leaves open are left out.
function addFrames(scene, { pair, pose, shapes }) {
  const { positions, n1 } = pair;
  addFrame(scene, ORIGIN, positions.slice(n1),
    [['X', AXIS_X, 'middle'], ['Y', AXIS_Y, 'smallest'], ['Z', AXIS_Z, 'largest']]);
  const { place, turn } = relativePose(pose);
  const axes = transposed(turn);
  const z = ['z', axes[2], 'smallest'];
  if (shapes[0] === 'linear') addFrame(scene, place, positions.slice(0, n1), [z]);
  if (shapes[0] === 'general')
    addFrame(scene, place, positions.slice(0, n1),
      [['x', axes[0], 'largest'], ['y', axes[1], 'middle'], z]);
}

// --- r, theta, phi --------------------------------------------------------------------------------

function addArc(scene, arc, name) {
  if (!(arc.degrees > NO_ANGLE)) return;
  scene.arcs.push(arc);
  const half = 0.5 * arc.degrees * RADIANS_PER_DEGREE;
  const direction = sum(scaled(Math.cos(half), arc.start), scaled(Math.sin(half), arc.across));
  scene.captions.push({
    at: sum(arc.centre, scaled(TO_WORDS * arc.radius, direction)),
    text: `${name} = ${fixedText(arc.degrees, 1)}\u00b0`,
    ink: arc.ink });
}

function addPlace(scene, { pose }) {
  const { r, theta, phi } = pose;
  if (r <= NO_LENGTH) return;
  const { place } = relativePose(pose);
  scene.lines.push({ from: ORIGIN, to: place, ink: 'text', dashed: false });
  scene.captions.push({ at: scaled(0.6, place), text: `r = ${fixedText(r, 2)} \u00c5`, ink: 'text' });
  const azimuth = phi * RADIANS_PER_DEGREE;
  addArc(scene, {
    centre: ORIGIN, start: AXIS_Z, across: [Math.cos(azimuth), Math.sin(azimuth), 0],
    radius: Math.min(THETA_PART * r, LARGEST_THETA), degrees: theta, ink: 'place',
  }, '\u03b8');
  const foot = [place[0], place[1], 0];
  if (modulus(foot) <= NO_LENGTH) return; // on the Z axis, where phi means nothing
  if (phi > NO_ANGLE) {
    scene.lines.push({ from: ORIGIN, to: foot, ink: 'faint', dashed: true });
    scene.lines.push({ from: foot, to: place, ink: 'faint', dashed: true });
  }
  addArc(scene, {
    centre: ORIGIN, start: AXIS_X, across: AXIS_Y, radius: Math.min(PHI_PART * r, LARGEST_PHI),
    degrees: phi, ink: 'place',
  }, '\u03c6');
}

// --- alpha, beta, gamma ---------------------------------------------------------------------------

function turnRadius(pair, centre) {
  let farthest = 0;
  for (const atom of pair.positions.slice(0, pair.n1))
    farthest = Math.max(farthest, modulus(difference(atom, centre)));
  return Math.min(Math.max(farthest, 1.5), 2.5);
}

// Turned in this order: by -gamma about Z, which carries Y to the line of nodes N, by -beta about N,
// which carries Z to z, by -alpha about z, which carries N to y.
function addTurn(scene, { pair, pose, shapes }) {
  if (shapes[0] === 'atom') return;
  const radians = inRadians(pose);
  const cb = Math.cos(radians.beta), sb = Math.sin(radians.beta);
  const cg = Math.cos(radians.gamma), sg = Math.sin(radians.gamma);
  const centre = relativePose(pose).place;
  const radius = turnRadius(pair, centre);
  const guide = (direction, letter) => {
    const end = sum(centre, scaled(1.15 * radius, direction));
    scene.lines.push({ from: centre, to: end, ink: 'faint', dashed: true });
    scene.captions.push({ at: sum(end, scaled(TO_LETTER, direction)), text: letter, ink: 'faint' });
  };
  const arc = (start, across, part, name, letter) =>
    addArc(scene, { centre, start, across, radius: part * radius, degrees: pose[name], ink: 'turn' }, letter);
  const nodes = [sg, cg, 0];
  const withAlpha = shapes[0] === 'general' && pose.alpha > NO_ANGLE;
  if (pose.gamma > NO_ANGLE) guide(AXIS_Y, 'Y');
  if (pose.beta > NO_ANGLE) guide(AXIS_Z, 'Z');
  if (pose.gamma > NO_ANGLE || pose.beta > NO_ANGLE || withAlpha) guide(nodes, 'N');
  arc(AXIS_Y, AXIS_X, GAMMA_PART, 'gamma', '\u03b3');
  arc(AXIS_Z, [-cg, sg, 0], BETA_PART, 'beta', '\u03b2');
  if (withAlpha) arc(nodes, [cb * cg, -cb * sg, sb], ALPHA_PART, 'alpha', '\u03b1');
}

// options: frames, angles, contacts, labels (yes or no), criterion, hydrogenBond (the rule).
export function sceneOf(placed, options) {
  const scene = { balls: [], sticks: [], arrows: [], arcs: [], lines: [], captions: [] };
  addAtoms(scene, placed);
  if (options.contacts) addContacts(scene, placed, options);
  if (options.frames) addFrames(scene, placed);
  if (options.angles) {
    addPlace(scene, placed);
    addTurn(scene, placed);
  }
  if (options.labels) addNames(scene, placed);
  return scene;
}
