// Paints a projection on a canvas, as the vector drawing has it.

import { mixed } from './colours.js';
import { HALO, LIGHT_MIDDLE, OUTLINE, SHADES, STRIPE_PART, STRIPE_WHITE } from './svg.js';

const FULL_CIRCLE = 2 * Math.PI;

// Pictures of balls: to copy one is much faster than to shade it again.
const SPRITES = new Map();
const MOST_SPRITES = 200;

function paintBall(context, radius, colour, outline) {
  const middle = (2 * LIGHT_MIDDLE - 1) * radius;
  const shade = context.createRadialGradient(middle, middle, 0, middle, middle, 1.4 * radius);
  for (const { offset, other, part } of SHADES) shade.addColorStop(offset, mixed(colour, other, part));
  context.beginPath();
  context.arc(0, 0, radius, 0, FULL_CIRCLE);
  context.fillStyle = shade;
  context.fill();
  context.strokeStyle = outline;
  context.lineWidth = OUTLINE;
  context.stroke();
}

function spriteOf(element, radius, ratio, outline) {
  const key = `${element.number} ${radius.toFixed(2)} ${ratio} ${outline}`;
  if (SPRITES.has(key)) return SPRITES.get(key);
  if (SPRITES.size >= MOST_SPRITES) SPRITES.clear();
  const sprite = document.createElement('canvas');
  const half = Math.ceil((radius + OUTLINE) * ratio) + 1;
  sprite.width = sprite.height = 2 * half;
  const context = sprite.getContext('2d');
  context.setTransform(ratio, 0, 0, ratio, half, half);
  paintBall(context, radius, element.colour, outline);
  SPRITES.set(key, sprite);
  return sprite;
}

function paintLine(context, from, to, width, colour) {
  context.strokeStyle = colour;
  context.lineWidth = width;
  context.beginPath();
  context.moveTo(from[0], from[1]);
  context.lineTo(to[0], to[1]);
  context.stroke();
}

// How a mark is painted, by its kind.
const MARK_PAINTERS = {
  disc: (context, { centre, radius, element }, { palette, ratio }) => {
    const sprite = spriteOf(element, radius, ratio, palette.outline);
    const side = sprite.width / ratio;
    // On whole dots: a picture that falls between them is copied slowly.
    const left = Math.round((centre[0] - side / 2) * ratio) / ratio;
    const top = Math.round((centre[1] - side / 2) * ratio) / ratio;
    context.drawImage(sprite, left, top, side, side);
  },
  rod: (context, { from, to, width, element }, { palette, isCoarse }) => {
    paintLine(context, from, to, width + 2 * OUTLINE, palette.outline);
    paintLine(context, from, to, width, element.colour);
    if (isCoarse) return;
    paintLine(context, from, to, STRIPE_PART * width, mixed(element.colour, '#ffffff', STRIPE_WHITE));
  },
  stroke: (context, { from, to, width, ink }, { palette }) =>
    paintLine(context, from, to, width, palette[ink]),
  polygon: (context, { corners, ink }, { palette }) => {
    context.beginPath();
    corners.forEach(([x, y], k) => (k === 0 ? context.moveTo(x, y) : context.lineTo(x, y)));
    context.fillStyle = palette[ink];
    context.fill();
  },
};

function paintWords(context, words, font, { palette }) {
  context.font = `${font}px sans-serif`;
  context.textAlign = 'center';
  context.textBaseline = 'middle';
  context.lineJoin = 'round';
  context.lineWidth = HALO;
  context.strokeStyle = palette.background;
  for (const { middle, text, ink } of words) {
    context.strokeText(text, middle[0], middle[1]);
    context.fillStyle = palette[ink];
    context.fillText(text, middle[0], middle[1]);
  }
}

// look: { palette, ratio (dots for one pixel), isCoarse (faster, without details) }.
export function paintProjection(context, projection, size, font, look) {
  context.fillStyle = look.palette.background;
  context.fillRect(0, 0, size.width, size.height);
  context.lineCap = look.isCoarse ? 'butt' : 'round';
  for (const mark of projection.marks) MARK_PAINTERS[mark.kind](context, mark, look);
  paintWords(context, projection.words, font, look);
}
