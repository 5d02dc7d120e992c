// The page put together from view/, as the build does it, and the data of pages that exist.

import { createHash } from 'node:crypto';
import { readdirSync, readFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';

export const VIEW = fileURLToPath(new URL('../../view/', import.meta.url));

export function moduleText(name) {
  return readFileSync(VIEW + name, 'utf8');
}

export function moduleNames() {
  return readdirSync(VIEW).filter((name) => name.endsWith('.js')).sort();
}

export function importedModules(text) {
  return [...text.matchAll(/^import .* from '\.\/(.*)';$/gm)].map((match) => match[1]);
}

// Each module behind those that it imports.
export function joiningOrder() {
  const order = [];
  const add = (name) => {
    if (order.includes(name)) return;
    importedModules(moduleText(name)).sort().forEach(add);
    order.push(name);
  };
  add('page.js');
  return order;
}

export function joinedScript() {
  const parts = joiningOrder().map((name) =>
    moduleText(name).replace(/^import .*\n/gm, '').replace(/^export /gm, ''));
  return `\n${parts.join('')}`;
}

function hashOf(text) {
  return createHash('sha256').update(text).digest('base64');
}

function escapedHtml(text) {
  return text.replace(/&/g, '&amp;').replace(/</g, '&lt;');
}

export function pageOf(data) {
  const style = moduleText('page.css'), script = joinedScript();
  const fillers = {
    '@STYLE_HASH@': hashOf(style), '@SCRIPT_HASH@': hashOf(script), '@STYLE@': style, '@SCRIPT@': script,
    '%TITLE%': escapedHtml(data.title), '%DATA%': JSON.stringify(data).replace(/</g, '\\u003c') };
  return moduleText('page.html').replace(/@\w+@|%[A-Z]+%/g, (place) => fillers[place]);
}

// Of a page that `dravo view` wrote.
export function dataOf(page) {
  const match = page.match(/<script type="application\/json" id="data">(.*?)<\/script>/s);
  if (!match) throw new Error('the page has no data');
  return JSON.parse(match[1]);
}
