// Colours of lines and words, and the scale of a map.

// Those of the axes can be told apart by people who do not see all colours (M. Okabe, K. Ito, Color
// Universal Design, 2008).
const PALETTES = {
  light: {
    background: '#ffffff', outline: '#3a3a3a',
    text: '#1a1a1a', faint: '#8c8c8c',
    smallest: '#0072b2', middle: '#009e73', largest: '#d55e00',
    place: '#8a6100', turn: '#9b3c7a', contact: '#c8102e', hydrogen_bond: '#007c91',
  },
  dark: {
    background: '#14161a', outline: '#000000',
    text: '#ececec', faint: '#8c9099',
    smallest: '#56b4e9', middle: '#2ccb9b', largest: '#ff8a47',
    place: '#e6b93c', turn: '#e58bc3', contact: '#ff6b7d', hydrogen_bond: '#4fd3e0',
  },
};

export function paletteOf(theme) {
  return PALETTES[theme];
}

function partsOf(colour) {
  return [1, 3, 5].map((k) => parseInt(colour.slice(k, k + 2), 16));
}

// The part from 0 to 1 of the way to another colour.
export function mixed(colour, other, part) {
  const to = partsOf(other);
  const parts = partsOf(colour).map((from, k) => Math.floor(from + part * (to[k] - from) + 0.5));
  return '#' + parts.map((value) => value.toString(16).padStart(2, '0')).join('');
}

// Viridis at ninths (S. van der Walt, N. Smith, 2015, public domain): its lightness rises evenly, so
// that it can be read in grey and by people who do not see all colours.
const SCALE = [
  '#440154', '#482878', '#3e4989', '#31688e', '#26828e',
  '#1f9e89', '#35b779', '#6ece58', '#b5de2b', '#fde725'];

// For a part from 0 to 1; what is beyond has the colours of the ends.
export function scaleColour(part) {
  const place = Math.min(Math.max(part, 0), 1) * (SCALE.length - 1);
  const k = Math.min(Math.floor(place), SCALE.length - 2);
  return mixed(SCALE[k], SCALE[k + 1], place - k);
}
