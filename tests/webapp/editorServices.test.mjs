import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import test from 'node:test';
import { accountState, accountText, roamingState } from '../../demo/webapp/src/account/accountState.js';
import { NativeSide } from '../../demo/webapp/src/document/NativeSide.js';
import { fillEvent, fromEvent, fromNative, nativeArguments, plainHtml } from '../../demo/webapp/src/editing/clipboardData.js';
import { printFileName, printPage, printResultText } from '../../demo/webapp/src/editing/printPage.js';
import { SuitePrinting } from '../../demo/webapp/src/editing/SuitePrinting.js';
import { answered } from '../../demo/webapp/src/native/answered.js';
import { htmlOfRows, rowsOfContent, rowsOfText, textOfRows } from '../../demo/webapp/src/table/cellRows.js';
import { FakeHelio } from './support/FakeHelio.mjs';
import { FakeServer } from './support/FakeServer.mjs';

const { JSDOM } = createRequire(new URL('../../demo/webapp/package.json', import.meta.url))('jsdom');
globalThis.window = new JSDOM('').window;
const base64 = (text) => Buffer.from(text).toString('base64');
const type = 'application/zqdoc-fragment';

test('own data, HTML and text survive the way over the suite\'s clipboard and over the browser\'s', () => {
  const content = { text: 'ä\tb', html: '<b>ä</b>', fragment: { kind: 'table', rows: [['ä', 1]] }, image: null };
  const sent = nativeArguments(content);
  const held = Object.fromEntries(Object.entries(sent).map(([key, value]) => [key, base64(value)]));
  assert.deepEqual(fromNative(held), content);
  const data = new Map();
  const event = { setData: (key, value) => data.set(key, value), getData: (key) => data.get(key) || '' };
  fillEvent(event, content);
  assert.deepEqual(fromEvent(event), content);
  assert.deepEqual(nativeArguments({ text: '', html: '', fragment: null, image: 'data:image/png;base64,AAEC' }), { 'image/base64': 'AAEC' });
});

test('what other programs leave: a header of offsets, pictures, files, damaged data', () => {
  const frame = 'Version:0.9\r\nStartHTML:0000000105\r\n<html>\r\n<body>\r\n<!--StartFragment--><i>x</i><!--EndFragment-->\r\n</body>\r\n</html>';
  assert.equal(plainHtml(frame), '<i>x</i>');
  assert.equal(plainHtml('Version:0.9\r\nStartHTML:1\r\n<p>a</p>'), '<p>a</p>');
  assert.equal(fromNative({ 'image/png': 'AAEC' }).image, 'data:image/png;base64,AAEC');
  assert.equal(fromNative({ 'text/uri-list': [base64('file:///a'), base64('file:///b')] }).text, 'file:///a\nfile:///b');
  assert.equal(fromNative({ 'text/plain;charset=utf-8': base64('x\0') }).text, 'x');
  for (const odd of [undefined, {}, { [type]: base64('{"kind":"video"}') }, { [type]: base64('{') }, { 'text/plain': '%%' }, { 'text/html': 3 }]) {
    assert.deepEqual(fromNative(odd), { text: '', html: '', fragment: null, image: null });
  }
});

test('cells survive as text and as HTML; strange text is one cell', () => {
  const rows = [['a\tb', '"q"', ''], ['line\nbreak', '<&>', '1,5']];
  assert.deepEqual(rowsOfText(textOfRows(rows)), rows);
  assert.deepEqual(rowsOfContent({ html: htmlOfRows(rows.slice(1)), text: '' }), rows.slice(1));
  const texts = { 'a\tb\r\nc\r\n': [['a', 'b'], ['c']], 'a\t': [['a', '']], '"open\tb': [['"open', 'b']], '\n\nx': [[''], [''], ['x']] };
  for (const [text, expected] of Object.entries(texts)) assert.deepEqual(rowsOfText(text), expected, JSON.stringify(text));
  const merged = '<table><tr><td colspan=2>A</td><td>B</td></tr></table>';
  assert.deepEqual(rowsOfContent({ html: merged, text: 'A' }), [['A', '', 'B']]);
  assert.deepEqual(rowsOfContent({ html: merged, text: 'A' }, { plain: true }), [['A']]);
  const own = { kind: 'table', rows: [[1, null]] };
  assert.deepEqual(rowsOfContent({ fragment: own, text: '1' }), own.rows);
  assert.deepEqual(rowsOfContent({ fragment: { kind: 'table', rows: [[{}]] }, text: 't' }), [['t']]);
  assert.equal(rowsOfContent({ fragment: null, html: '<p>x</p>', text: '' }), null);
});

