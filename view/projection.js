// A scene as somebody sees it: flat marks in the order in which they are painted, the farthest first.
//
// Lengths of a scene are in Angstrom, those of a projection in pixels from the upper left corner.

import { cross, difference, dot, modulus, scaled, sum, RADIANS_PER_DEGREE } from './geometry.js';

// --- sizes ----------------------------------------------------------------------------------------

// In Angstrom, and in pixels where that would be less.
const STICK = { angstrom: 0.2, least: 2 };
const SHAFT = { angstrom: 0.08, least: 2 };
const ARC = { angstrom: 0.045, least: 1.5 };
const LINE = { angstrom: 0.045, least: 1.2 };
const FAINT = { angstrom: 0.03, least: 1 };
const HEAD = { angstrom: 0.36, least: 11 }; // lengths of the heads of arrows
const ARC_HEAD = { angstrom: 0.22, least: 8 };
const HEAD_RADIUS = 0.36; // as part of its length
const CORNERS = 16; // of the circle of its base
const SEEN_FROM_ITS_TIP = 1e-6; // its direction across the view, at most

// Sticks begin below the surface of their ball, as part of its radius.
const STICK_BEGINS = 0.9;

// Lines are cut where others may pass before or behind them.
const PIECE = 0.4; // Angstrom
const DASH = 0.28; // with the gap behind it
const DASH_PART = 0.55;
const MOST_PIECES = 80;
const DEGREES_OF_PIECE = 6;

const FONT_PART = 1 / 36; // of the height of a picture
const SMALLEST_FONT = 11, LARGEST_FONT = 48;

// In heights of words: what a letter takes, how far apart lines of words are, and the room that the
// longest of them need around the scene.
const LETTER_WIDTH = 0.56, LINE_HEIGHT = 1.15;
const MARGIN_X = 3.2, MARGIN_Y = 1.4;
// Words that others would cover go by so many lines, the first that is free.
const LINES_AWAY = [0, -1, 1, -2, 2, -3, 3];

const SMALLEST_SCENE = 4; // Angstrom, that fills a picture
const POINTS_OF_ARC = 16;

// After a part of the arc from 0 to 1.
export function pointOfArc(arc, part) {
  const angle = RADIANS_PER_DEGREE * arc.degrees * part;
  const direction = sum(scaled(Math.cos(angle), arc.start), scaled(Math.sin(angle), arc.across));
  return sum(arc.centre, scaled(arc.radius, direction));
}

// Places that the scene reaches, beside its balls.
export function outlineOf(scene) {
  const points = scene.arrows.map(({ to }) => to);
  for (const { from, to } of scene.lines) points.push(from, to);
  for (const arc of scene.arcs)
    for (let k = 0; k <= POINTS_OF_ARC; ++k) points.push(pointOfArc(arc, k / POINTS_OF_ARC));
  for (const { at } of scene.captions) points.push(at);
  return points;
}

// --- how a scene goes on paper --------------------------------------------------------------------

// Rows: to the right, upwards, towards who looks. The azimuth of who looks counts from X towards Y.
export function viewRows(view) {
  const azimuth = RADIANS_PER_DEGREE * view.azimuth;
  const elevation = RADIANS_PER_DEGREE * view.elevation;
  const ca = Math.cos(azimuth), sa = Math.sin(azimuth);
  const ce = Math.cos(elevation), se = Math.sin(elevation);
  return [[-sa, ca, 0], [-se * ca, -se * sa, ce], [ce * ca, ce * sa, se]];
}

function boxOf(scene, rows) {
  const low = [Infinity, Infinity], high = [-Infinity, -Infinity];
  const add = (p, radius) => {
    const flat = [dot(rows[0], p), -dot(rows[1], p)];
    for (const k of [0, 1]) {
      low[k] = Math.min(low[k], flat[k] - radius);
      high[k] = Math.max(high[k], flat[k] + radius);
    }
  };
  for (const ball of scene.balls) add(ball.centre, ball.radius);
  for (const point of outlineOf(scene)) add(point, 0);
  return { low, high };
}

// Height of words in a picture of this height.
export function fontOf(height) {
  return Math.min(Math.max(FONT_PART * height, SMALLEST_FONT), LARGEST_FONT);
}

// Width and height that words of this height leave to a scene in a picture of this size.
export function roomWithin(width, height, font) {
  const roomX = Math.max(width - 2 * MARGIN_X * font, 0.25 * width);
  const roomY = Math.max(height - 2 * MARGIN_Y * font, 0.25 * height);
  return [roomX, roomY];
}

// Such that the scene fills a picture of this size. A point p of the scene is at
// scale (right p, -up p) + origin.
export function fittedPaper(scene, rows, width, height) {
  const font = fontOf(height);
  const { low, high } = boxOf(scene, rows);
  const [roomX, roomY] = roomWithin(width, height, font);
  const scale = Math.min(
    roomX / Math.max(high[0] - low[0], SMALLEST_SCENE), roomY / Math.max(high[1] - low[1], SMALLEST_SCENE));
  const origin = [
    0.5 * width - 0.5 * scale * (low[0] + high[0]), 0.5 * height - 0.5 * scale * (low[1] + high[1])];
  return { rows, scale, origin, font };
}

// --- marks ----------------------------------------------------------------------------------------

// Marks are { depth, kind, ... }: a disc { centre, radius, element }, a rod or a stroke
// { from, to, width, element or ink }, a polygon { corners, ink }.
class Projector {
  constructor(paper) {
    this.paper = paper;
    this.marks = [];
    this.words = [];
  }

  at(p) {
    const { rows, scale, origin } = this.paper;
    return [origin[0] + scale * dot(rows[0], p), origin[1] - scale * dot(rows[1], p)];
  }

