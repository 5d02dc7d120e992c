// The page as a whole: how its modules may be joined, and what it may not hold.

import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';
import { Script } from 'node:vm';

import { importedModules, joinedScript, joiningOrder, moduleNames, moduleText, pageOf } from './parts.mjs';

const HTML = moduleText('page.html'), CSS = moduleText('page.css');

function declaredNames(text) {
  return [...text.matchAll(/^(?:export )?(?:async )?(?:function|const|let|class) ([\w$]+)/gm)].map((match) => match[1])
    .concat([...text.matchAll(/^(?:export )?const [\w$]+ = [^;{[]*?, ([A-Z_]+) = /gm)].map((match) => match[1]));
}

test('every module is part of the page', () => {
  assert.deepEqual([...joiningOrder()].sort(), moduleNames());
  assert.equal(joiningOrder().pop(), 'page.js');
});

test('imports take one line, rename nothing, and name what is exported', () => {
  for (const name of moduleNames()) {
    const text = moduleText(name);
    const lines = text.split('\n').filter((line) => /^\s*import\b/.test(line));
    assert.equal(lines.length, importedModules(text).length, name);
    for (const line of lines) {
      const [, words, from] = line.match(/^import \{ ([\w, ]+) \} from '\.\/(\w+\.js)';$/);
      for (const word of words.split(', ')) {
        const isExported = new RegExp(`^export (function|class|const) ([^;]*, )?${word}\\b`, 'm').test(moduleText(from));
        assert.ok(isExported, `${name}: ${from} does not export ${word}`);
      }
    }
    assert.doesNotMatch(text, /^export (default|\{|\*)|^\s*import\(/m, name);
  }
});

test('no two modules have a name in common', () => {
  const owners = new Map();
  for (const name of moduleNames())
    for (const word of declaredNames(moduleText(name))) {
      assert.ok(!owners.has(word), `${word} is in ${owners.get(word)} and ${name}`);
      owners.set(word, name);
    }
});

test('the joined script is JavaScript without modules', () => {
  const script = joinedScript();
  assert.doesNotMatch(script, /^(import|export)\b/m);
  assert.ok(new Script(`'use strict';{${script}}`));
  assert.doesNotMatch(script, /<\/script|<!--|<script/i);
});

test('each module says what it is for', () => {
  for (const name of moduleNames()) assert.match(moduleText(name), /^\/\/ [A-Z].*\S\n/, name);
});

test('nothing comes from outside', () => {
  const page = HTML + CSS + joinedScript();
  // The one address is the name of the namespace of SVG.
  assert.deepEqual([...new Set(page.match(/\bhttps?:[^"'` ]*/g))], ['http://www.w3.org/2000/svg']);
  assert.doesNotMatch(CSS, /@import|url\(/);
  assert.doesNotMatch(page, /\b(fetch|XMLHttpRequest|WebSocket|EventSource|sendBeacon|eval)\b|new Function/);
  assert.doesNotMatch(page, /innerHTML|outerHTML|insertAdjacentHTML|document\.write|srcdoc|createContextualFragment/);
});

test('the policy allows what is in the page, and nothing else', () => {
  const policy = HTML.match(/http-equiv="Content-Security-Policy" content="([^"]*)"/)[1];
  assert.match(policy, /^default-src 'none'; script-src 'sha256-@SCRIPT_HASH@'; style-src 'sha256-@STYLE_HASH@';/);
  assert.doesNotMatch(policy, /unsafe|\*|https?:/);
  assert.doesNotMatch(HTML, /\sstyle=|\son\w+=/);
  assert.doesNotMatch(joinedScript(), /setAttribute\('style'|cssText|\.on\w+ = /);
});

test('elements that the script asks for are in the page, once', () => {
  const ids = [...HTML.matchAll(/\sid="([^"]+)"/g)].map((match) => match[1]);
  assert.equal(new Set(ids).size, ids.length);
  for (const [, id] of joinedScript().matchAll(/byId\('([^']+)'\)/g)) assert.ok(ids.includes(id), id);
  const generated = { view: ['x', 'y', 'z'], copy: ['input', 'command', 'xyz'],
    show: ['frames', 'angles', 'contacts', 'labels'] };
  for (const [, start] of joinedScript().matchAll(/byId\(`(\w+)-\$\{/g))
    for (const end of generated[start]) assert.ok(ids.includes(`${start}-${end}`), `${start}-${end}`);
});

test('each control has words', () => {
  const labelled = HTML.replace(/<label[^>]*>.*?<\/label>/gs, (label) =>
    (label.replace(/<select.*?<\/select>|<[^>]*>/gs, '').trim() === '' ? label : ''));
  const named = [...HTML.matchAll(/<label[^>]* for="([^"]+)"/g)].map((match) => match[1]);
  for (const [tag, words] of labelled.matchAll(/<(?:input|select|textarea|canvas)\b([^>]*)>/g)) {
    const id = (words.match(/\bid="([^"]+)"/) || [])[1];
    assert.ok(/aria-label="/.test(words) || named.includes(id), tag);
  }
  for (const [tag, words, content] of HTML.matchAll(/<button\b([^>]*)>(.*?)<\/button>/gs))
    assert.ok(/aria-label="/.test(words) || /\w{2}/.test(content), tag);
});

test('words of a file stay words', () => {
  const evil = '</script><script>alert(1)</script><!-- %DATA% @SCRIPT@';
  const page = pageOf({ title: evil, description: evil });
  assert.equal(page.match(/<script/g).length, 2);
  assert.equal(page.match(/<\/script>/g).length, 2);
});

test('light and dark have the same colours of their own', () => {
  const blocks = [...CSS.matchAll(/\{([^{}]*--page:[^{}]*)\}/g)].map((match) =>
    match[1].match(/--[\w-]+/g).sort().join(' '));
  assert.equal(blocks.length, 3);
  assert.equal(new Set(blocks).size, 1);
  const used = [...CSS.matchAll(/var\((--[\w-]+)\)/g)].map((match) => match[1]);
  for (const name of used) assert.ok(blocks[0].includes(name), name);
  const dark = [...CSS.matchAll(/\{([^{}]*--page: #0d[^{}]*)\}/g)].map((match) =>
    match[1].replace(/color-scheme: dark;/, '').replace(/\s+/g, ' '));
  assert.equal(dark[0], dark[1]);
});

test('the build joins all modules, each behind those that it imports', () => {
  const build = readFileSync(new URL('../../src/dravo.cmake', import.meta.url), 'utf8');
  const listed = build.match(/set\(DRAVO_PAGE_MODULES\s+([^)]*)\)/)[1].split(/\s+/);
  assert.deepEqual([...listed].sort(), moduleNames());
  listed.forEach((name, k) => {
    for (const imported of importedModules(moduleText(name)))
      assert.ok(listed.indexOf(imported) < k, `${name} stands before ${imported}`);
  });
});
