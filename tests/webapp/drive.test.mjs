import assert from 'node:assert/strict';
import { createHash } from 'node:crypto';
import { createRequire } from 'node:module';
import test from 'node:test';
import { NativeSide } from '../../demo/webapp/src/document/NativeSide.js';
import { BrowserTransport } from '../../demo/webapp/src/drive/BrowserTransport.js';
import { DriveApi } from '../../demo/webapp/src/drive/DriveApi.js';
import { uploadFile } from '../../demo/webapp/src/drive/browserUpload.js';
import { downloadIds, nameProblem, openingOf, placeFromHash, sizeText, sorted } from '../../demo/webapp/src/drive/driveItems.js';
import { dragArguments, filesOfDrop, filesOfInput, pathsOfEvent } from '../../demo/webapp/src/drive/dropped.js';
import { Sha1 } from '../../demo/webapp/src/drive/Sha1.js';
import { ShellTransport } from '../../demo/webapp/src/drive/ShellTransport.js';
import { afterDownloadReport, afterUploadReport, noTransfers, summary } from '../../demo/webapp/src/drive/transferRecords.js';
import { FileList } from '../../demo/webapp/src/drive/FileList.js';
import { FakeHelio } from './support/FakeHelio.mjs';
import { FakeServer } from './support/FakeServer.mjs';

const { JSDOM } = createRequire(new URL('../../demo/webapp/package.json', import.meta.url))('jsdom');
globalThis.window = new JSDOM('').window;
globalThis.document = window.document;
const upload = (src, size, more) => ({ src, size: String(size), uploadTo: { groupid: '0', parentid: '0' }, ...more });
const place = { group: '0', folder: '7' };
const now = { setTimeout: (fn) => fn() };

test('upload reports become one list: progress by size, failures with their message, an end when nothing is queued', () => {
  const first = afterUploadReport(noTransfers(), {
    queued: [upload('/a/big.bin', 999, { percent: '50' }), upload('/a/next', 0, { percent: 0 })], failed: [], success: [upload('/a/c', 999)],
  });
  const { active, done, percent } = summary(first);
  assert.deepEqual([first.finished, active, done, percent], [false, 2, 1, 74]);
  const failed = [upload('/a/next', 0, { result: 'Failed', msg: 'disk full' })];
  const last = afterUploadReport(first, { failed, success: [upload('/a/big.bin', 999)] });
  assert.deepEqual([last.finished, summary(last).done, summary(last).failed[0].name, summary(last).failed[0].message], [true, 2, 'next', 'disk full']);
  const next = afterUploadReport(last, { queued: [upload('/b', 1, { percent: '1' })] });
  assert.deepEqual([...next.items.keys()], ['/a/next', '/b']);
  for (const odd of [null, {}, { queued: 'x' }, { queued: [null] }]) assert.equal(summary(afterUploadReport(first, odd)).active, 0);
});

test('download reports: states by their words, an unknown word is under way', () => {
  const task = (state, more) => ({ taskId: state, fileId: '1', name: state, size: 100, done: 40, state, ...more });
  const words = { downloading: 'running', queued: 'waiting', finished: 'done', fail: 'failed', stopped: 'stopped', anything: 'running' };
  const all = afterDownloadReport(noTransfers(), { tasks: Object.keys(words).map((word) => task(word, { msg: 'm' })) });
  assert.deepEqual(Object.fromEntries([...all.items].map(([key, { state }]) => [key, state])), words);
  assert.deepEqual([all.finished, all.items.get('finished').done, summary(all).hint], [false, 100, 'm']);
  assert.ok(afterDownloadReport(noTransfers(), { tasks: [task('finished'), task('fail')] }).finished);
  assert.ok(afterDownloadReport(noTransfers(), null).finished);
});

test('items: order, sizes, names, what opens them, what can be downloaded', () => {
  const item = (name, type = 'file') => ({ id: name, name, type });
  const names = sorted([item('b10'), item('b2'), item('z', 'folder'), item('A')]).map(({ name }) => name);
  assert.deepEqual(names, ['z', 'A', 'b2', 'b10']);
  const sizes = { 0: '0 B', 1023: '1023 B', 1536: '1.5 KB', 1048575: '1 MB', 157286400: '150 MB', 5e12: '4.5 TB' };
  for (const [bytes, shown] of Object.entries(sizes)) assert.equal(sizeText(Number(bytes)), shown);
  for (const bad of ['', '  ', '.', '..', 'a/b', 'a\u0000', 'ü'.repeat(128)]) assert.ok(nameProblem(bad), JSON.stringify(bad));
  assert.equal(nameProblem('Straße 1'), null);
  assert.equal(openingOf({ id: '100001', name: 'Welcome.docx', type: 'document' }).url, '/p/100001?officeType=w');
  assert.equal(openingOf(item('Welcome.docx')).kind, 'file');
  assert.deepEqual(downloadIds([item('1'), item('2', 'folder'), item('3', 'document')]), [{ id: '1', idDir: false }, { id: '2', idDir: true }]);
  assert.deepEqual([placeFromHash('#3/8'), placeFromHash('#x')], [{ group: '3', folder: '8' }, { group: '0', folder: '0' }]);
});

