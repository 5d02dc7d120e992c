// The six parameters of a trajectory over its frames, as small curves above each other.

import { paletteOf } from './colours.js';
import { clearDiagram, paintAxisBelow, paintAxisLeft, paintFrame } from './diagram.js';
import { pixelAcross, pixelDown, DiagramCanvas, DIAGRAM_FONT } from './diagram.js';
import { byId } from './dom.js';
import { isAzimuth } from './geometry.js';
import { titleOf, valueText } from './ticks.js';

const LEFT = 66, RIGHT = 14, TOP = 4, BOTTOM = 44, GAP = 16;
const HALF_TURN = 180;
const INKS_OF_CURVES = ['text', 'place', 'place', 'turn', 'turn', 'turn'];

// Of the parameter in its panel. A curve that is flat has room too.
function curveAxis(column, rows) {
  let low = Infinity, high = -Infinity;
  for (let row = 0; row < rows; ++row) {
    const value = column.at(row);
    if (value < low) low = value;
    if (value > high) high = value;
  }
  if (!(low <= high)) return { column, low: 0, high: 1 };
  const margin = Math.max(0.06 * (high - low), column.name === 'r' ? 0.05 : 1);
  return { column, low: low - margin, high: high + margin };
}

function panelsOf({ width, height }, count) {
  const tall = (height - TOP - BOTTOM - GAP * count) / count;
  return Array.from({ length: count }, (_, k) =>
    ({ left: LEFT, top: TOP + GAP + k * (tall + GAP), width: width - LEFT - RIGHT, height: tall }));
}

function paintWord(context, word, x, y, align) {
  context.font = DIAGRAM_FONT;
  context.textAlign = align;
  context.textBaseline = 'bottom';
  context.fillText(word, x, y);
}

// Lines are broken where an azimuth passes 360 and 0, and where a frame has no value.
function paintCurve(context, area, xAxis, yAxis, rows, colour) {
  const { column } = yAxis;
  context.strokeStyle = colour;
  context.lineWidth = 1.4;
  context.beginPath();
  let before = NaN;
  for (let row = 0; row < rows; ++row) {
    const value = column.at(row);
    const x = pixelAcross(area, xAxis, xAxis.column.at(row)), y = pixelDown(area, yAxis, value);
    const isBroken = !(Math.abs(value - before) <= (isAzimuth(column.name) ? HALF_TURN : Infinity));
    if (Number.isFinite(value)) {
      if (isBroken) context.moveTo(x - 0.5, y);
      context.lineTo(x, y);
    }
    before = value;
  }
  context.stroke();
}

export class Curves {
  // choose(row) is called.
  constructor(poses, choose) {
    const last = poses.rows - 1;
    const numbers = [poses.numberOf(0), poses.numberOf(last)];
    Object.assign(this, { poses, choose, last, row: -1, theme: 'light' });
    this.xAxis = { low: numbers[0], high: Math.max(numbers[1], numbers[0] + 1),
      column: { name: poses.one, unit: '', at: poses.numberOf } };
    this.axes = poses.parameters.filter((column) => column && column.isNumeric)
      .map((column) => curveAxis(column, poses.rows));
    this.diagram = new DiagramCanvas(byId('curves'), {
      base: (size) => this.paintBase(size), top: (size) => this.paintCursor(size) });
    this.listen(byId('curves'));
  }

  paintBase(size) {
    const { context } = size;
    const palette = paletteOf(this.theme);
    const areas = panelsOf(size, this.axes.length);
    clearDiagram(context, size, palette);
    this.axes.forEach((axis, k) => {
      paintFrame(context, areas[k], palette);
      paintCurve(context, areas[k], this.xAxis, axis, this.poses.rows, palette[INKS_OF_CURVES[k]]);
      paintAxisLeft(context, areas[k], axis, palette);
      paintWord(context, titleOf(axis.column), areas[k].left, areas[k].top - 2, 'left');
    });
    paintAxisBelow(context, areas[areas.length - 1], this.xAxis, palette);
  }

  paintCursor(size) {
    if (this.row < 0) return;
    const { context } = size;
    const palette = paletteOf(this.theme);
    const areas = panelsOf(size, this.axes.length);
    const x = pixelAcross(areas[0], this.xAxis, this.poses.numberOf(this.row));
    const end = areas[areas.length - 1];
    context.fillStyle = palette.largest;
    context.fillRect(x - 0.5, areas[0].top, 1, end.top + end.height - areas[0].top);
    context.fillStyle = palette.text;
    this.axes.forEach(({ column }, k) => {
      const { left, top, width } = areas[k];
      paintWord(context, valueText(column.at(this.row)), left + width, top - 2, 'right');
    });
  }

  show(row, theme) {
    const isThemeNew = theme !== this.theme;
    Object.assign(this, { row, theme });
    const { poses, axes } = this;
    const values = axes.map(({ column }) => `${column.name} ${valueText(column.at(row))}`).join(', ');
    const chosen = row < 0 ? '' : `; chosen: ${poses.nameOf(row)}, ${values}`;
    byId('curves').setAttribute('aria-label',
      `Curves of the six parameters over ${poses.rows} ${poses.many}${chosen}`);
    if (isThemeNew) this.diagram.paintAgain();
    else this.diagram.paint();
  }

  resize() {
    this.diagram.paintAgain();
  }

  pointed({ offsetX }) {
    const canvas = byId('curves');
    const [{ left, width }] = panelsOf({ width: canvas.clientWidth, height: canvas.clientHeight }, 1);
    this.chooseNear((offsetX - left) / width * this.last);
  }

  chooseNear(row) {
    const found = Math.min(Math.max(Math.round(row), 0), this.last);
    if (found !== this.row) this.choose(found);
  }

  listen(canvas) {
    canvas.addEventListener('pointerdown', (event) => this.pointed(event));
    canvas.addEventListener('pointermove', (event) => { if (event.buttons & 1) this.pointed(event); });
    canvas.addEventListener('keydown', (event) => {
      const far = Math.max(1, Math.round(this.poses.rows / 20));
      const from = Math.max(this.row, 0);
      const to = { ArrowLeft: from - 1, ArrowRight: from + 1, PageUp: from + far, PageDown: from - far,
        Home: 0, End: this.last }[event.key];
      if (to === undefined || event.ctrlKey || event.altKey || event.metaKey) return;
      event.preventDefault();
      this.chooseNear(to);
    });
  }
}
