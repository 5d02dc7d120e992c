// Goes through poses: one by one, by a slider, or by itself.

import { byId } from './dom.js';
import { nextRow } from './poses.js';

// Milliseconds a pose; people who asked for little motion see still pictures, one after the other.
const USUAL_STEP = 100, STILL_STEP = 1500;

export class Player {
  // choose(row) is called.
  constructor(poses, choose) {
    Object.assign(this, { poses, choose, row: -1, timer: 0, play: byId('play'), slider: byId('row-slider') });
    this.stillness = window.matchMedia('(prefers-reduced-motion: reduce)');
    this.slider.max = String(poses.rows);
    byId('row-name').textContent = `${poses.one}, of ${poses.rows}`;
    byId('previous').setAttribute('aria-label', `Previous ${poses.one}`);
    byId('next').setAttribute('aria-label', `Next ${poses.one}`);
    const byHand = (act) => () => {
      this.stop();
      act();
    };
    byId('previous').addEventListener('click', byHand(() => this.step(-1)));
    byId('next').addEventListener('click', byHand(() => this.step(1)));
    this.slider.addEventListener('input', byHand(() => choose(this.slider.valueAsNumber - 1)));
    this.play.addEventListener('click', () => (this.timer === 0 ? this.begin() : this.stop()));
  }

  // Whether there was another pose.
  step(by) {
    const to = nextRow(this.poses, this.row + by, by);
    if (to >= 0) this.choose(to);
    return to >= 0;
  }

  // From the first one again behind the last.
  begin() {
    if (nextRow(this.poses, this.row + 1, 1) < 0) this.row = -1;
    this.play.textContent = 'Stop';
    this.play.setAttribute('aria-pressed', 'true');
    this.advance();
  }

  advance() {
    if (!this.step(1)) this.stop();
    else this.timer = setTimeout(() => this.advance(), this.stillness.matches ? STILL_STEP : USUAL_STEP);
  }

  stop() {
    clearTimeout(this.timer);
    this.timer = 0;
    this.play.textContent = 'Play';
    this.play.setAttribute('aria-pressed', 'false');
  }

  // words are told beside it.
  show(row, words) {
    this.row = row;
    this.slider.value = String(Math.max(row, 0) + 1);
    this.slider.setAttribute('aria-valuetext', row < 0 ? 'none' : this.poses.nameOf(row));
    byId('row-text').textContent = words;
  }
}
