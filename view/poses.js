// The poses of a scan, a docking run or a trajectory, row by row.

import { decodedColumn, positionsReader } from './columns.js';
import { POSE_PARAMETERS } from './geometry.js';
import { countText } from './numbers.js';

// What a row is called, and the column that numbers them.
const KINDS = {
  scan: { one: 'pose', many: 'poses', number: 'index' },
  dock: { one: 'minimum', many: 'minima', number: 'rank' },
  trajectory: { one: 'frame', many: 'frames', number: 'frame' },
};

// Rows count from 0.
export function decodedPoses(poses, atoms) {
  const columns = poses.columns.map(decodedColumn);
  const named = (name) => columns.find((column) => column.name === name) || null;
  const { one, many, number } = KINDS[poses.kind];
  const numbers = named(number);
  const numberOf = (row) => numbers && Number.isFinite(numbers.at(row)) ? numbers.at(row) : row + 1;
  const placing = poses.parameters || POSE_PARAMETERS;
  const parameters = POSE_PARAMETERS.map((name, k) => [name, named(placing[k])]);
  const poseAt = (row) => {
    const pose = {};
    for (const [name, column] of parameters) {
      pose[name] = column ? column.at(row) : NaN;
      if (!Number.isFinite(pose[name])) return null;
    }
    return pose;
  };
  return {
    kind: poses.kind, one, many, columns, named, numberOf, poseAt,
    parameters: parameters.map(([, column]) => column), // null where a table lacks one
    rows: poses.shown,
    of: poses.of,
    nameOf: (row) => `${one} ${numberOf(row)}`,
    positionsAt: poses.positions ? positionsReader(poses.positions, atoms) : null,
  };
}

// By the names that tables give to interaction energies.
export function isEnergy(column) {
  return column.isNumeric && column.name.startsWith('e_');
}

// Empty when every pose is there.
export function thinnedText(poses) {
  if (poses.rows === poses.of) return '';
  return `shows ${countText(poses.rows)} of ${countText(poses.of)} ${poses.many}`;
}

// The first row from `row` on, in steps of 1 or -1, that has a pose; -1 when there is none.
export function nextRow(poses, row, step) {
  for (let k = row; k >= 0 && k < poses.rows; k += step) if (poses.poseAt(k)) return k;
  return -1;
}
