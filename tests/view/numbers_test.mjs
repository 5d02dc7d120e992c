// Numbers as text.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { countText, fixedText, shortestText, shownNumber } from '../../view/numbers.js';
import { ticksBetween, valueText } from '../../view/ticks.js';

test('fixed notation rounds the binary value, ties to even', () => {
  // 0.125, 0.375, 2.5 and 90.25 are exact in binary, so they are ties; 0.15 and 1.005 are just below.
  const cases = [[0.125, 2, '0.12'], [0.375, 2, '0.38'], [2.5, 0, '2'], [3.5, 0, '4'], [90.25, 1, '90.2'],
    [90.75, 1, '90.8'], [0.15, 1, '0.1'], [1.005, 2, '1.00'], [-0.125, 2, '-0.12'], [-12.5, 2, '-12.50'],
    [0, 2, '0.00'], [-0, 2, '-0.00'], [-0.001, 2, '-0.00'], [9.995, 2, '9.99'], [0.5, 0, '0'],
    [1.5, 0, '2'], [99.5, 0, '100'], [1e-9, 8, '0.00000000'], [123456.5, 0, '123456']];
  for (const [value, decimals, text] of cases) assert.equal(fixedText(value, decimals), text);
});

test('the shortest text reads back as the same number', () => {
  const cases = [[0, '0'], [-0, '-0'], [3.25, '3.25'], [360, '360'], [1000, '1000'], [100000, '1e+05'],
    [123456, '123456'], [0.001, '0.001'], [0.0001, '1e-04'], [0.00012, '0.00012'], [1e-7, '1e-07'],
    [1.5e-9, '1.5e-09'], [0.1 + 0.2, '0.30000000000000004'], [-90.5, '-90.5'], [1e22, '1e+22']];
  for (const [value, text] of cases) {
    assert.equal(shortestText(value), text);
    assert.ok(Object.is(Number(text), value));
  }
});

test('numbers for people', () => {
  assert.equal(shownNumber(3, 4), '3');
  assert.equal(shownNumber(3.10004, 4), '3.1');
  assert.equal(shownNumber(1200, 2), '1200');
  assert.equal(shownNumber(-0.00001, 2), '0');
  assert.equal(countText(100000), '100,000');
  assert.equal(countText(999), '999');
  assert.equal(countText(1234567), '1,234,567');
  assert.equal(valueText(1234.5678), '1235');
  assert.equal(valueText(-5.17234), '-5.172');
  assert.equal(valueText(0.0712), '0.071');
  assert.equal(valueText(NaN), '-');
});

test('round numbers along an axis', () => {
  const texts = (...words) => ticksBetween(...words).map(({ text }) => text);
  assert.deepEqual(texts(0, 10, 5, false), ['0', '2', '4', '6', '8', '10']);
  assert.deepEqual(texts(-5, 185, 7, true), ['0', '30', '60', '90', '120', '150', '180']);
  assert.deepEqual(texts(0, 360, 4, true), ['0', '90', '180', '270', '360']);
  assert.deepEqual(texts(-0.012, 0.03, 4, false), ['0', '0.02']);
  assert.deepEqual(texts(7, 7, 4, false), ['7']);
  for (const { value } of ticksBetween(2.41, 6.33, 6, false)) assert.ok(value >= 2.41 && value <= 6.33);
});
