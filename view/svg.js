// A projection as vector drawing: the same bytes for the same scene as `dravo draw` writes.

import { mixed, paletteOf } from './colours.js';
import { shortestText } from './numbers.js';
import { fittedPaper, projected, viewRows } from './projection.js';

// Light falls on a ball from the upper left: parts of its radius, and what its colour is mixed with.
export const SHADES = [
  { offset: 0, other: '#ffffff', part: 0.75 },
  { offset: 0.45, other: '#ffffff', part: 0 },
  { offset: 1, other: '#000000', part: 0.4 }];
export const LIGHT_MIDDLE = 0.35;

// The bright stripe along a stick.
export const STRIPE_PART = 0.3, STRIPE_WHITE = 0.55;

// In pixels; the halo is around words.
export const OUTLINE = 0.8, HALO = 3;

// Words stand with their middle on a point: so much of their height is below.
export const TO_BASELINE = 0.35;

const SPECIAL = { '&': '&amp;', '<': '&lt;', '>': '&gt;', '"': '&quot;', "'": '&#39;' };

// Nothing that markup would take for its own; XML has no control characters.
export function escapedText(text) {
  // eslint-disable-next-line no-control-regex
  return text.replace(/[&<>"']/g, (c) => SPECIAL[c]).replace(/[\u0000-\u001f]/g, ' ');
}

// To hundredths.
function hundredths(value) {
  return shortestText(Math.floor(value * 100 + 0.5) / 100 + 0);
}

function headOf(drawing) {
  const { width, height } = drawing;
  return `<svg xmlns="http://www.w3.org/2000/svg" width="${width}" height="${height}" ` +
    `viewBox="0 0 ${width} ${height}" role="img" aria-labelledby="title description">\n` +
    `<title id="title">${escapedText(drawing.title)}</title>\n` +
    `<desc id="description">${escapedText(drawing.description)}</desc>\n`;
}

function shadesOf(marks) {
  const elements = new Map();
  for (const mark of marks) if (mark.kind === 'disc') elements.set(mark.element.number, mark.element);
  const middle = hundredths(LIGHT_MIDDLE);
  let text = '<defs>\n';
  for (const number of [...elements.keys()].sort((a, b) => a - b)) {
    text += `<radialGradient id="e${number}" cx="${middle}" cy="${middle}" r="0.7">`;
    for (const { offset, other, part } of SHADES)
      text += `<stop offset="${hundredths(offset)}" ` +
        `stop-color="${mixed(elements.get(number).colour, other, part)}"/>`;
    text += '</radialGradient>\n';
  }
  return text + '</defs>\n';
}

function lineOf(from, to, width, colour) {
  return `<line x1="${hundredths(from[0])}" y1="${hundredths(from[1])}" x2="${hundredths(to[0])}" ` +
    `y2="${hundredths(to[1])}" stroke="${colour}" stroke-width="${hundredths(width)}"/>\n`;
}

// The text of a mark, by its kind.
const MARK_TEXT = {
  disc: ({ centre, radius, element }, palette) =>
    `<circle cx="${hundredths(centre[0])}" cy="${hundredths(centre[1])}" r="${hundredths(radius)}" ` +
    `fill="url(#e${element.number})" stroke="${palette.outline}" stroke-width="${hundredths(OUTLINE)}"/>\n`,
  rod: ({ from, to, width, element }, palette) =>
    lineOf(from, to, width + 2 * OUTLINE, palette.outline) +
    lineOf(from, to, width, element.colour) +
    lineOf(from, to, STRIPE_PART * width, mixed(element.colour, '#ffffff', STRIPE_WHITE)),
  stroke: ({ from, to, width, ink }, palette) => lineOf(from, to, width, palette[ink]),
  polygon: ({ corners, ink }, palette) => {
    const points = corners.map((p) => `${hundredths(p[0])},${hundredths(p[1])}`).join(' ');
    return `<polygon points="${points}" fill="${palette[ink]}"/>\n`;
  },
};

function wordsOf(words, paper, palette) {
  let text = `<g font-family="sans-serif" font-size="${hundredths(paper.font)}" text-anchor="middle" ` +
    `paint-order="stroke" stroke="${palette.background}" stroke-width="${hundredths(HALO)}" ` +
    'stroke-linejoin="round">\n';
  for (const { middle, text: said, ink } of words)
    text += `<text x="${hundredths(middle[0])}" y="${hundredths(middle[1] + TO_BASELINE * paper.font)}" ` +
      `fill="${palette[ink]}">${escapedText(said)}</text>\n`;
  return text + '</g>\n';
}

// drawing: width and height in pixels, theme, title, description.
export function svgOnPaper(scene, paper, drawing) {
  const { marks, words } = projected(scene, paper);
  const palette = paletteOf(drawing.theme);
  let text = headOf(drawing) + shadesOf(marks) +
    `<rect width="${drawing.width}" height="${drawing.height}" fill="${palette.background}"/>\n` +
    '<g stroke-linecap="round">\n';
  for (const mark of marks) text += MARK_TEXT[mark.kind](mark, palette);
  return text + '</g>\n' + wordsOf(words, paper, palette) + '</svg>\n';
}

// Fills the picture, from a view { azimuth, elevation }, degrees.
export function svgOf(scene, view, drawing) {
  return svgOnPaper(scene, fittedPaper(scene, viewRows(view), drawing.width, drawing.height), drawing);
}
