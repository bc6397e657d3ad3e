import assert from 'node:assert/strict';
import test from 'node:test';
import { DocumentsApi } from '../../demo/webapp/src/document/DocumentsApi.js';
import { requestJson } from '../../demo/webapp/src/document/requestJson.js';
import { FakeServer } from './support/FakeServer.mjs';

test('a local answer is recognised and not asked again', async () => {
  const server = new FakeServer().answer(/preopen/, { body: { a: 1 }, headers: { 'x-client-proxy': 'true' } });
  const reply = await new DocumentsApi(server.fetch).preopen('100001', 'w', 'c0');
  assert.deepEqual(reply, { ok: true, value: { a: 1 }, source: 'local' });
  assert.deepEqual(server.requests, [{
    url: '/api/v3/office/file/100001/preopen/word?proxy=true&connid=c0&timeout=5000', method: 'POST', body: { connid: 'c0' },
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

test('a rendering for a preview is asked once only', async () => {
  const server = new FakeServer();
  const reply = await new DocumentsApi(server.fetch).rendered('1', 'c');
  assert.equal(reply.reason, 'network');
  assert.equal(server.requests.length, 1);
});

test('a save names the version that it rests on', async () => {
  const server = new FakeServer().answer(/content$/, { body: { result: 'ok', file_version: 5 } });
  await new DocumentsApi(server.fetch).save('a/b', 4, { type: 'doc' });
  assert.deepEqual(server.requests, [{
    url: '/api/v3/office/file/a%2Fb/content', method: 'PUT', body: { base_version: 4, content: { type: 'doc' } },
  }]);
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
