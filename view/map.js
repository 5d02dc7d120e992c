// The map of a scan: a pose is chosen by pressing on it or by arrow keys.

import { paletteOf } from './colours.js';
import { DiagramCanvas, placeInArea } from './diagram.js';
import { byId, fillChoices } from './dom.js';
import { mapModel, neighbourRow, rowAt, CHOICES } from './map_model.js';
import { areaOfMap, paintMap, paintMarker } from './map_painting.js';
import { titleOf, valueText } from './ticks.js';

const NO_AXIS = '';
const STEPS_OF_KEYS = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1] };
const HINT = 'Press on the map, or use arrow keys, to choose a pose.';

// "Map of clearance over r, Angstrom, and theta, degrees".
function wordsOfMap({ kind, x, y, colour }) {
  if (kind === 'profile') return `Profile of ${titleOf(colour)} over ${titleOf(x.column)}`;
  return `Map of ${titleOf(colour)} over ${titleOf(x.column)}, and ${titleOf(y.column)}`;
}

export class PosesMap {
  // first: names of the columns that are shown first. choose(row) is called.
  constructor(poses, choose, first) {
    Object.assign(this, { poses, choose, row: -1, theme: 'light' });
    this.selects = {
      x: byId('map-x'), y: byId('map-y'), colour: byId('map-colour'), choice: byId('map-choice') };
    this.fillSelects(first);
    this.diagram = new DiagramCanvas(byId('map'), {
      base: (size) => paintMap(size, this.model, paletteOf(this.theme)),
      top: ({ context, width, height }) => {
        if (this.row >= 0) paintMarker(context, areaOfMap({ width, height }), this.model, this.row);
      },
    });
    this.remake();
    this.listen(byId('map'));
  }

  fillSelects(first) {
    const { x, y, colour, choice } = this.selects;
    const numeric = this.poses.columns.filter((column) => column.isNumeric);
    const names = Object.fromEntries(numeric.map(({ name }) => [name, name]));
    fillChoices(x, names, first.x);
    fillChoices(y, Object.assign({ [NO_AXIS]: 'nothing: a profile' }, names), first.y || NO_AXIS);
    fillChoices(colour, names, first.colour);
    fillChoices(choice, CHOICES, 'lowest');
  }

  remake() {
    const { x, y, colour, choice } = this.selects;
    const named = (select) => this.poses.named(select.value);
    this.model = mapModel(this.poses, {
      x: named(x), y: y.value === NO_AXIS ? null : named(y), colour: named(colour), choice: choice.value,
    }, this.row);
    byId('map-choice-label').hidden = this.model.others.length === 0;
    this.diagram.paintAgain();
  }

  // "pose 12, r 3, theta 90, shortest 1.95".
  wordsOfRow(row) {
    const { x, y, colour } = this.model;
    const columns = [...new Set([x.column, y.column, colour])];
    return [this.poses.nameOf(row)].concat(columns.map((column) =>
      `${column.name} ${valueText(column.at(row))}`)).join(', ');
  }

  tell() {
    const chosen = this.row < 0 ? '' : `; chosen: ${this.wordsOfRow(this.row)}`;
    byId('map').setAttribute('aria-label', wordsOfMap(this.model) + chosen);
  }

  show(row, theme) {
    const isThemeNew = theme !== this.theme, isRowNew = row !== this.row;
    Object.assign(this, { row, theme });
    const isSlice = this.selects.choice.value === 'slice';
    if (isRowNew && isSlice && !this.model.chosen.includes(row)) this.remake();
    else if (isThemeNew) this.diagram.paintAgain();
    else this.diagram.paint();
    this.tell();
  }

  resize() {
    this.diagram.paintAgain();
  }

  rowUnder({ offsetX, offsetY }) {
    const canvas = byId('map');
    const area = areaOfMap({ width: canvas.clientWidth, height: canvas.clientHeight });
    const place = placeInArea(area, offsetX, offsetY);
    return place ? rowAt(this.model, place) : -1;
  }

  chooseIfNew(row) {
    if (row >= 0 && row !== this.row) this.choose(row);
  }

  listen(canvas) {
    canvas.addEventListener('pointerdown', (event) => this.chooseIfNew(this.rowUnder(event)));
    canvas.addEventListener('pointermove', (event) => {
      const row = this.rowUnder(event);
      byId('map-hint').textContent = row < 0 ? HINT : this.wordsOfRow(row);
      if (event.buttons & 1) this.chooseIfNew(row);
    });
    canvas.addEventListener('pointerleave', () => { byId('map-hint').textContent = HINT; });
    canvas.addEventListener('keydown', (event) => {
      const step = STEPS_OF_KEYS[event.key];
      if (!step || event.ctrlKey || event.altKey || event.metaKey) return;
      event.preventDefault();
      this.chooseIfNew(neighbourRow(this.model, this.row, step[0], step[1]));
    });
    for (const select of Object.values(this.selects))
      select.addEventListener('change', () => {
        this.remake();
        this.tell();
      });
  }
}
