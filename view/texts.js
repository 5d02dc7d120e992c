// What the page lets people copy, with the bytes that the program would write.

import { POSE_PARAMETERS } from './geometry.js';
import { fixedText, shortestText } from './numbers.js';

const COORDINATE_WIDTH = 15, COORDINATE_DECIMALS = 8;
const SMALLEST_WRITTEN = 5e-9; // half of the last decimal; below it is no negative zero

// The end of an input file, as `dravo identify` prints it.
export function parameterBlock(pose) {
  const line = (name, words) => `${fixedText(pose[name], 8).padStart(14)}  ${words}\n`;
  return 'position\n' + line('r', 'r, Angstrom') + line('theta', 'theta, degrees') + line('phi', 'phi') +
    'rotation\n' + line('alpha', 'alpha, degrees') + line('beta', 'beta') + line('gamma', 'gamma') + 'end\n';
}

// command: its beginning, as the page has it.
export function placeCommand(command, pose) {
  return command + POSE_PARAMETERS.map((name) => ` --${name} ${shortestText(pose[name])}`).join('') + '\n';
}

function coordinateText(value) {
  return fixedText(Math.abs(value) < SMALLEST_WRITTEN ? 0 : value, COORDINATE_DECIMALS)
    .padStart(COORDINATE_WIDTH);
}

// A frame as `dravo place` writes it.
export function extendedXyz({ pair, pose }) {
  const parameters = POSE_PARAMETERS.map((name) => ` ${name}=${shortestText(pose[name])}`).join('');
  let text = `${pair.positions.length}\n` +
    `Properties=species:S:1:pos:R:3:molecule:I:1${parameters} placing=exact\n`;
  pair.positions.forEach((position, atom) => {
    const coordinates = position.map((value) => ' ' + coordinateText(value)).join('');
    text += `${pair.symbols[atom].padEnd(2)}${coordinates} ${atom < pair.n1 ? 1 : 2}\n`;
  });
  return text;
}

// The sentence about a pair with the numbers of another pose.
export function describedPose(description, pose) {
  const end = description.lastIndexOf(': r ');
  const molecules = end < 0 ? description.replace(/\.?$/, '') : description.slice(0, end);
  return `${molecules}: r ${fixedText(pose.r, 2)} Angstrom, ` +
    POSE_PARAMETERS.slice(1).map((name) => `${name} ${fixedText(pose[name], 1)}`).join(', ') + ' degrees.';
}

// "dimer" for "dimer.xyz and water.xyz": a name for files, with nothing that file systems refuse.
export function fileStem(title) {
  const stem = title.split(' ')[0].replace(/\.[^.]*$/, '').replace(/[^A-Za-z0-9._-]+/g, '-');
  return stem.replace(/^[-.]+|[-.]+$/g, '') || 'pair';
}
