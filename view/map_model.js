// What a map of poses has where: the cells of a grid, the points of a profile, or single points.

import { isEnergy } from './poses.js';

// Axes with more values than this are no grid; then each pose is a point.
const MOST_VALUES = 400;
// A grid of which less than this part is filled is none.
const LEAST_FILLED = 0.25;

// How a cell chooses among its poses.
export const CHOICES = { lowest: 'the lowest', highest: 'the highest', slice: 'as in the pose shown' };

// The values of a column in ascending order; null when there are too many.
function distinctValues(column, rows) {
  const values = new Set();
  for (let row = 0; row < rows; ++row) {
    const value = column.at(row);
    if (Number.isFinite(value)) values.add(value);
    if (values.size > MOST_VALUES) return null;
  }
  return [...values].sort((a, b) => a - b);
}

function rangeOf(column, rows) {
  let low = Infinity, high = -Infinity;
  for (let row = 0; row < rows; ++row) {
    const value = column.at(row);
    if (!Number.isFinite(value)) continue;
    if (value < low) low = value;
    if (value > high) high = value;
  }
  return low <= high ? [low, high] : [0, 1];
}

// Half a step beyond its first and last value, so that cells have room.
function gridAxis(column, values) {
  const last = values.length - 1;
  const middles = values.slice(1).map((value, k) => 0.5 * (values[k] + value));
  const first = last > 0 ? values[0] - 0.5 * (values[1] - values[0]) : values[0] - 0.5;
  const end = last > 0 ? values[last] + 0.5 * (values[last] - values[last - 1]) : values[0] + 0.5;
  const places = new Map(values.map((value, k) => [value, k]));
  return { column, values, edges: [first].concat(middles, [end]), low: first, high: end,
    placeOf: (row) => { const k = places.get(column.at(row)); return k === undefined ? -1 : k; } };
}

function freeAxis(column, rows) {
  const [low, high] = rangeOf(column, rows);
  const margin = 0.03 * (high - low) || 0.5;
  return { column, low: low - margin, high: high + margin };
}

// Parameters that vary on a grid beside the axes of the map.
function otherParameters(poses, names) {
  return poses.parameters.filter((column) => {
    if (!column || !column.isNumeric || column.isConstant || names.includes(column.name)) return false;
    const values = distinctValues(column, poses.rows);
    return values !== null && values.length > 1;
  });
}

// Whether one pose is preferred to another, whose values of the colour are these.
function isPreferred(choice, value, other) {
  if (!Number.isFinite(value)) return false;
  return !Number.isFinite(other) || (choice === 'highest' ? value > other : value < other);
}

// The chosen row of each cell, -1 where there is none.
function chosenRows(poses, cells, cellOf, colour, choice, others, shown) {
  const chosen = new Int32Array(cells).fill(-1);
  const slice = choice === 'slice' && shown >= 0 ? others : [];
  for (let row = 0; row < poses.rows; ++row) {
    const cell = cellOf(row);
    if (cell < 0) continue;
    if (slice.some((column) => column.at(row) !== column.at(shown))) continue;
    const before = chosen[cell];
    if (before < 0 || isPreferred(choice, colour.at(row), colour.at(before))) chosen[cell] = row;
  }
  return chosen;
}

// Lowest and highest value of these rows. Energies rise steeply where atoms touch: a scale that has
// both signs ends as far above zero as it begins below, and says that it is cut.
function colourScale(colour, rowsShown) {
  let low = Infinity, high = -Infinity;
  for (const row of rowsShown) {
    const value = row < 0 ? NaN : colour.at(row);
    if (!Number.isFinite(value)) continue;
    low = Math.min(low, value);
    high = Math.max(high, value);
  }
  if (!(low <= high)) return { low: 0, high: 1, isCut: false };
  if (isEnergy(colour) && low < 0 && high > -low) return { low, high: -low, isCut: true };
  return { low, high, isCut: false };
}

export function partOfScale(scale, value) {
  return scale.high > scale.low ? (value - scale.low) / (scale.high - scale.low) : 0.5;
}

function gridModel(poses, wanted, values, shown) {
  const { x, y, colour, choice } = wanted;
  const xAxis = gridAxis(x, values[0]), yAxis = gridAxis(y, values[1]);
  const across = values[0].length;
  const cellOf = (row) => {
    const i = xAxis.placeOf(row), j = yAxis.placeOf(row);
    return i < 0 || j < 0 ? -1 : j * across + i;
  };
  const others = otherParameters(poses, [x.name, y.name]);
  const chosen = chosenRows(poses, across * values[1].length, cellOf, colour, choice, others, shown);
  return { kind: 'cells', x: xAxis, y: yAxis, colour, chosen, across, cellOf, others,
    scale: colourScale(colour, chosen) };
}

