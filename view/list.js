// The list of minima of a docking run: a row chooses its pose.

import { byId, made } from './dom.js';
import { shownNumber } from './numbers.js';

const FIRST_ROWS = 200;
const SHOWN_DECIMALS_OF_LIST = 4;

function cellText(column, row) {
  const value = column.at(row);
  if (typeof value !== 'number') return value === null || value === undefined ? '' : String(value);
  return Number.isFinite(value) ? shownNumber(value, SHOWN_DECIMALS_OF_LIST) : '';
}

// Within the list: the page stays where it is.
function scrollListTo(line) {
  const panel = byId('list-panel');
  const row = line.getBoundingClientRect(), seen = panel.getBoundingClientRect();
  const above = row.top - 2 * row.height - seen.top; // below the titles, which stay
  const below = row.bottom + row.height - seen.bottom;
  if (above < 0) panel.scrollTop += above;
  else if (below > 0) panel.scrollTop += below;
}

export class MinimaList {
  // choose(row) is called.
  constructor(poses, choose) {
    Object.assign(this, { poses, choose, body: made('tbody') });
    const titles = poses.columns.map(({ name, unit }) =>
      made('th', { scope: 'col', textContent: name, title: unit }));
    byId('list').append(made('thead', {}, [made('tr', {}, titles)]), this.body);
    byId('list-more').addEventListener('click', () => this.fill(poses.rows));
    this.fill(Math.min(FIRST_ROWS, poses.rows));
  }

  makeRow(row) {
    const [first, ...others] = this.poses.columns;
    const radio = made('input', { type: 'radio', name: 'minimum', id: `minimum-${row}` });
    const label = made('label', { htmlFor: radio.id, textContent: cellText(first, row) });
    const cells = others.map((column) => made('td', { textContent: cellText(column, row) }));
    const line = made('tr', {}, [made('td', {}, [radio, label]), ...cells]);
    radio.addEventListener('change', () => this.choose(row));
    line.addEventListener('click', () => {
      radio.focus({ preventScroll: true }); // so that arrow keys go on from here
      if (!radio.checked) this.choose(row);
    });
    return line;
  }

  fill(end) {
    const lines = [];
    for (let row = this.body.rows.length; row < end; ++row) lines.push(this.makeRow(row));
    this.body.append(...lines);
    byId('list-more').hidden = end >= this.poses.rows;
    byId('list-more').textContent = `Show all ${this.poses.rows} ${this.poses.many}`;
  }

  show(row) {
    if (row >= this.body.rows.length) this.fill(this.poses.rows);
    for (const line of this.body.querySelectorAll('.chosen')) line.classList.remove('chosen');
    if (row < 0) return;
    const line = this.body.rows[row];
    line.classList.add('chosen');
    line.querySelector('input').checked = true;
    scrollListTo(line);
  }

  resize() {}
}