test('account and roaming states as the desktop side words them', () => {
  assert.equal(accountText(accountState({ logined: true, userid: 'u7' })), 'Signed in as u7');
  assert.equal(accountText(accountState({ act: 'notifyLoginStatus', logined: 0, userid: '' })), 'Not signed in');
  assert.equal(accountState({}), null);
  assert.deepEqual(['on', 'off', '', 'unknown'].map((mode) => roamingState({ mode })), [true, false, null, null]);
  assert.equal(roamingState({ callstatus: 'error', mode: 'on' }), null);
});

test('an answer by a function of the page, a refusal, silence; the function is gone afterwards', async () => {
  const helio = new FakeHelio({ refused: { callstatus: 'error', errormsg: 'no' }, thrown: new Error('unknown method') });
  const native = new NativeSide(helio.window);
  const asked = answered(native, 'checkNetwork', {});
  helio.callBack('checkNetwork', { status: 'true' });
  assert.deepEqual(await asked, { status: 'true' });
  assert.equal((await answered(native, 'refused', {})).errormsg, 'no');
  await assert.rejects(answered(native, 'thrown', {}), /unknown method/);
  await assert.rejects(answered(native, 'silent', {}, { timeoutMs: 1 }), /did not answer/);
  assert.deepEqual(Object.keys(helio.window).filter((name) => name.startsWith('skyleafCallback')), []);
});

test('printing: the file travels over the drive to this computer, then to the suite, and leaves the drive', async () => {
  const server = new FakeServer().answer(/folders$/, { body: { id: '5' } }).answer(/folders\/5\/files\?name=A\.html/, { body: { id: '9' } });
  const helio = new FakeHelio({ 'docs.print.printFileByZeo': { resultStatus: 'ok' } });
  const told = [];
  const printing = new SuitePrinting({ native: new NativeSide(helio.window), fetchFn: server.fetch, notify: (text) => told.push(text) });
  await printing.print({ fileId: '100001', fileName: 'A.docx', body: '<p>x</p>' });
  assert.deepEqual(helio.argumentsOf('callFileDownload')[0].fileids, [{ id: '9', idDir: false }]);
  const task = { taskId: 't', fileId: '9', path: '/d/A (1).html', state: 'downloading', size: 5, done: 1 };
  helio.callBack('fileDownloadListener', { tasks: [task] });
  assert.deepEqual(helio.argumentsOf('docs.print.printFileByZeo'), []);
  helio.callBack('fileDownloadListener', { tasks: [{ ...task, state: 'finished' }] });
  helio.callBack('fileDownloadListener', { tasks: [{ ...task, state: 'finished' }] });
  assert.deepEqual(helio.argumentsOf('docs.print.printFileByZeo'), [{ fileAbsolutePath: '/d/A (1).html', fileId: '100001' }]);
  assert.deepEqual(server.requests.filter(({ method }) => method === 'DELETE').map(({ url }) => url), ['/api/v1/drive/items/9']);
  helio.raise('notifyPrintResult', { result: 'failed', msg: 'no printer' });
  assert.deepEqual(told, ['Printing failed: no printer.']);
  assert.equal(printFileName('a/b: "c".docx'), 'a b   c.html');
  assert.match(printPage('<x>', ''), /<title>&lt;x&gt;</);
  assert.deepEqual([{ result: 'ok' }, { result: 'cancelled' }, {}].map(printResultText), ['Printed.', 'Printing was cancelled.', 'Printing failed.']);
});
