import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import { test } from 'node:test';
import { interfaceDocs } from '../../demo/webapp/interfaceDocs.mjs';
import { allCalls } from '../../demo/webapp/src/interface/methods.js';
import { runCalls } from '../../demo/webapp/src/interface/runCalls.js';
import { either, flag, shapeProblem, text } from '../../demo/webapp/src/interface/shapes.js';

const source = (name) => readFile(new URL(`../../${name}`, import.meta.url), 'utf8');

async function slotsOf(header) {
  return [...(await source(header)).matchAll(/void (\w+)\(NxWebViewJSContext& context\)( override)?;/g)].map(([, name]) => name);
}

test('the table names every script method of the bridge and its handlers', async () => {
  const headers = {
    '': ['skyleaf/bridge/NHelioCloudDocsAsynJsObj.h'],
    'docs.storage.': ['skyleaf/offline/NDOPStorageHandler.h'],
    'docs.storage.info.': ['skyleaf/offline/NDOPStorageInfoHandler.h'],
    'docs.storage.file.': ['skyleaf/offline/NDOPStorageFileHandler.h'],
    'webview.preload.': ['skyleaf/offline/NDOPWebviewPreloadHandler.h'],
    'docs.print.': ['skyleaf/handlers/NPrintFileHandler.h'],
    'docs.sorrel.': ['skyleaf/handlers/NSorrelDockpanelJsHandler.h'],
  };
  const named = new Set(allCalls().map(({ name }) => name));
  for (const [prefix, [header]] of Object.entries(headers)) {
    const slots = await slotsOf(header);
    assert.ok(slots.length > 0, header);
    for (const slot of slots) assert.ok(named.has(prefix + slot), `${prefix}${slot} is missing in the table`);
  }
});

test('the written reference is the one of the table', async () => {
  assert.equal(await source('docs/script-interface.md'), interfaceDocs(), 'run node demo/webapp/interfaceDocs.mjs');
});

test('shapes say what does not fit', () => {
  const shape = { a: text, 'b?': flag, c: [either(1, 2)] };
  assert.equal(shapeProblem({ a: '', c: [2, 1] }, shape), '');
  assert.match(shapeProblem({ a: 1, c: [] }, shape), /answer\.a is 1, not a text/);
  assert.match(shapeProblem({ a: '', c: [3] }, shape), /c\[0\]/);
  assert.match(shapeProblem({ a: '', c: [], d: 0 }, shape), /"d" is not expected/);
  assert.match(shapeProblem({ c: [] }, shape), /"a" is missing/);
  assert.match(shapeProblem(null, shape), /not an object/);
});

test('a run notices wrong, missing and surplus answers', async () => {
  const target = {};
  const replies = { good: { x: 1 }, wrong: { x: 2 }, surplus: {}, later: new Promise(() => {}) };
  const helio = {
    async call(name, args) {
      if (name === 'later') setTimeout(() => target.fn('{"y":3}'), 5);
      if (!(name in replies)) throw new Error(`unknown method: ${name}`);
      assert.deepEqual(args, name === 'later' ? { of: 1 } : {});
      return replies[name];
    },
  };
  const methods = [
    { name: 'good', reply: { x: 1 }, keep: (env, { x }) => { env.kept = x; } },
    { name: 'wrong', reply: { x: 1 } },
    { name: 'surplus' },
    { name: 'later', args: ({ kept }) => ({ of: kept }), via: 'fn', calls: { y: 3 } },
    { name: 'none' },
  ];
  const rows = await runCalls(methods, { helio, env: {}, target });
  assert.deepEqual(rows.map(({ problem }) => Boolean(problem)), [false, true, true, false, true]);
  assert.equal(rows[4].problem, 'unknown method: none');
});
