// Light or dark: as the system has it, or as somebody chose.

import { byId } from './dom.js';

const DARK = '(prefers-color-scheme: dark)';

export function themeOfPage() {
  const chosen = document.documentElement.dataset.theme;
  if (chosen) return chosen;
  return window.matchMedia(DARK).matches ? 'dark' : 'light';
}

// repaint() is called when the theme may have changed.
export function addTheme(repaint) {
  const root = document.documentElement;
  byId('theme').addEventListener('change', ({ target }) => {
    if (target.value === 'auto') delete root.dataset.theme;
    else root.dataset.theme = target.value;
    repaint();
  });
  window.matchMedia(DARK).addEventListener('change', repaint);
}
