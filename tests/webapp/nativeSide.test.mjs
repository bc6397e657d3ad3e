import assert from 'node:assert/strict';
import test from 'node:test';
import { EditorRegistry } from '../../demo/webapp/src/document/EditorRegistry.js';
import { NativeSide } from '../../demo/webapp/src/document/NativeSide.js';
import { FakeTimers } from './support/FakeTimers.mjs';

test('without the desktop side everything answers and nothing throws', async () => {
  const native = new NativeSide({});
  assert.equal(await native.whenPresent({ setTimeout: (fn) => fn() }), false);
  assert.equal(await native.apiVersion(), null);
  assert.equal(native.reportReady({ fileId: 1, fileName: 'a', fileType: 'w' }), false);
});

test('a desktop side that comes late is found, and told with texts only', async () => {
  const owner = {};
  const told = [];
  const native = new NativeSide(owner);
  const timers = new FakeTimers();
  const present = native.whenPresent(timers);
  owner.helio = { call: async () => ({ version: '1.0.0' }), emitHost: (name, data) => told.push([name, data]) };
  await timers.fire();
  assert.equal(await present, true);
  assert.equal(await native.apiVersion(), '1.0.0');
  assert.equal(native.reportReady({ fileId: 100001, fileName: 'A.docx', fileType: 'w' }), true);
  assert.deepEqual(told, [['webFileReady', { fileId: '100001', fileName: 'A.docx', fileType: 'w' }]]);
});

test('functions of two documents never have the same name', async () => {
  const { NativeSide: Another } = await import('../../demo/webapp/src/document/NativeSide.js?another document');
  const names = [NativeSide, NativeSide, Another].map((Side) => new Side({}).callback(() => {}).name);
  assert.equal(new Set(names).size, 3);
  assert.equal(new Set(names.map((name) => name.split('_')[1])).size, 2, 'no numbers alone');
});

test('a call that the desktop side rejects is no version', async () => {
  const native = new NativeSide({ helio: { call: () => Promise.reject(new Error('unknown method')) } });
  assert.equal(await native.apiVersion(), null);
});

test('an editor is handed out whenever its script comes; a missing one is told', async () => {
  const editors = new EditorRegistry();
  const mount = () => {};
  const early = editors.editor('w');
  editors.register('w', mount);
  assert.equal(await early, mount);
  assert.equal(await editors.editor('w'), mount);
  const missing = editors.editor('s');
  editors.allScriptsRead();
  await assert.rejects(missing, /missing/);
  await assert.rejects(editors.editor('s'), /missing/);
  assert.equal(await editors.editor('w'), mount);
});
