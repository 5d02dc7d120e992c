// Round numbers along an axis of a diagram.

import { shownNumber } from './numbers.js';

const STEPS = [1, 2, 5, 10];
// Angles are divided as a circle is.
const DEGREE_STEPS = [1, 2, 5, 10, 15, 30, 45, 60, 90, 180, 360];

// From low to high, at most `most` of them: [{ value, text }].
export function ticksBetween(low, high, most, inDegrees) {
  if (!(high > low)) return [{ value: low, text: shownNumber(low, 4) }];
  const least = (high - low) / Math.max(most, 1);
  const power = 10 ** Math.floor(Math.log10(least));
  let step = power * STEPS.find((k) => k * power >= least * (1 - 1e-9));
  if (inDegrees && least > 0.5) step = DEGREE_STEPS.find((k) => k >= least) || step;
  const decimals = Math.max(0, Math.ceil(-Math.log10(step) - 1e-9));
  const ticks = [];
  for (let k = Math.ceil(low / step - 1e-9); k * step <= high + 1e-9 * step; ++k)
    ticks.push({ value: k * step, text: shownNumber(k * step, decimals) });
  return ticks;
}

// A value as a diagram tells it: four digits that count.
export function valueText(value) {
  if (!Number.isFinite(value)) return '-';
  const size = Math.abs(value);
  const whole = size < 1 ? 0 : Math.floor(Math.log10(size));
  return shownNumber(value, Math.max(0, 3 - whole));
}

export function titleOf(column) {
  return column.unit ? `${column.name}, ${column.unit}` : column.name;
}
