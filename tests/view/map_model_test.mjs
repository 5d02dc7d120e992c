// Which poses a map shows, and which one keys and pointing choose.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { mapModel, neighbourRow, partOfScale, placeInMap, rowAt } from '../../view/map_model.js';

const PARAMETERS = ['r', 'theta', 'phi', 'alpha', 'beta', 'gamma'];

// Rows of objects as poses; parameters that no row has are 0.
function posesOf(rows) {
  const names = [...new Set([...PARAMETERS, ...Object.keys(rows[0])])];
  const columns = names.map((name) => ({
    name, unit: '', isNumeric: true, isConstant: false, at: (row) => (name in rows[row] ? rows[row][name] : 0) }));
  const named = (name) => columns.find((column) => column.name === name) || null;
  return { rows: rows.length, columns, named, parameters: PARAMETERS.map(named) };
}

function modelOf(poses, x, y, colour, choice, shown) {
  const wanted = { x: poses.named(x), y: y && poses.named(y), colour: poses.named(colour), choice: choice || 'lowest' };
  return mapModel(poses, wanted, shown === undefined ? -1 : shown);
}

// r 2, 3, 4 by theta 0, 90 by phi 0, 120, in this order; the energy is its place in a list.
const ENERGIES = [9, -3, 8, 7, 5, -1, 4, 6, NaN, NaN, 2, 1];
const GRID = [];
for (const r of [2, 3, 4])
  for (const theta of [0, 90])
    for (const phi of [0, 120]) GRID.push({ r, theta, phi, e_int: ENERGIES[GRID.length] });

test('a cell has the lowest, or the highest, of its poses', () => {
  const poses = posesOf(GRID);
  const lowest = modelOf(poses, 'r', 'theta', 'e_int');
  assert.equal(lowest.kind, 'cells');
  assert.deepEqual([...lowest.chosen], [1, 5, 8, 3, 6, 11]);
  assert.deepEqual(lowest.others.map(({ name }) => name), ['phi']);
  assert.deepEqual([...modelOf(poses, 'r', 'theta', 'e_int', 'highest').chosen], [0, 4, 8, 2, 7, 10]);
});

test('a slice goes through the pose that is shown', () => {
  const poses = posesOf(GRID);
  assert.deepEqual([...modelOf(poses, 'r', 'theta', 'e_int', 'slice', 3).chosen], [1, 5, 9, 3, 7, 11]);
  assert.deepEqual([...modelOf(poses, 'r', 'theta', 'e_int', 'slice', 0).chosen], [0, 4, 8, 2, 6, 10]);
});

test('a scale of energies ends as far above zero as it begins below', () => {
  const { scale } = modelOf(posesOf(GRID), 'r', 'theta', 'e_int');
  assert.deepEqual(scale, { low: -3, high: 3, isCut: true });
  assert.equal(partOfScale(scale, 0), 0.5);
  const distances = posesOf(GRID.map((row) => Object.assign({ shortest: row.e_int }, row)));
  assert.deepEqual(modelOf(distances, 'r', 'theta', 'shortest').scale, { low: -3, high: 7, isCut: false });
});

test('arrow keys go from cell to cell and stay at the edge', () => {
  const model = modelOf(posesOf(GRID), 'r', 'theta', 'e_int');
  assert.equal(neighbourRow(model, 1, 1, 0), 5);
  assert.equal(neighbourRow(model, 1, 0, 1), 3);
  assert.equal(neighbourRow(model, 3, 0, 1), 3);
  assert.equal(neighbourRow(model, 1, -1, 0), 1);
  assert.equal(neighbourRow(model, 0, 1, 0), 5); // a pose that is not the lowest of its cell
  assert.equal(neighbourRow(model, -1, 1, 0), 1);
});

test('arrow keys pass empty cells', () => {
  const model = modelOf(posesOf(GRID.filter(({ r, theta }) => r !== 3 || theta !== 0)), 'r', 'theta', 'e_int');
  assert.deepEqual([...model.chosen], [1, -1, 6, 3, 4, 9]);
  assert.equal(neighbourRow(model, 1, 1, 0), 6);
});

test('pointing chooses the cell under the pointer', () => {
  const model = modelOf(posesOf(GRID), 'r', 'theta', 'e_int');
  // The axis begins and ends half a step beyond its values: 1.5 to 4.5 and -45 to 135.
  assert.deepEqual([model.x.low, model.x.high, model.y.low, model.y.high], [1.5, 4.5, -45, 135]);
  assert.equal(rowAt(model, [0.1, 0.1]), 1);
  assert.equal(rowAt(model, [0.5, 0.9]), 6);
  assert.equal(rowAt(model, [1, 1]), 11);
  assert.equal(rowAt(model, [0, 0]), 1);
  for (const row of model.chosen) assert.equal(rowAt(model, placeInMap(model, row)), row);
});

test('a profile has one pose for each value', () => {
  const model = modelOf(posesOf(GRID), 'r', null, 'e_int');
  assert.equal(model.kind, 'profile');
  assert.deepEqual([...model.chosen], [1, 5, 11]);
  assert.deepEqual(model.others.map(({ name }) => name), ['theta', 'phi']);
  assert.equal(neighbourRow(model, 1, 1, 0), 5);
  assert.equal(neighbourRow(model, 1, 0, 1), 1);
  assert.equal(rowAt(model, [0.9, 0.1]), 11);
});

test('random poses are points, and keys go to the nearest in a direction', () => {
  const rows = Array.from({ length: 1000 }, (_, k) => ({ r: 2 + k / 997, theta: (k * 77) % 180 + k / 1e4, e_int: k }));
  rows[500] = { r: 2.5, theta: 90, e_int: 0 };
  rows[501] = { r: 2.5001, theta: 90.1, e_int: 0 };
  const model = modelOf(posesOf(rows), 'r', 'theta', 'e_int');
  assert.equal(model.kind, 'points');
  assert.equal(rowAt(model, placeInMap(model, 500)), 500);
  assert.equal(neighbourRow(model, 500, 0, 1), 501);
  assert.equal(neighbourRow(model, 501, 0, -1), 500);
  for (const [dx, dy] of [[1, 0], [-1, 0], [0, 1], [0, -1]]) {
    const next = neighbourRow(model, 500, dx, dy);
    const [right, up] = placeInMap(model, next).map((part, k) => part - placeInMap(model, 500)[k]);
    assert.ok(right * dx + up * dy > 0);
  }
});

test('a sparse grid is shown as points', () => {
  const diagonal = Array.from({ length: 100 }, (_, k) => ({ r: k, theta: k, e_int: k }));
  assert.equal(modelOf(posesOf(diagonal), 'r', 'theta', 'e_int').kind, 'points');
});

test('a hundred thousand poses take less than a second', () => {
  const rows = Array.from({ length: 100000 }, (_, k) => ({ r: k % 50, theta: Math.floor(k / 50) % 100, phi: k % 20, e_int: k }));
  const poses = posesOf(rows);
  const began = performance.now();
  assert.equal(modelOf(poses, 'r', 'theta', 'e_int').kind, 'cells');
  assert.ok(performance.now() - began < 1000);
});