test('what is dropped: paths of the desktop side, files and folders of the browser', async () => {
  assert.deepEqual(pathsOfEvent({ files: ['/a', '', 3] }), ['/a']);
  assert.deepEqual([pathsOfEvent(null), dragArguments([], place)], [[], null]);
  assert.deepEqual(dragArguments(['/a'], place), { groupid: '0', parentid: '7', fileid: '0', files: ['/a'] });
  const file = (name) => ({ isFile: true, name, file: (resolve) => resolve(name) });
  const folder = (name, inside) => {
    const batches = [inside.slice(0, 1), inside.slice(1), []].filter((each, index) => index === 2 || each.length);
    return { name, createReader: () => ({ readEntries: (resolve) => resolve(batches.shift()) }) };
  };
  const dropped = [folder('x', [file('1'), folder('y', [file('2')])]), file('3'), null];
  const found = await filesOfDrop({ items: dropped.map((entry) => ({ webkitGetAsEntry: () => entry })) });
  assert.deepEqual(found.map(({ file: each, folders }) => [each, folders.join('/')]), [[null, 'x'], ['1', 'x'], [null, 'x/y'], ['2', 'x/y'], ['3', '']]);
  assert.deepEqual(filesOfInput([{ name: 'b', webkitRelativePath: 'x/a/b' }])[0].folders, ['x', 'a']);
});

test('SHA-1 in pieces of any length', () => {
  const bytes = Uint8Array.from({ length: 300 }, (_, index) => index * 7);
  for (const size of [0, 1, 55, 56, 63, 64, 65, 119, 120, 300]) {
    for (const step of [1, 13, 64, 300]) {
      const hash = new Sha1();
      for (let at = 0; at < size; at += step) hash.add(bytes.subarray(at, Math.min(at + step, size)));
      assert.equal(hash.hex(), createHash('sha1').update(bytes.subarray(0, size)).digest('hex'), `${size}/${step}`);
    }
  }
});

test('an upload of the browser goes on from where the server stands, and fails with what the server says', async () => {
  const size = 9 * 1024 * 1024;
  const server = new FakeServer()
    .answer(/uploads$/, { status: 201, body: { uploadid: '5', offset: 0 } })
    .answer(/uploads\/5\?offset=0$/, { status: 409, body: { offset: 4194304 } })
    .answer(/uploads\/5\?offset=4194304$/, { status: 503 })
    .answer(/uploads\/5\?offset=4194304$/, { body: { offset: size } })
    .answer(/finish$/, { body: { id: '9' } })
    .answer(/files\?/, { status: 507, body: { result: 'noSpace', msg: 'the disk is full' } });
  const api = new DriveApi(server.fetch);
  assert.equal((await uploadFile(api, { file: new File([new Uint8Array(size)], 'a'), place, timers: now })).id, '9');
  const offsets = server.requests.map(({ url }) => Number(new URL(url, 'http://x').searchParams.get('offset')));
  assert.deepEqual(offsets, [0, 0, 4194304, 4194304, 0]);
  const told = [];
  const transport = new BrowserTransport(api, {}, { onUploads: (each) => told.push(...summary(each).failed), onProblem: assert.fail });
  await transport.uploadFiles(place, [{ file: new File(['x'], 'c'), folders: [] }]);
  assert.deepEqual(told.map(({ name, message }) => [name, message]), [['c', 'the server answered with status 507: the disk is full']]);
});

test('in the shell transfers are the shell\'s: arguments, reports and the conflict of suffixes', async () => {
  const helio = new FakeHelio({ callFileUploader: { result: 'FileSuffixConflict' } });
  const seen = { uploads: [], downloads: [], problems: [] };
  const transport = new ShellTransport(new NativeSide(helio.window), {
    onUploads: (each) => seen.uploads.push(each), onDownloads: (each) => seen.downloads.push(each), onProblem: (text) => seen.problems.push(text),
  });
  transport.upload(place, { isFolder: true });
  transport.download(place, [{ id: 4, name: 'f', type: 'folder' }]);
  transport.upload(place, { version: { id: '3', name: 'a.txt' } });
  assert.deepEqual(helio.argumentsOf('callFileUploader'), [
    { isDir: '1', groupid: '0', parentid: '7' }, { isDir: '0', groupid: '0', parentid: '7', fileid: '3', filename: 'a.txt' }]);
  assert.deepEqual(helio.argumentsOf('callFileDownload'), [{ fileids: [{ id: '4', idDir: true }], groupid: '0', historyid: '' }]);
  helio.callBack('fileUploadListener', { queued: [upload('/a', 1, { percent: '1' })] });
  helio.callBack('fileDownloadListener', { tasks: [] });
  await new Promise(setImmediate);
  assert.deepEqual([summary(seen.uploads[0]).active, seen.downloads[0].finished], [1, true]);
  assert.match(seen.problems[0], /same kind/);
});

test('a list that is read again keeps its rows, the selection and the focus; keys move, select and open', () => {
  const opened = [];
  const list = new FileList({ onOpen: ({ id }) => opened.push(id), onSelection() {} });
  document.body.append(list.dom);
  const items = ['1', '2', '3', '4'].map((id) => ({ id, name: `f${id}`, type: 'file', size: 1, mtime: 1 }));
  const rows = () => [...list.dom.querySelectorAll('.rows .row')];
  const key = (name, more) => document.activeElement.dispatchEvent(new window.KeyboardEvent('keydown', { key: name, bubbles: true, ...more }));
  list.show(items);
  list.focus();
  ['ArrowDown', ' ', 'ArrowDown', 'Enter'].forEach((name) => key(name));
  assert.deepEqual([list.selection.map(({ id }) => id), opened], [['2'], ['3']]);
  const [, second, third] = rows();
  list.show([{ id: '0', name: 'f0', type: 'file' }, { ...items[3], size: 2 }, items[2], items[1]]);
  assert.deepEqual(rows().map(({ dataset }) => dataset.id), ['0', '2', '3', '4']);
  assert.ok(rows()[1] === second && rows()[2] === third && document.activeElement === third);
  assert.deepEqual(list.selection.map(({ id }) => id), ['2']);
  key('a', { ctrlKey: true });
  assert.equal(list.selection.length, 4);
  list.show([items[2]]);
  assert.deepEqual(list.selection.map(({ id }) => id), ['3']);
});
