// The page draws what `dravo draw` draws: the same SVG, byte for byte.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { optionsOf } from '../../view/options.js';
import { moleculesOf, placedPair } from '../../view/pair.js';
import { sceneOf } from '../../view/scene.js';
import { svgOf } from '../../view/svg.js';
import { describedPose } from '../../view/texts.js';
import { outputOf, pageData, PAIRS } from './program.mjs';

const VIEWS = {
  iso: { azimuth: 35, elevation: 20 },
  x: { azimuth: 0, elevation: 0 },
  y: { azimuth: 90, elevation: 0 },
  z: { azimuth: -90, elevation: 90 },
  '-117.3,-41.7': { azimuth: -117.3, elevation: -41.7 },
};

// The options of a drawing, and whether frames, angles, contacts and labels are in it.
const SHOWN = {
  'as it is': [[], [true, false, true, false]],
  'all': [['--angles', '--labels'], [true, true, true, true]],
  'atoms alone': [['--no-frames', '--no-contacts'], [false, false, false, false]],
};

const SIZES = { '800x600': [800, 600], '333x500': [333, 500], '2400x900': [2400, 900] };

function pageSvg(data, view, shown, size, theme, pose) {
  const [frames, angles, contacts, labels] = shown;
  const options = optionsOf(Object.assign({}, data, { options: { frames, angles, contacts, labels } }));
  const placed = placedPair(moleculesOf(data), pose);
  return svgOf(sceneOf(placed, options), view, {
    width: size[0], height: size[1], theme, title: data.title,
    description: describedPose(data.description, placed.pose) });
}

function compare(page, words) {
  const drawn = outputOf(['draw', ...words]);
  assert.match(drawn, /^<svg /);
  assert.equal(page, drawn, words.join(' '));
}

for (const [name, pair] of Object.entries(PAIRS))
  test(`${name} from all sides`, () => {
    const data = pageData(pair);
    for (const [view, direction] of Object.entries(VIEWS))
      for (const [words, shown] of Object.values(SHOWN))
        compare(pageSvg(data, direction, shown, SIZES['800x600'], 'light', data.pose),
          [...pair, ...words, '--view', view]);
  });

test('sizes and dark colours', () => {
  const pair = PAIRS['adenine and thymine'];
  const data = pageData(pair);
  for (const [name, size] of Object.entries(SIZES))
    for (const theme of ['light', 'dark'])
      compare(pageSvg(data, VIEWS.iso, [true, true, true, false], size, theme, data.pose),
        [...pair, '--angles', '--size', name, '--theme', theme]);
});

test('other poses than that of the file', () => {
  const pair = PAIRS['two formamides'];
  const data = pageData(pair);
  for (const [theta, phi, alpha, beta, gamma] of [
    [0, 0, 0, 0, 0], [180, 90, 0, 180, 0], [90, 360, -30, 45.25, 400], [57, 211, 3, 0, 8]]) {
    const pose = { r: 4.125, theta, phi, alpha, beta, gamma };
    const words = Object.entries(pose).flatMap(([key, value]) => [`--${key}`, String(value)]);
    compare(pageSvg(data, VIEWS.iso, [true, true, true, true], [800, 600], 'light', pose),
      [...pair, ...words, '--angles', '--labels']);
  }
});

test('contacts by radii', () => {
  const pair = [...PAIRS['two waters'], '--contact-distance', 'vdw*1.1'];
  const data = pageData(pair);
  assert.equal(data.criterion.by_radii, true);
  const page = pageSvg(data, VIEWS.iso, [true, false, true, false], [800, 600], 'light', data.pose);
  // The two nearest hydrogens are 1.016 of the radii apart and count; the hydrogen bond is one line.
  assert.ok((page.match(/fill="#c8102e"/g) || []).length >= 2);
  compare(page, pair);
});
