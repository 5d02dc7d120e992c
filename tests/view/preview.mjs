// Writes a page again with the modules as they stand in view/, to look at a change without a build:
//
//   node tests/view/preview.mjs pair.html preview.html

import { readFileSync, writeFileSync } from 'node:fs';

import { dataOf, pageOf } from './parts.mjs';

const [from, to] = process.argv.slice(2);
if (!from || !to) {
  console.error('usage: node preview.mjs PAGE-OF-DRAVO-VIEW.html NEW-PAGE.html');
  process.exit(2);
}
writeFileSync(to, pageOf(dataOf(readFileSync(from, 'utf8'))));