  pixels(width) {
    return Math.max(this.paper.scale * width.angstrom, width.least);
  }

  // Millionths of an Angstrom: what rounding leaves decides about no order.
  add(where, mark) {
    mark.depth = Math.floor(1e6 * dot(this.paper.rows[2], where) + 0.5);
    this.marks.push(mark);
  }

  addBall({ centre, radius, element }) {
    this.add(centre, { kind: 'disc', centre: this.at(centre), radius: this.paper.scale * radius, element });
  }

  addStick(stick) {
    const along = difference(stick.to, stick.from);
    const length = modulus(along);
    const hidden = STICK_BEGINS * stick.element.ball;
    if (hidden >= length) return;
    const from = sum(stick.from, scaled(hidden / length, along));
    this.add(scaled(0.5, sum(from, stick.to)), {
      kind: 'rod', from: this.at(from), to: this.at(stick.to), width: this.pixels(STICK),
      element: stick.element });
  }

  addPiece(from, to, width, ink) {
    this.add(scaled(0.5, sum(from, to)),
      { kind: 'stroke', from: this.at(from), to: this.at(to), width: this.pixels(width), ink });
  }

  addLine(from, to, width, ink, dashed) {
    const along = difference(to, from);
    const wanted = Math.ceil(modulus(along) / (dashed ? DASH : PIECE));
    const pieces = Math.min(Math.max(wanted, 1), MOST_PIECES);
    const part = dashed ? DASH_PART : 1;
    const point = (k) => sum(from, scaled(k / pieces, along));
    for (let k = 0; k < pieces; ++k) this.addPiece(point(k), point(k + part), width, ink);
  }

  addArrow({ from, to, ink }) {
    const along = difference(to, from);
    const length = modulus(along);
    const direction = scaled(1 / length, along);
    const head = Math.min(this.pixels(HEAD) / this.paper.scale, 0.5 * length);
    const base = difference(to, scaled(head, direction));
    this.addLine(from, base, SHAFT, ink, false);
    this.addHead(base, direction, head, ink);
  }

  // A cone: the circle of its base, and the triangle of its outline.
  addHead(base, direction, length, ink) {
    const [right, up, toEye] = this.paper.rows;
    const radius = HEAD_RADIUS * length;
    const dx = dot(right, direction), dy = dot(up, direction);
    const seen = Math.hypot(dx, dy);
    const isFlat = seen < SEEN_FROM_ITS_TIP;
    const across = isFlat ? right : difference(scaled(dx / seen, up), scaled(dy / seen, right));
    const other = cross(direction, across);
    const corners = [];
    for (let k = 0; k < CORNERS; ++k) {
      const angle = RADIANS_PER_DEGREE * 360 * k / CORNERS;
      const rim = sum(scaled(Math.cos(angle), across), scaled(Math.sin(angle), other));
      corners.push(this.at(sum(base, scaled(radius, rim))));
    }
    this.add(base, { kind: 'polygon', corners, ink });
    if (isFlat) return;
    const tip = sum(base, scaled(length, direction));
    const outline = [difference(base, scaled(radius, across)), tip, sum(base, scaled(radius, across))];
    this.add(dot(toEye, direction) > 0 ? tip : base,
      { kind: 'polygon', corners: outline.map((p) => this.at(p)), ink });
  }

  addArc(arc) {
    const head = this.pixels(ARC_HEAD) / this.paper.scale;
    const partOfHead = head / (arc.radius * RADIANS_PER_DEGREE * arc.degrees);
    const withHead = partOfHead < 0.6;
    const shaft = withHead ? 1 - partOfHead : 1;
    const pieces = Math.ceil(shaft * arc.degrees / DEGREES_OF_PIECE);
    const point = (k) => pointOfArc(arc, shaft * (k / pieces));
    for (let k = 0; k < pieces; ++k) this.addPiece(point(k), point(k + 1), ARC, arc.ink);
    if (!withHead) return;
    const base = pointOfArc(arc, shaft);
    const along = difference(pointOfArc(arc, 1), base);
    const length = modulus(along);
    this.addHead(base, scaled(1 / length, along), length, arc.ink);
  }

  // Where they belong, or above or below where others stand there.
  addWords({ at, text, ink }) {
    const [x, y] = this.at(at);
    const words = { middle: [x, y], text, ink, letters: [...text].length };
    for (const lines of LINES_AWAY) {
      words.middle[1] = y + lines * LINE_HEIGHT * this.paper.font;
      if (this.isFree(words)) break;
    }
    this.words.push(words);
  }

  isFree({ middle, letters }) {
    const { font } = this.paper;
    return !this.words.some((other) =>
      Math.abs(middle[0] - other.middle[0]) < 0.5 * (letters + other.letters) * LETTER_WIDTH * font &&
      Math.abs(middle[1] - other.middle[1]) < 0.95 * LINE_HEIGHT * font);
  }
}

// { marks, words: [{ middle, text, ink }] }: words stand in front of all.
export function projected(scene, paper) {
  const projector = new Projector(paper);
  for (const ball of scene.balls) projector.addBall(ball);
  for (const stick of scene.sticks) projector.addStick(stick);
  for (const { from, to, ink, dashed } of scene.lines)
    projector.addLine(from, to, ink === 'faint' ? FAINT : LINE, ink, dashed);
  for (const arrow of scene.arrows) projector.addArrow(arrow);
  for (const arc of scene.arcs) projector.addArc(arc);
  projector.marks.sort((a, b) => a.depth - b.depth);
  for (const caption of scene.captions) projector.addWords(caption);
  return { marks: projector.marks, words: projector.words };
}