// A profile has the values of the colour upwards.
function profileModel(poses, wanted, values, shown) {
  const { x, colour, choice } = wanted;
  const xAxis = gridAxis(x, values);
  const others = otherParameters(poses, [x.name]);
  const chosen = chosenRows(poses, values.length, xAxis.placeOf, colour, choice, others, shown);
  const scale = colourScale(colour, chosen);
  const margin = 0.06 * (scale.high - scale.low) || 0.5;
  return { kind: 'profile', x: xAxis, colour, chosen, cellOf: xAxis.placeOf, others, scale,
    y: { column: colour, low: scale.low - margin, high: scale.high + margin } };
}

function pointModel(poses, { x, y, colour }) {
  const rows = Int32Array.from({ length: poses.rows }, (_, row) => row);
  return { kind: 'points', x: freeAxis(x, poses.rows), y: freeAxis(y || colour, poses.rows), colour,
    chosen: rows, others: [], scale: colourScale(colour, rows) };
}

// wanted: { x, y (null for a profile), colour, choice }, the first three columns. `shown` is the row of
// the pose shown, -1 for none; a slice goes through it.
export function mapModel(poses, wanted, shown) {
  const xValues = distinctValues(wanted.x, poses.rows);
  if (xValues === null || xValues.length === 0) return pointModel(poses, wanted);
  if (!wanted.y) return profileModel(poses, wanted, xValues, shown);
  const yValues = distinctValues(wanted.y, poses.rows);
  if (yValues === null || yValues.length * xValues.length * LEAST_FILLED > poses.rows)
    return pointModel(poses, wanted);
  return gridModel(poses, wanted, [xValues, yValues], shown);
}

// --- where poses are ------------------------------------------------------------------------------

function partOfAxis(axis, value) {
  return (value - axis.low) / (axis.high - axis.low);
}

// From the lower left corner of the diagram, as parts of its sides.
export function placeInMap(model, row) {
  const up = partOfAxis(model.y, model.y.column.at(row));
  return [partOfAxis(model.x, model.x.column.at(row)),
    model.kind === 'profile' ? Math.min(Math.max(up, 0), 1) : up];
}

function cellAt(axis, part) {
  const value = axis.low + part * (axis.high - axis.low);
  const k = axis.edges.findIndex((edge) => edge > value) - 1; // below 0 behind the last edge
  return k === -2 ? axis.values.length - 1 : Math.max(k, 0);
}

// The row nearest to a place by a measure of (right, up), which is infinite where none counts; -1.
function nearestRow(model, place, measure) {
  let nearest = -1, least = Infinity;
  for (const row of model.chosen) {
    if (row < 0) continue;
    const [right, up] = placeInMap(model, row);
    const size = measure(right - place[0], up - place[1]);
    if (size < least) {
      least = size;
      nearest = row;
    }
  }
  return nearest;
}

// The row under a place; -1 for an empty cell.
export function rowAt(model, place) {
  if (model.kind === 'profile') return nearestRow(model, place, (right) => Math.abs(right));
  if (model.kind === 'points') return nearestRow(model, place, (right, up) => right * right + up * up);
  return model.chosen[cellAt(model.y, place[1]) * model.across + cellAt(model.x, place[0])];
}

// The next chosen row of a grid in a direction; the row itself at the end.
function neighbourInGrid(model, row, dx, dy) {
  const across = model.kind === 'cells' ? model.across : model.chosen.length;
  const rows = model.chosen.length / across;
  const cell = model.cellOf(row);
  let i = cell % across + dx, j = Math.floor(cell / across) + dy;
  for (; i >= 0 && i < across && j >= 0 && j < rows; i += dx, j += dy)
    if (model.chosen[j * across + i] >= 0) return model.chosen[j * across + i];
  return row;
}

// The row to go to by an arrow key: dx to the right or dy upwards is 1 or -1.
export function neighbourRow(model, row, dx, dy) {
  if (row < 0) return Math.max(-1, ...model.chosen.filter((k) => k >= 0).slice(0, 1));
  if (model.kind === 'profile' && dx === 0) return row;
  if (model.kind !== 'points') return neighbourInGrid(model, row, dx, dy);
  const found = nearestRow(model, placeInMap(model, row), (right, up) => {
    const along = right * dx + up * dy, across = right * dy + up * dx;
    return along > 1e-9 && Math.abs(across) <= along ? along * along + 4 * across * across : Infinity;
  });
  return found < 0 ? row : found;
}
