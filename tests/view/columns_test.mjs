// The columns of a table in all forms in which a page may carry them.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { decodedColumn, positionsReader } from '../../view/columns.js';
import { decodedPoses, isEnergy, nextRow, thinnedText } from '../../view/poses.js';

function base64(bytes) {
  return Buffer.from(bytes).toString('base64');
}

// Written byte by byte, little endian, whatever machine this is.
function doubles(...values) {
  const view = new DataView(new ArrayBuffer(8 * values.length));
  values.forEach((value, k) => view.setFloat64(8 * k, value, true));
  return base64(view.buffer);
}

function floats(...values) {
  const view = new DataView(new ArrayBuffer(4 * values.length));
  values.forEach((value, k) => view.setFloat32(4 * k, value, true));
  return base64(view.buffer);
}

function read(values, rows) {
  const column = decodedColumn({ name: 'a', unit: 'degrees', values });
  return [column.isNumeric, Array.from({ length: rows }, (_, row) => column.at(row))];
}

test('known bytes', () => {
  // 1.5 is 0x3FF8000000000000 and -2 is 0xC000000000000000; 0.5 in single precision 0x3F000000.
  const bytes = [0, 0, 0, 0, 0, 0, 0xf8, 0x3f, 0, 0, 0, 0, 0, 0, 0, 0xc0];
  assert.deepEqual(read({ float64: base64(bytes) }, 2), [true, [1.5, -2]]);
  assert.deepEqual(read({ float32: base64([0, 0, 0, 0x3f]) }, 1), [true, [0.5]]);
  assert.deepEqual(read({ list: [7, 8, 9], at: base64([2, 0, 1, 0]), bits: 8 }, 4), [true, [9, 7, 8, 7]]);
  const many = Array.from({ length: 300 }, (_, k) => k / 2);
  assert.deepEqual(read({ list: many, at: base64([0x2b, 0x01, 0, 0]), bits: 16 }, 2), [true, [149.5, 0]]);
});

test('empty cells are no numbers, and words are words', () => {
  assert.deepEqual(read({ constant: 90 }, 2), [true, [90, 90]]);
  assert.deepEqual(read({ constant: 'ok' }, 1), [false, ['ok']]);
  assert.deepEqual(read({ constant: null }, 1), [false, [null]]);
  assert.deepEqual(read({ list: [1, null], at: base64([1, 0]), bits: 8 }, 2), [true, [NaN, 1]]);
  assert.deepEqual(read({ list: ['ok', 'clash'], at: base64([1, 0]), bits: 8 }, 2), [false, ['clash', 'ok']]);
  assert.deepEqual(read({ float64: doubles(NaN, 3) }, 2), [true, [NaN, 3]]);
});

test('bytes that are no numbers are refused', () => {
  assert.throws(() => read({ float64: base64([1, 2, 3]) }, 1), /3 bytes/);
});

test('positions of a trajectory', () => {
  const at = positionsReader(floats(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12), 2);
  assert.deepEqual(at(0), [[1, 2, 3], [4, 5, 6]]);
  assert.deepEqual(at(1), [[7, 8, 9], [10, 11, 12]]);
});

const TABLE = {
  kind: 'scan', name: 'scan', shown: 3, of: 3000,
  parameters: ['r', 'theta', 'phi_applied', 'alpha', 'beta', 'gamma'],
  columns: [
    { name: 'index', unit: '', values: { float64: doubles(4, 17, 90) } },
    { name: 'r', unit: 'Angstrom', values: { float64: doubles(NaN, 3, 4) } },
    { name: 'theta', unit: 'degrees', values: { constant: 90 } },
    { name: 'phi', unit: 'degrees', values: { float64: doubles(-10, 370, 20) } },
    { name: 'phi_applied', unit: 'degrees', values: { float64: doubles(350, 10, 20) } },
    { name: 'alpha', unit: 'degrees', values: { constant: 1 } },
    { name: 'beta', unit: 'degrees', values: { constant: 2 } },
    { name: 'gamma', unit: 'degrees', values: { constant: 3 } },
    { name: 'e_int_kcal_mol', unit: 'kcal/mol', values: { float32: floats(1, 2, 3) } },
    { name: 'status', unit: '', values: { constant: 'ok' } },
  ],
  x: 'r', y: null, colour: 'r',
};

test('rows are poses with the numbers of their table', () => {
  const poses = decodedPoses(TABLE, 2);
  assert.equal(poses.poseAt(0), null);
  assert.deepEqual(poses.poseAt(1), { r: 3, theta: 90, phi: 10, alpha: 1, beta: 2, gamma: 3 });
  assert.equal(poses.nameOf(2), 'pose 90');
  assert.equal(nextRow(poses, 0, 1), 1);
  assert.equal(nextRow(poses, 0, -1), -1);
  assert.equal(nextRow(poses, 3, 1), -1);
  assert.deepEqual(poses.columns.filter(isEnergy).map(({ name }) => name), ['e_int_kcal_mol']);
});

test('the page says that poses were thinned', () => {
  assert.equal(thinnedText(decodedPoses(TABLE, 2)), 'shows 3 of 3,000 poses');
  assert.equal(thinnedText(decodedPoses(Object.assign({}, TABLE, { of: 3 }), 2)), '');
  const frames = Object.assign({}, TABLE, { kind: 'trajectory', shown: 100000, of: 250000 });
  assert.equal(thinnedText(decodedPoses(frames, 2)), 'shows 100,000 of 250,000 frames');
});

test('without a column of numbers, rows count from 1', () => {
  const rest = Object.assign({}, TABLE, { columns: TABLE.columns.slice(1) });
  assert.equal(decodedPoses(rest, 2).nameOf(1), 'pose 2');
});
