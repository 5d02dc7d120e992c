// Paints the map of poses: cells, points or a profile, its axes, its colour bar, and the chosen pose.

import { scaleColour } from './colours.js';
import { clearDiagram, paintAxisBelow, paintAxisLeft, paintFrame, paintTitleLeft } from './diagram.js';
import { pixelAcross, pixelDown, DIAGRAM_FONT } from './diagram.js';
import { partOfScale, placeInMap } from './map_model.js';
import { ticksBetween, titleOf } from './ticks.js';

const SHADES_OF_SCALE = 64;
const SMALL_POINT = 3, LARGE_POINT = 5, FEW_POINTS = 2000; // pixels, how many are painted large
const MARKER = 6; // pixels

export function areaOfMap({ width, height }) {
  const [left, right, top, bottom] = [66, 78, 28, 44];
  return {
    left, top, width: Math.max(40, width - left - right), height: Math.max(40, height - top - bottom) };
}

function paintCells(context, area, model) {
  const { x, y, chosen, across, colour, scale } = model;
  chosen.forEach((row, cell) => {
    const value = row < 0 ? NaN : colour.at(row);
    if (!Number.isFinite(value)) return;
    const i = cell % across, j = Math.floor(cell / across);
    const left = Math.round(pixelAcross(area, x, x.edges[i]));
    const right = Math.round(pixelAcross(area, x, x.edges[i + 1]));
    const top = Math.round(pixelDown(area, y, y.edges[j + 1]));
    const bottom = Math.round(pixelDown(area, y, y.edges[j]));
    context.fillStyle = scaleColour(partOfScale(scale, value));
    context.fillRect(left, top, right - left, bottom - top);
  });
}

// Points of one colour together: a change of colour takes longer than a point.
function paintPoints(context, area, model) {
  const shades = Array.from({ length: SHADES_OF_SCALE }, () => []);
  for (const row of model.chosen) {
    const part = row < 0 ? NaN : partOfScale(model.scale, model.colour.at(row));
    if (!Number.isFinite(part)) continue;
    shades[Math.round(Math.min(Math.max(part, 0), 1) * (SHADES_OF_SCALE - 1))].push(row);
  }
  const side = model.chosen.length > FEW_POINTS ? SMALL_POINT : LARGE_POINT;
  shades.forEach((rows, k) => {
    context.fillStyle = scaleColour(k / (SHADES_OF_SCALE - 1));
    for (const row of rows) {
      const [right, up] = placeInMap(model, row);
      context.fillRect(area.left + right * area.width - side / 2,
        area.top + (1 - up) * area.height - side / 2, side, side);
    }
  });
}

function paintProfile(context, area, model, palette) {
  context.strokeStyle = palette.text;
  context.lineWidth = 1.2;
  context.beginPath();
  let isDrawing = false;
  for (const row of model.chosen) {
    if (row < 0 || !Number.isFinite(model.colour.at(row))) {
      isDrawing = false;
      continue;
    }
    const [right, up] = placeInMap(model, row);
    const point = [area.left + right * area.width, area.top + (1 - up) * area.height];
    if (isDrawing) context.lineTo(point[0], point[1]);
    else context.moveTo(point[0], point[1]);
    isDrawing = true;
  }
  context.stroke();
  paintPoints(context, area, model);
}

function paintColourBar(context, area, model, palette) {
  const { scale, colour } = model;
  const left = area.left + area.width + 14, width = 14;
  const bar = { left, top: area.top, width, height: area.height };
  for (let k = 0; k < SHADES_OF_SCALE; ++k) {
    const top = bar.top + Math.round(bar.height * (SHADES_OF_SCALE - 1 - k) / SHADES_OF_SCALE);
    context.fillStyle = scaleColour(k / (SHADES_OF_SCALE - 1));
    context.fillRect(left, top, width, Math.ceil(bar.height / SHADES_OF_SCALE) + 1);
  }
  paintFrame(context, bar, palette);
  context.fillStyle = palette.text;
  context.font = DIAGRAM_FONT;
  context.textAlign = 'left';
  context.textBaseline = 'middle';
  const axis = { low: scale.low, high: scale.high > scale.low ? scale.high : scale.low + 1 };
  for (const { value, text } of ticksBetween(scale.low, scale.high, 5, false)) {
    const isEnd = scale.isCut && Math.abs(value - scale.high) < 1e-9 * Math.abs(scale.high);
    context.fillText((isEnd ? '\u2265 ' : '') + text, left + width + 5, pixelDown(bar, axis, value));
  }
  context.textAlign = 'right';
  context.fillText(titleOf(colour), left + 60, area.top - 14, area.width + 60);
}

export function paintMarker(context, area, model, row) {
  const [right, up] = placeInMap(model, row);
  if (![right, up].every((part) => part >= 0 && part <= 1)) return;
  for (const [colour, width] of [['#000000', 4], ['#ffffff', 2]]) {
    context.strokeStyle = colour;
    context.lineWidth = width;
    context.beginPath();
    context.arc(area.left + right * area.width, area.top + (1 - up) * area.height, MARKER, 0, 2 * Math.PI);
    context.stroke();
  }
}

const MAP_PAINTERS = { cells: paintCells, points: paintPoints, profile: paintProfile };

export function paintMap(size, model, palette) {
  const area = areaOfMap(size);
  const { context } = size;
  clearDiagram(context, size, palette);
  context.save();
  context.beginPath();
  context.rect(area.left, area.top, area.width, area.height);
  context.clip();
  MAP_PAINTERS[model.kind](context, area, model, palette);
  context.restore();
  paintFrame(context, area, palette);
  paintAxisBelow(context, area, model.x, palette);
  paintAxisLeft(context, area, model.y, palette);
  paintTitleLeft(context, area, titleOf(model.y.column), palette);
  paintColourBar(context, area, model, palette);
}
