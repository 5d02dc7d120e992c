// The six parameters, each as a slider and a number field.

import { made } from './dom.js';
import { complaintAbout, foldedTurn, isAzimuth, LONGEST_DISTANCE, POSE_PARAMETERS } from './geometry.js';
import { shownNumber } from './numbers.js';

const SHOWN_DECIMALS = 4;
const USUAL_SLIDER = 20, LONGEST_SLIDER = 10000; // Angstrom, end of the slider of r

const LETTERS = {
  r: 'r', theta: '\u03b8 theta', phi: '\u03c6 phi',
  alpha: '\u03b1 alpha', beta: '\u03b2 beta', gamma: '\u03b3 gamma' };

// Why parameters of molecules of these shapes change nothing.
export function wordsOfIdle(shapes) {
  if (shapes[0] === 'atom')
    return shapes[1] === 'atom' ? 'both molecules are atoms' : 'molecule 1 is an atom';
  return shapes[0] === 'linear' ? 'molecule 1 is linear' : 'of the shapes of the molecules';
}

function makeSlider(name) {
  const isLength = name === 'r';
  const slider = made('input', {
    type: 'range', id: `slider-${name}`, min: '0', step: isLength ? '0.01' : '0.1',
    max: isLength ? String(USUAL_SLIDER) : isAzimuth(name) ? '360' : '180' });
  slider.setAttribute('aria-label', `${name}, ${isLength ? 'Angstrom' : 'degrees'}, slider`);
  return slider;
}

function makeField(name) {
  const isLength = name === 'r';
  const field = made('input', {
    type: 'number', id: `field-${name}`, step: isLength ? '0.01' : '0.1', autocomplete: 'off' });
  if (!isAzimuth(name)) {
    field.min = '0';
    field.max = isLength ? String(LONGEST_DISTANCE) : '180';
  }
  field.setAttribute('aria-describedby', `note-${name}`);
  return field;
}

// A parameter: its elements, its value, and the value before somebody began to type another one.
function makeParameter(name, idleWords) {
  const slider = makeSlider(name), field = makeField(name);
  const note = made('p', { id: `note-${name}`, hidden: idleWords === '', textContent: idleWords });
  const label = made('label', { htmlFor: field.id, textContent: LETTERS[name] });
  const unit = made('span', { className: 'unit', textContent: name === 'r' ? '\u00c5' : '\u00b0' });
  const row = made('div', { className: 'parameter' }, [label, slider, field, unit, note]);
  const isIdle = idleWords !== '';
  slider.disabled = field.disabled = isIdle;
  return { row, slider, field, note, isIdle, value: NaN, before: NaN };
}

function showComplaint({ field, note, isIdle }, complaint) {
  if (isIdle) return;
  note.hidden = complaint === '';
  note.textContent = complaint;
  note.className = complaint === '' ? '' : 'wrong';
  if (complaint === '') field.removeAttribute('aria-invalid');
  else field.setAttribute('aria-invalid', 'true');
}

export class Controls {
  // idle: names of parameters that change nothing. change(name, value, isTyped) is called with values that
  // can be placed, refuse(words) with what is wrong with others.
  constructor(container, { idle, shapes, change, refuse }) {
    Object.assign(this, { change, refuse, parts: new Map() });
    for (const name of POSE_PARAMETERS) {
      const words = idle.includes(name) ? `changes nothing, because ${wordsOfIdle(shapes)}` : '';
      this.parts.set(name, makeParameter(name, words));
    }
    container.replaceChildren(...[...this.parts.values()].map(({ row }) => row));
    for (const [name, part] of this.parts) this.listen(name, part);
  }

  listen(name, part) {
    part.slider.addEventListener('input', () => this.change(name, part.slider.valueAsNumber, false));
    part.field.addEventListener('focus', () => { part.before = part.value; });
    part.field.addEventListener('input', () => this.typed(name, false));
    part.field.addEventListener('change', () => this.typed(name, true));
  }

  // While somebody types, a value may be wrong for a while: then the pose is as it was before.
  typed(name, isLast) {
    const part = this.parts.get(name);
    const value = part.field.valueAsNumber;
    const complaint = complaintAbout(name, value);
    if (isLast || complaint === '') showComplaint(part, complaint);
    if (complaint === '') this.change(name, value, true);
    else if (isLast) this.refuse(`${name}: ${complaint}`);
    else this.change(name, part.before, true);
  }

  // The slider of r goes as far as twice the distance.
  widen(r) {
    const { slider } = this.parts.get('r');
    if (2 * r > Number(slider.max)) slider.max = String(Math.min(Math.ceil(2 * r), LONGEST_SLIDER));
  }

  // The field of the parameter `edited` stays as it was typed.
  show(pose, edited) {
    this.widen(pose.r);
    for (const [name, part] of this.parts) {
      const value = part.value = pose[name];
      const isBeyond = isAzimuth(name) && !(value >= 0 && value <= 360);
      part.slider.value = String(isBeyond ? foldedTurn(value) : value);
      part.slider.setAttribute('aria-valuetext', shownNumber(value, 2));
      if (edited === name) continue;
      part.before = value; // a field may be changed without getting the focus
      part.field.value = shownNumber(value, SHOWN_DECIMALS);
      showComplaint(part, '');
    }
  }
}
