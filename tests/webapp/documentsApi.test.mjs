import assert from 'node:assert/strict';
import test from 'node:test';
import { DocumentsApi } from '../../demo/webapp/src/document/DocumentsApi.js';
import { requestJson } from '../../demo/webapp/src/document/requestJson.js';
import { SavedVersions } from '../../demo/webapp/src/document/SavedVersions.js';
import { FakeServer } from './support/FakeServer.mjs';

const local = { 'x-client-proxy': 'true' };

test('a local answer is recognised and not asked again', async () => {
  const server = new FakeServer().answer(/config/, { body: { a: 1 }, headers: local });
  const reply = await new DocumentsApi(server.fetch).envConfig('100001', 'c0');
  assert.deepEqual(reply, { ok: true, value: { a: 1 }, source: 'local' });
  assert.deepEqual(server.requests, [{
    url: '/office-config/100001?part=file_info,font_name_map,config,plugin_config&proxy=true&connid=c0&timeout=5000',
    method: 'GET',
    body: undefined,
  }]);
});

test('an answer without a JSON value is asked once more, from the network', async () => {
  const useless = [{ body: '' }, { body: '<html>' }, { status: 500, body: 'x' }, { status: 404, body: { msg: 'no' } }];
  for (const first of useless) {
    const server = new FakeServer().answer(/proxy=true/, first).answer(/office-config/, { body: { b: 2 } });
    const reply = await new DocumentsApi(server.fetch).envConfig('7', 'c0');
    assert.deepEqual(reply, { ok: true, value: { b: 2 }, source: 'network' });
    assert.deepEqual(server.requests.map(({ url }) => url), [
      '/office-config/7?part=file_info,font_name_map,config,plugin_config&proxy=true&connid=c0&timeout=5000',
      '/office-config/7?part=file_info,font_name_map,config,plugin_config',
    ]);
  }
});

test('the second failure is the one that is told', async () => {
  const server = new FakeServer().answer(/proxy/, { body: '' }).answer(/preopen/, { status: 404, body: { msg: 'gone' } });
  const reply = await new DocumentsApi(server.fetch).preopen('1', 's', 'c');
  assert.equal(reply.status, 404);
  assert.match(reply.message, /status 404: gone/);
  assert.equal(server.requests.length, 2);
});

test('a local answer of the wrong shape is asked once more, from the network; the network\'s own is not', async () => {
  const calls = {
    preopen: (api) => api.preopen('7', 'w', 'c'), envConfig: (api) => api.envConfig('7', 'c'), rendered: (api) => api.rendered('7', 'c'),
  };
  for (const [name, call] of Object.entries(calls)) {
    const server = new FakeServer().answer(/proxy=true/, { body: [1], headers: local }).answer(/^[^&]*$/, { body: { c: 3 } });
    assert.deepEqual(await call(new DocumentsApi(server.fetch)), { ok: true, value: { c: 3 }, source: 'network' }, name);
    const direct = new FakeServer().answer(/proxy=true/, { body: [1] });
    assert.deepEqual((await call(new DocumentsApi(direct.fetch))).value, [1], name);
    assert.equal(direct.requests.length, 1, name);
  }
});

test('a save names the version that it rests on', async () => {
  const server = new FakeServer().answer(/content$/, { body: { result: 'ok', file_version: 5 } });
  await new DocumentsApi(server.fetch).save('a/b', 4, { type: 'doc' });
  assert.deepEqual(server.requests, [{
    url: '/api/v3/office/file/a%2Fb/content', method: 'PUT', body: { base_version: 4, content: { type: 'doc' } },
  }]);
});

test('a reply from before the last save is stale: the document is asked for over the network', async () => {
  const kept = new Map();
  const storage = { getItem: (name) => kept.get(name) ?? null, setItem: (name, value) => kept.set(name, value) };
  const reply = (version) => ({ result: 'ok', 'window.__VLTENV__': { file_version: version, office_type: 'w' }, content: { version } });
  const server = new FakeServer().answer(/content$/, { body: { result: 'ok', file_version: 5 } });
  await new DocumentsApi(server.fetch, new SavedVersions(() => storage)).save('7', 4, {});
  for (const [fileId, prefetched, source] of [['7', 4, 'network'], ['7', 5, 'local'], ['7', 6, 'local'], ['8', 1, 'local']]) {
    const next = new FakeServer().answer(/proxy=true/, { body: reply(prefetched), headers: local }).answer(/preopen/, { body: reply(9) });
    const opened = await new DocumentsApi(next.fetch, new SavedVersions(() => storage)).preopen(fileId, 'w', 'c');
    assert.equal(opened.source, source, `${fileId}, ${prefetched}`);
  }
  kept.set('docs-saved-versions', '{"broken');
  const versions = new SavedVersions(() => storage);
  assert.equal(versions.of('7'), 0);
  for (let id = 0; id < 60; ++id) versions.saved(String(id), 1);
  assert.deepEqual([versions.of('0'), versions.of('59')], [0, 1]);
});

test('a server that never answers is given up, and so is an opening that was replaced', async () => {
  const hanging = (_url, { signal }) => new Promise((_resolve, reject) => {
    signal.addEventListener('abort', () => reject(new Error('aborted')));
  });
  assert.equal((await requestJson(hanging, '/x', { timeoutMs: 1 })).reason, 'timeout');
  const opening = new AbortController();
  const waiting = requestJson(hanging, '/x', { signal: opening.signal });
  opening.abort();
  assert.equal((await waiting).reason, 'aborted');
  assert.equal((await requestJson(hanging, '/x', { signal: opening.signal })).reason, 'aborted');
});
