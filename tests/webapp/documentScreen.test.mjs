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
globalThis.Node = page.Node;
globalThis.DOMParser = page.DOMParser;
page.requestAnimationFrame = (fn) => fn(0);
const marks = [];
page.performance.mark = (name) => marks.push(name);
page.performance.clearMarks = (name) => marks.splice(0, marks.length, ...marks.filter((mark) => mark !== name));

const { DocumentScreen } = await import('../../demo/webapp/src/document/DocumentScreen.js');
const { EarlyOpening } = await import('../../demo/webapp/src/document/EarlyOpening.js');
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
function start(url, inject, { typeCode = 'w', early = false } = {}) {
  page.history.replaceState(null, '', url);
  page.__INJECT__ = inject;
  page.__DOCS_STATE__ = undefined;
  const told = [];
  page.helio = { call: async () => ({}), emitHost: (name, data) => told.push([name, data]) };
  const server = new FakeServer();
  const editors = new EditorRegistry();
  const editor = fakeEditor();
  page.fetch = (at, init) => server.fetch(at, init);
  const begun = early ? new EarlyOpening({ owner: page, typeCode, fileId: '7', frontVersion: '3.2' }) : null;
  if (begun) begun.showStored(page.document);
  const screen = new DocumentScreen({
    window: page,
    typeCode,
    frontVersion: '3.2',
    early: begun,
    api: new DocumentsApi((at, init) => server.fetch(at, init)),
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
  assert.deepEqual(told, [['webFileReady', { fileId: '7', fileName: 'Plan.docx', fileType: 'w' }]]);
  const { times, ...rest } = state();
  assert.deepEqual(rest, {
    fileId: '7', officeType: 'w', frontVersion: '3.2', visible: true, editable: true, saved: true, error: null,
    visibleFrom: 'prefetched', contentFrom: 'prefetched', source: { preopen: 'local', envConfig: 'local' },
  });
  assert.ok(Math.abs(times.editable - Date.now()) < 60000 && times.visible <= times.editable, JSON.stringify(times));
  assert.equal(page.document.title, 'Plan.docx');
  assert.equal(textOf('front-version'), 'Front end 3.2');
  assert.deepEqual(marks.filter((mark) => /text-visible|editable/.test(mark)), ['docs-text-visible', 'docs-editable']);
});

/** A page whose local copy says `text` (at `version`, when given), in an editor. */
async function startCopy(text, version, options) {
  const content = version ? { file_version: version, content: doc(text) } : doc(text);
  const inject = { _LOCAL_CONNID: 'abc', _LOCAL_INJECT_DATA: { content }, _LOCAL_INJECT_DATA_FILEINFO: { name: 'Kept.docx' } };
  const copy = start('/p/7?officeType=w', inject, options);
  copy.editors.register('w', copy.editor.mount);
  let answer;
  const serve = copy.server.fetch;
  const held = new Promise((resolve) => { answer = resolve; });
  copy.server.fetch = async (url, init) => (await (/preopen/.test(url) && held), serve(url, init));
  copy.answer = async (reply) => {
    if (reply) copy.server.answer(/preopen/, { body: { ...reply, 'window.__VLTENV__': { ...reply['window.__VLTENV__'], file_version: 4 } } });
    answer();
    for (let turn = 0; turn < 20; ++turn) await settled();
  };
  return copy;
}

test('a local copy is edited at once, and what the server answers decides how it goes on', async () => {
  const edited = doc('typed');
  const cases = [
    { name: 'the same', local: 'one', server: 'one', mounts: 1, saved: null },
    { name: 'the same, typed since', local: 'one', server: 'one', edit: true, mounts: 1, saved: [4, edited] },
    { name: 'newer', local: 'one', server: 'two', mounts: 2, saved: null },
    { name: 'newer, the copy of an older version', local: 'one', version: 3, server: 'two', mounts: 2, saved: null },
    { name: 'the copy holds unsent changes', local: 'mine', version: 4, server: 'two', mounts: 1, saved: [4, doc('mine')] },
    { name: 'newer, typed since', local: 'one', server: 'two', edit: true, mounts: 1, saved: null, conflict: true },
    { name: 'older than the copy', local: 'one', version: 9, server: 'two', mounts: 1, saved: null, conflict: true },
  ];
  for (const { name, local, version, server, edit, mounts, saved, conflict = false } of cases) {
    const copy = await startCopy(local, version);
    await copy.screen.open();
    assert.equal(copy.state().editable, true, name);
    assert.equal(copy.state().contentFrom, 'injected', name);
    assert.equal(page.document.title, 'Kept.docx', name);
    if (edit) copy.editor.edit(edited);
    await copy.screen.save();
    assert.ok(!copy.server.requests.some(({ method }) => method === 'PUT'), `${name}: sent without a version`);
    await copy.answer(preopenReply('7', server));
    copy.server.answer(/content/, { body: { result: 'ok', file_version: 5 } });
    await copy.screen.save();
    const put = copy.server.requests.find(({ method }) => method === 'PUT');
    assert.deepEqual(put ? [put.body.base_version, put.body.content] : null, saved, name);
    assert.equal(copy.editor.mounted.length, mounts, name);
    assert.equal(copy.state().contentFrom, mounts === 2 ? 'network' : 'injected', name);
    assert.equal(/changed elsewhere/.test(textOf('notices')), conflict, name);
    assert.equal(copy.screen.leavingLosesChanges(), conflict, name);
    assert.equal(copy.told.filter(([report]) => report === 'webFileReady').length, 1, name);
    const reports = copy.told.filter(([report]) => report === 'unsavedChanges').map(([, { unsaved }]) => unsaved);
    assert.equal(reports.pop() || false, conflict, `${name}: whether its end would lose something`);
    assert.equal(await copy.screen.prepareToLeave(), !conflict, name);
  }
});

test('whoever leaves waits for what is being saved, and is told what cannot be', async () => {
  const { screen, server, editors, editor, told } = start('/p/7?officeType=w', {});
  server.answer(/preopen/, { body: preopenReply('7', 'Plan') });
  server.answer(/content/, { body: { result: 'ok', file_version: 5 } });
  editors.register('w', editor.mount);
  await screen.open();
  await settled();
  editor.edit(doc('typed last'));
  assert.deepEqual(told.pop(), ['unsavedChanges', { unsaved: true }]);
  assert.equal(screen.holdsUnsaved, true);
  assert.equal(await screen.prepareToLeave(), true);
  assert.deepEqual(server.requests.pop().body.content, doc('typed last'));
  assert.deepEqual(told.pop(), ['unsavedChanges', { unsaved: false }]);

  server.answer(/content/, { status: 400, body: {} });
  editor.edit(doc('lost'));
  assert.equal(await screen.prepareToLeave(), false);
  assert.equal(screen.holdsUnsaved, true);
});

test('a local copy stays, and says so, while the server is away', async () => {
  const copy = await startCopy('kept here');
  await copy.screen.open();
  await copy.answer(null);
  assert.match(textOf('document-place'), /kept here/);
  assert.match(textOf('notices'), /copy on this computer.*could not be reached.*Try again/);
  copy.editor.edit(doc('typed'));
  assert.equal(copy.screen.leavingLosesChanges(), true);
  copy.server.answer(/preopen/, { body: preopenReply('7', 'kept here') }).answer(/content/, { body: { result: 'ok', file_version: 2 } });
  page.document.querySelector('[data-notice=unconfirmed] button').click();
  for (let turn = 0; turn < 20; ++turn) await settled();
  await copy.screen.save();
  assert.equal(textOf('save-state'), 'Saved');
  assert.equal(page.document.querySelector('[data-notice=unconfirmed]'), null);
});

test('a copy that the editor cannot read gives way to the server; a used copy is not shown for the next document', async () => {
  const broken = await startCopy('x');
  page.__INJECT__._LOCAL_INJECT_DATA.content = { type: 'odd', content: [null] };
  const open = broken.screen.open();
  await broken.answer(preopenReply('7', 'From the server'));
  await open;
  assert.match(textOf('document-place'), /From the server/);

  page.history.replaceState(null, '', '/p/9?officeType=w');
  broken.server.answer(/9\/preopen/, { body: preopenReply('9', 'Another') });
  await broken.screen.open();
  assert.deepEqual(broken.editor.mounted, [doc('From the server'), doc('Another')]);
});

test('a kept rendering is shown without what it could run', async () => {
  const csr = '<p onclick="x()" style="color:red">shown <b>bold<\\/b><\\/p><script>window.ran = true<\\/script><iframe src="/"><\\/iframe>'
    + '<custom-tag><a href="javascript:x()">link<\\/a><a href="https://a.test/">ok<\\/a><\\/custom-tag><img src="x:y" onerror="x()">'
    + '<table><tbody><tr><td colspan="2" class="c">cell<\\/td><\\/tr><\\/tbody><\\/table><svg><style>p{}<\\/style><\\/svg>';
  const { screen } = start('/p/7', { _LOCAL_INJECT_CACHE: { csr } });
  await screen.open();
  assert.equal(page.document.querySelector('.preview > .text-page').innerHTML,
    '<p>shown <b>bold</b></p><a>link</a><a href="https://a.test/">ok</a><img><table><tbody><tr><td colspan="2">cell</td></tr></tbody></table>');
});

test('what the page began before its scripts is taken over, and asked once', async () => {
  const inject = { _LOCAL_CONNID: 'abc', _LOCAL_INJECT_CACHE: { csr: '<p>early<\\/p>' } };
  const { screen, server, editors, editor, state } = start('/p/7?officeType=w', inject, { early: true });
  assert.match(textOf('document-place'), /early/);
  assert.deepEqual([state().visible, state().visibleFrom, state().editable], [true, 'injected', false]);
  const asked = server.requests.length;
  assert.equal(asked, 2);
  editors.register('w', editor.mount);
  server.answer(/preopen/, { body: preopenReply('7', 'Plan') }).answer(/plugin_config/, { body: {} });
  await screen.open();
  assert.deepEqual(editor.mounted, [doc('Plan')]);
  assert.equal(state().contentFrom, 'network');
  assert.deepEqual(server.requests.slice(asked).filter(({ url }) => /proxy=true/.test(url)), []);
});

test('a kind without an editor says so', async () => {
  const { screen, server } = start('/p/7?officeType=d', undefined, { typeCode: 'd' });
  await screen.open();
  assert.match(problem(), /No editor for this kind yet.*"d" \(Database\)/);
  assert.equal(server.requests.length, 0);
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

test('whoever is not signed in is told so, and can sign in; what was typed stays', async () => {
  const nobody = { status: 401, body: { result: 'userNotLogin', msg: 'Sign in to see this document' } };
  const { screen, server, editors, editor, state } = start('/p/7');
  const asked = [];
  page.helio.call = async (name) => (asked.push(name), {});
  editors.register('w', editor.mount);
  server.answer(/preopen/, nobody).answer(/preopen/, nobody).answer(/plugin_config/, nobody).answer(/plugin_config/, nobody);
  await screen.open();
  assert.match(problem(), /^Sign in to see this document.*Sign inRetry/);
  assert.equal(textOf('notices'), '');
  page.document.querySelector('#problem button').click();
  assert.deepEqual(asked, ['tavaLogin']);

  server.answer(/preopen/, { body: preopenReply('7', 'Plan') }).answer(/content/, nobody);
  await screen.open();
  editor.edit(doc('typed'));
  await screen.save();
  assert.match(textOf('notices'), /not signed in any more.*kept in this page.*Sign inTry again/);
  assert.equal(textOf('save-state'), 'Not saved: you are not signed in');
  assert.equal(screen.leavingLosesChanges(), true);
  await screen.save();
  server.answer(/content/, { body: { result: 'ok', file_version: 2 } });
  screen.reconnect();
  await screen.save();
  assert.deepEqual(server.requests[server.requests.length - 1].body.content, doc('typed'));
  assert.doesNotMatch(textOf('notices'), /signed in/);
  assert.equal(state().saved, true);
});
