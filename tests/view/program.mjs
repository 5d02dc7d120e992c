// The built program `dravo` and the folder of examples, for tests that compare the page with it:
//
//   DRAVO_PROGRAM=build/dravo DRAVO_EXAMPLES=examples node tests/view/positions_test.mjs

import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';

import { dataOf } from './parts.mjs';

function required(name) {
  const value = process.env[name];
  if (!value) throw new Error(`set ${name} to the path that this test needs`);
  return resolve(value);
}

const PROGRAM = required('DRAVO_PROGRAM');
const EXAMPLES = required('DRAVO_EXAMPLES');

// Pairs of general, linear and single-atom molecules: words of a command, with %/ for the examples.
export const PAIRS = {
  'two waters': ['%/water-dimer/water-dimer.xyz', '--split', '3'],
  'two formamides': ['%/formamide-dimer/QN-input-GEOMETRY.xyz'],
  'adenine and thymine': ['%/watson-crick-pair/watson-crick-pair.xyz', '--split', '15'],
  'two benzenes': ['%/benzene-dimer/benzene-dimer.xyz', '--split', '12'],
  'DMSO and ethanol': ['%/dimethyl-sulfoxide-ethanol/QN-input-GEOMETRY.xyz'],
  'HCN on water': ['%/argon-hcn/hcn.xyz', '%/water-dimer/water.xyz', '--r', '3.5', '--theta', '70',
    '--phi', '250', '--beta', '33', '--gamma', '120'],
  'HCN and argon': ['%/argon-hcn/hcn.xyz', '%/argon-hcn/argon.xyz', '--r', '3.9', '--theta', '60',
    '--phi', '20'],
  'argon and HCN': ['%/argon-hcn/argon.xyz', '%/argon-hcn/hcn.xyz', '--r', '4.1', '--theta', '40'],
};

// What the program writes to standard output.
export function outputOf(words) {
  const replaced = words.map((word) => word.replace('%', EXAMPLES));
  return execFileSync(PROGRAM, replaced, { encoding: 'utf8', stdio: ['ignore', 'pipe', 'ignore'] });
}

// The data of the page of a pair.
export function pageData(words) {
  const folder = mkdtempSync(join(tmpdir(), 'dravo-view-'));
  try {
    const file = join(folder, 'page.html');
    outputOf(['view', ...words, '-o', file]);
    return dataOf(readFileSync(file, 'utf8'));
  } finally {
    rmSync(folder, { recursive: true });
  }
}

// { symbols, positions } of the first frame of an xyz text.
export function frameOf(text) {
  const lines = text.split('\n');
  const atoms = lines.slice(2, 2 + Number(lines[0])).map((line) => line.trim().split(/\s+/));
  return { symbols: atoms.map(([symbol]) => symbol), positions: atoms.map((atom) => atom.slice(1, 4).map(Number)) };
}
