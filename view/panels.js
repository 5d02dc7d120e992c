// The panel of poses: a player, and a map, a list or curves, by the kind of table.

import { Curves } from './curves.js';
import { byId } from './dom.js';
import { MinimaList } from './list.js';
import { PosesMap } from './map.js';
import { Player } from './player.js';
import { thinnedText } from './poses.js';

const KINDS_OF_PANEL = {
  scan: { title: 'Poses', id: 'map-panel', Panel: PosesMap },
  dock: { title: 'Minima', id: 'list-panel', Panel: MinimaList },
  trajectory: { title: 'Frames', id: 'curves-panel', Panel: Curves },
};

// choose(row) is called. Returns { show(row, words, theme), resize() }; words are told beside the player.
export function makePanels(poses, first, choose) {
  if (!poses) return { show: () => {}, resize: () => {} };
  const { title, id, Panel } = KINDS_OF_PANEL[poses.kind];
  document.body.classList.add('with-poses', `with-${poses.kind}`);
  byId('poses').hidden = byId(id).hidden = false;
  byId('poses-heading').textContent = title;
  const thinned = thinnedText(poses);
  byId('thinned').textContent = thinned;
  byId('thinned').hidden = thinned === '';
  const player = new Player(poses, choose);
  const panel = new Panel(poses, choose, first);
  return {
    show: (row, words, theme) => {
      player.show(row, words);
      panel.show(row, theme);
    },
    resize: () => panel.resize(),
  };
}
