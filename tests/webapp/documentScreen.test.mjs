import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import test from 'node:test';
import { FakeServer } from './support/FakeServer.mjs';
import { settled } from './support/FakeTimers.mjs';

const webapp = new URL('../../demo/webapp/', import.meta.url);
const { JSDOM } = createRequire(new URL('package.json', webapp))('jsdom');
const html = readFileSync(new URL('pages/index.html', webapp), 'utf8').replaceAll('{{code}}', 'w');

// The document's DOM is global, as in a page; the modules below look for it when they are read.
const dom = new JSDOM(html, { url: 'https://docs.skyleaf.test/p/7?officeType=w' });
const page = dom.window;
globalThis.window = page;
globalThis.document = page.document;
page.requestAnimationFrame = (fn) => fn(0);
const marks = [];
page.performance.mark = (name) => marks.push(name);
page.performance.clearMarks = (name) => marks.splice(0, marks.length, ...marks.filter((mark) => mark !== name));

const { DocumentScreen } = await import('../../demo/webapp/src/document/DocumentScreen.js');
const { DocumentsApi } = await import('../../demo/webapp/src/document/DocumentsApi.js');
const { EditorRegistry } = await import('../../demo/webapp/src/document/EditorRegistry.js');
const { NativeSide } = await import('../../demo/webapp/src/document/NativeSide.js');
const { PageFrame } = await import('../../demo/webapp/src/ui/PageFrame.js');

const textOf = (id) => page.document.getElementById(id).textContent;
const problem = () => (page.document.getElementById('problem').hidden ? '' : textOf('problem'));
const doc = (text) => ({ type: 'doc', content: [{ type: 'paragraph', content: [{ type: 'text', text }] }] });
const preopenReply = (fileId, text) => ({
  result: 'ok',
  'window.__VLTENV__': { file_id: fileId, file_version: '1', file_name: `${text}.docx`, office_type: 'w' },
  content: doc(text),
});
const local = { 'x-client-proxy': 'true' };

/** An editor that shows its content's text and is edited by the test. */
function fakeEditor() {
  const editor = { mounted: [], destroyed: 0 };
  editor.mount = (host, content, { onChange }) => {
    if (content.type !== 'doc') throw new Error('its content is strange');
    let current = content;
    host.textContent = JSON.stringify(content);
    editor.mounted.push(content);
    editor.edit = (next) => {
      current = next;
      onChange();
    };
    return { content: () => current, commit() {}, focus() {}, destroy: () => { editor.destroyed += 1; } };
  };
  return editor;
}

/** A page at `url` with the given injected values, its server without rules yet. */
function start(url, inject) {
  page.history.replaceState(null, '', url);
  page.__INJECT__ = inject;
  page.__DOCS_STATE__ = undefined;
  const told = [];
  page.helio = { call: async () => ({}), emitHost: (name, data) => told.push([name, data]) };
  const server = new FakeServer();
  const editors = new EditorRegistry();
  const editor = fakeEditor();
  const screen = new DocumentScreen({
    window: page,
    typeCode: 'w',
    api: new DocumentsApi(server.fetch),
    frame: new PageFrame(page.document),
    editors,
    native: new NativeSide(page),
  });
  return { screen, server, editors, editor, told, state: () => page.__DOCS_STATE__ };
}

test('a prefetched document opens, with the connection id of the desktop side, and is reported', async () => {
  const { screen, server, editors, editor, told, state } = start('/p/7?officeType=w', { _LOCAL_CONNID: 'abc' });
  server.answer(/preopen\/word\?proxy=true&connid=abc/, { body: preopenReply('7', 'Plan'), headers: local });
  server.answer(/plugin_config&proxy=true&connid=abc/, { body: { config: { front_ver: '3.2' } }, headers: local });
  editors.register('w', editor.mount);
  await screen.open();
  await settled();
  assert.deepEqual(told, [['webFileReady', { fileId: '7', fileName: 'Plan.docx', fileType: 'word' }]]);
  assert.deepEqual(state(), {
    fileId: '7', officeType: 'w', visible: true, editable: true, saved: true, error: null,
    source: { preopen: 'local', envConfig: 'local' },
  });
  assert.equal(page.document.title, 'Plan.docx');
  assert.equal(textOf('front-version'), 'Front end 3.2');
  assert.deepEqual([...marks].sort(), ['docs-editable', 'docs-text-visible']);
});

