// What may be copied and saved: texts, and words in a drawing that are no markup.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { describedPose, extendedXyz, fileStem, parameterBlock, placeCommand } from '../../view/texts.js';
import { escapedText, svgOf } from '../../view/svg.js';

const POSE = { r: 3.5, theta: 90, phi: 0.25, alpha: 12.125, beta: 180, gamma: 1e-9 };

test('the end of an input file', () => {
  assert.equal(parameterBlock(POSE), [
    'position',
    '    3.50000000  r, Angstrom',
    '   90.00000000  theta, degrees',
    '    0.25000000  phi',
    'rotation',
    '   12.12500000  alpha, degrees',
    '  180.00000000  beta',
    '    0.00000000  gamma',
    'end', ''].join('\n'));
});

test('a command that places the pair', () => {
  assert.equal(placeCommand("dravo place 'my dimer.xyz' --split 6", POSE),
    "dravo place 'my dimer.xyz' --split 6 --r 3.5 --theta 90 --phi 0.25 --alpha 12.125 --beta 180 " +
    '--gamma 1e-09\n');
});

test('extended xyz has eight decimals and no negative zero', () => {
  const pair = { symbols: ['He', 'O'], positions: [[-1.5, -4e-9, 5.1e-9], [0, 12345.678901234, -0]], n1: 1 };
  assert.equal(extendedXyz({ pair, pose: POSE }), [
    '2',
    'Properties=species:S:1:pos:R:3:molecule:I:1 r=3.5 theta=90 phi=0.25 alpha=12.125 beta=180 ' +
      'gamma=1e-09 placing=exact',
    'He     -1.50000000      0.00000000      0.00000001 1',
    'O       0.00000000  12345.67890123      0.00000000 2', ''].join('\n'));
});

test('the sentence about a pair has the numbers of the pose', () => {
  const before = 'Molecule 1, H2O, and molecule 2, Ar: r 9.00 Angstrom, theta 1.0, phi 2.0 degrees.';
  const after = 'Molecule 1, H2O, and molecule 2, Ar: r 3.50 Angstrom, theta 90.0, phi 0.2, alpha 12.1, ' +
    'beta 180.0, gamma 0.0 degrees.';
  assert.equal(describedPose(before, POSE), after);
  assert.match(describedPose('A pair.', POSE), /^A pair: r 3\.50 Angstrom/);
});

test('names of files are plain', () => {
  assert.equal(fileStem('dimer.xyz'), 'dimer');
  assert.equal(fileStem('water.xyz and benzene.xyz'), 'water');
  assert.doesNotMatch(fileStem('../..//etc/pass\u0000wd.xyz'), /[/\\\u0000]|^[.-]/);
  assert.equal(fileStem('<img>.xyz'), 'img');
  assert.equal(fileStem('\u6c34.xyz'), 'pair');
  assert.equal(fileStem(''), 'pair');
});

test('words in a drawing are no markup', () => {
  const evil = '</title><script>alert("1")</script>&\u0007\n';
  assert.equal(escapedText(evil),
    '&lt;/title&gt;&lt;script&gt;alert(&quot;1&quot;)&lt;/script&gt;&amp;  ');
  const scene = { balls: [], sticks: [], arrows: [], arcs: [], lines: [],
    captions: [{ at: [0, 0, 0], text: evil, ink: 'text' }] };
  const drawing = { width: 100, height: 100, theme: 'light', title: evil, description: evil };
  const svg = svgOf(scene, { azimuth: 0, elevation: 0 }, drawing);
  assert.doesNotMatch(svg, /<script|alert\("/);
  assert.equal(svg.match(/&lt;script&gt;/g).length, 3);
});
