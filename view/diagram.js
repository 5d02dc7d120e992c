// What maps and curves have in common: axes with round numbers, and a place for each value.

import { coalesced, made, sizedContext } from './dom.js';
import { ticksBetween, titleOf } from './ticks.js';

export const DIAGRAM_FONT = '12px system-ui, sans-serif';
const PIXELS_OF_TICK = 62, PIXELS_OF_TICK_UP = 34;

// area: { left, top, width, height } in pixels; an axis has low, high and its column.
export function pixelAcross(area, axis, value) {
  return area.left + area.width * (value - axis.low) / (axis.high - axis.low);
}

export function pixelDown(area, axis, value) {
  return area.top + area.height * (1 - (value - axis.low) / (axis.high - axis.low));
}

// As parts of the sides of the area, from its lower left corner; null beside it.
export function placeInArea(area, x, y) {
  const place = [(x - area.left) / area.width, 1 - (y - area.top) / area.height];
  return place.every((part) => part >= 0 && part <= 1) ? place : null;
}

function isInDegrees({ column }) {
  return column.unit.startsWith('degree');
}

export function paintAxisBelow(context, area, axis, palette) {
  context.fillStyle = palette.text;
  context.font = DIAGRAM_FONT;
  context.textAlign = 'center';
  context.textBaseline = 'top';
  const bottom = area.top + area.height;
  const most = area.width / PIXELS_OF_TICK;
  for (const { value, text } of ticksBetween(axis.low, axis.high, most, isInDegrees(axis))) {
    const x = pixelAcross(area, axis, value);
    context.fillRect(x - 0.5, bottom, 1, 4);
    context.fillText(text, x, bottom + 7);
  }
  context.fillText(titleOf(axis.column), area.left + area.width / 2, bottom + 23);
}

export function paintAxisLeft(context, area, axis, palette) {
  context.fillStyle = palette.text;
  context.font = DIAGRAM_FONT;
  context.textAlign = 'right';
  context.textBaseline = 'middle';
  const most = area.height / PIXELS_OF_TICK_UP;
  for (const { value, text } of ticksBetween(axis.low, axis.high, most, isInDegrees(axis))) {
    const y = pixelDown(area, axis, value);
    context.fillRect(area.left - 4, y - 0.5, 4, 1);
    context.fillText(text, area.left - 7, y);
  }
}

// Upwards, at the left of the area.
export function paintTitleLeft(context, area, title, palette) {
  context.save();
  context.translate(14, area.top + area.height / 2);
  context.rotate(-Math.PI / 2);
  context.textAlign = 'center';
  context.textBaseline = 'middle';
  context.fillStyle = palette.text;
  context.font = DIAGRAM_FONT;
  context.fillText(title, 0, 0);
  context.restore();
}

export function paintFrame(context, area, palette) {
  context.strokeStyle = palette.faint;
  context.lineWidth = 1;
  context.strokeRect(area.left - 0.5, area.top - 0.5, area.width + 1, area.height + 1);
}

export function clearDiagram(context, size, palette) {
  context.fillStyle = palette.background;
  context.fillRect(0, 0, size.width, size.height);
}

// A canvas whose picture is kept, so that a marker can move over it.
export class DiagramCanvas {
  // base(size) paints all but the marker, top(size) the marker.
  constructor(canvas, { base, top }) {
    Object.assign(this, { canvas, base, top, kept: made('canvas'), isStale: true });
    this.paint = coalesced(() => this.paintNow());
  }

  paintAgain() {
    this.isStale = true;
    this.paint();
  }

  paintNow() {
    const { canvas, kept } = this;
    if (canvas.clientWidth === 0) return;
    const size = sizedContext(canvas);
    if (this.isStale) {
      this.base(size);
      kept.width = canvas.width;
      kept.height = canvas.height;
      kept.getContext('2d').drawImage(canvas, 0, 0);
      this.isStale = false;
    } else {
      size.context.drawImage(kept, 0, 0, size.width, size.height);
    }
    this.top(size);
  }
}