test('injected content is shown, not editable, and stays when the server is away', async () => {
  const inject = { _LOCAL_INJECT_DATA: { content: doc('kept here') }, _LOCAL_INJECT_DATA_FILEINFO: { name: 'Kept.docx' } };
  const { screen, told, state } = start('/p/7?officeType=w', inject);
  await screen.open();
  assert.equal(state().visible, true);
  assert.equal(state().editable, false);
  assert.match(textOf('document-place'), /kept here/);
  assert.equal(page.document.title, 'Kept.docx');
  assert.match(problem(), /could not be opened.*could not be reached.*Retry/);
  assert.deepEqual(told, []);
});

test('a kept rendering is shown without what it could run', async () => {
  const csr = '<p onclick="x()">shown<\\/p><script>window.ran = true<\\/script><iframe src="/"><\\/iframe>';
  const { screen } = start('/p/7', { _LOCAL_INJECT_CACHE: { csr } });
  await screen.open();
  const place = page.document.getElementById('document-place');
  assert.equal(place.querySelector('.preview p').outerHTML, '<p>shown</p>');
  assert.equal(place.querySelector('script, iframe'), null);
});

test('what is missing is said: document, editor script, readable content, configuration', async () => {
  const unknown = start('/p/8');
  unknown.server.answer(/preopen/, { status: 404, body: {} }).answer(/preopen/, { status: 404, body: {} });
  await unknown.screen.open();
  assert.match(problem(), /no such document.*"8"/);

  const scriptless = start('/p/7');
  scriptless.server.answer(/preopen/, { body: preopenReply('7', 'Plan') });
  scriptless.editors.allScriptsRead();
  await scriptless.screen.open();
  assert.match(problem(), /editor is missing/);
  assert.match(textOf('document-place'), /Plan/);

  const strange = start('/p/7');
  strange.server.answer(/preopen/, { body: { ...preopenReply('7', 'x'), content: { type: 'odd' } } });
  strange.editors.register('w', strange.editor.mount);
  await strange.screen.open();
  assert.match(problem(), /cannot read this document.*content is strange/);
  assert.deepEqual(strange.told, []);
  assert.match(textOf('notices'), /configuration is missing/);
});

test('a new document is made, and the page takes its URL', async () => {
  const { screen, server, editors, editor } = start('/office/new/w');
  server.answer(/office\/files$/, { body: { result: 'ok', id: '55' } }).answer(/55\/preopen/, { body: preopenReply('55', 'New') });
  editors.register('w', editor.mount);
  await screen.open();
  assert.equal(page.location.pathname + page.location.search, '/p/55?officeType=w');
  assert.deepEqual(server.requests[0].body, { officeType: 'w' });
  assert.equal(editor.mounted.length, 1);
});

test('a waiting page opens what it is told to, and saves that before it opens another', async () => {
  const { screen, server, editors, editor, state } = start('/p/');
  editors.register('w', editor.mount);
  await screen.open();
  assert.match(textOf('document-place'), /Ready/);
  assert.equal(server.requests.length, 0);

  page.history.replaceState(null, '', '/p/7?officeType=w');
  server.answer(/7\/preopen/, { body: preopenReply('7', 'First') });
  await screen.open();
  editor.edit(doc('changed'));
  page.history.replaceState(null, '', '/p/9?officeType=w');
  server.answer(/7\/content/, { body: { result: 'ok', file_version: 2 } }).answer(/9\/preopen/, { body: preopenReply('9', 'Second') });
  await screen.open();
  const saved = server.requests.find(({ method }) => method === 'PUT');
  assert.deepEqual(saved.body, { base_version: 1, content: doc('changed') });
  assert.equal(editor.destroyed, 1);
  assert.equal(state().fileId, '9');
  assert.equal(page.document.title, 'Second.docx');
});

test('a document that cannot be saved is not left behind', async () => {
  const { screen, server, editors, editor } = start('/p/7');
  editors.register('w', editor.mount);
  server.answer(/preopen/, { body: preopenReply('7', 'First') });
  await screen.open();
  editor.edit(doc('changed'));
  page.history.replaceState(null, '', '/p/9');
  await screen.open();
  assert.equal(editor.destroyed, 0);
  assert.match(textOf('notices'), /could not be saved/);
  assert.match(textOf('save-state'), /^Not saved: the server could not be reached/);
  assert.equal(screen.leavingLosesChanges(), true);
  await screen.save();

  server.answer(/content/, { status: 409, body: { result: 'VersionConflict', file_version: 6 } });
  await screen.save();
  assert.match(textOf('notices'), /changed elsewhere.*Load the newer version.*Overwrite it/);
  server.answer(/content/, { body: { result: 'ok', file_version: 7 } });
  page.document.querySelectorAll('[data-notice=conflict] button')[1].click();
  await screen.save();
  assert.equal(textOf('save-state'), 'Saved');
  assert.equal(server.requests[server.requests.length - 1].body.base_version, 6);
});
