import assert from 'node:assert/strict';
import test from 'node:test';
import { baseLine, editLine, newestJournal, readJournal, savedLine, sentLine, startLine } from '../../demo/webapp/src/offline/journal.js';
import { JournalWriter } from '../../demo/webapp/src/offline/JournalWriter.js';
import { Keeper } from '../../demo/webapp/src/offline/Keeper.js';
import { base64 } from '../../demo/webapp/src/offline/StorageBridge.js';
import { FakeTimers, settled } from './support/FakeTimers.mjs';

const content = (text) => ({ type: 'doc', text });
const json = (text) => JSON.stringify(content(text));
const start = (text, generation = 1, base = 4) => startLine({ generation, base, fileName: 'Plan.docx', content: content(text) });
const edit = (before, after) => editLine(json(before), json(after));

test('a journal that is cut at any byte says what it said before the line that was cut', () => {
  const texts = ['Über', 'Übersicht', 'Übersicht 😀', 'sicht 😃 "x"\n', ''];
  const lines = [start(texts[0]), ...texts.slice(1).map((text, at) => edit(texts[at], text))];
  const bytes = Buffer.from(lines.join(''));
  let whole = 0;
  let end = Buffer.byteLength(lines[0]);
  for (let cut = 0; cut <= bytes.length; ++cut) {
    if (cut === end) end += Buffer.byteLength(lines[++whole] || ' ');
    const state = readJournal(bytes.subarray(0, cut).toString());
    assert.equal(state && state.text, whole === 0 ? null : json(texts[whole - 1]), `cut at ${cut}`);
  }
});

test('what was sent, saved and rebased decides what is unsent, and on which version', () => {
  const ab = edit('a', 'ab');
  const cases = [
    [[start('a')], { base: 4, text: json('a'), unsent: true, sentTexts: [] }],
    [[start('a'), sentLine(), ab], { base: 4, text: json('ab'), unsent: true, sentTexts: [json('a')] }],
    [[start('a'), sentLine(), savedLine(5)], { base: 5, text: json('a'), unsent: false, sentTexts: [] }],
    [[start('a'), sentLine(), ab, savedLine(5)], { base: 5, text: json('ab'), unsent: true, sentTexts: [] }],
    [[start('a', 1, null), baseLine(7), ab], { base: 7, text: json('ab'), unsent: true, sentTexts: [] }],
    [[start('a'), savedLine(5), ab], { base: 4, text: json('a'), unsent: true, sentTexts: [] }],
    [[start('a'), '{"kind":"edit"}\n', ab], { base: 4, text: json('a'), unsent: true, sentTexts: [] }],
    [[start('a'), edit('abc', 'abcd')], { base: 4, text: json('a'), unsent: true, sentTexts: [] }],
  ];
  for (const [lines, expected] of cases) {
    assert.deepEqual(readJournal(lines.join('')), { generation: 1, fileName: 'Plan.docx', ...expected }, lines.join(''));
  }
  assert.equal(newestJournal([null, start('new', 3).slice(0, -1)]), null);
  assert.equal(newestJournal([start('old', 2), start('new', 3)]).text, json('new'));
  assert.equal(newestJournal([start('old', 2), start('new', 3).slice(0, -9)]).text, json('old'));
});

/** The files of a package in memory; `fail` makes the next write tear after so many characters. */
class FakeFiles {
  journals = [null, null];
  copy = null;
  fail = null;

  writeJournal = async (slot, text, { append }) => {
    await settled();
    const before = (append && this.journals[slot]) || '';
    const torn = this.fail;
    this.fail = null;
    this.journals[slot] = before + (torn === null ? text : text.slice(0, torn));
    if (torn !== null) throw new Error('the disk is full');
  };

  removeJournal = async (slot) => { this.journals[slot] = null; };

  writeCopy = async (value, version) => { this.copy = [value, version]; };

  get state() {
    return newestJournal(this.journals);
  }
}

test('a journal goes on beside the one whose write tore', async () => {
  for (let cut = 0; cut < 50; cut += 7) {
    const files = new FakeFiles();
    const writer = new JournalWriter({ files, generation: 0, base: 4, fileName: 'Plan.docx' });
    await writer.record(content('a'));
    files.fail = cut;
    await assert.rejects(writer.record(content('ab')));
    assert.equal(files.state.text, json('a'));
    files.fail = cut;
    await assert.rejects(writer.record(content('abc')));
    assert.equal(files.state.text, json('a'), 'the older one stays until the newer one stands');
    await writer.record(content('abcd'));
    assert.deepEqual([files.state.text, files.state.generation], [json('abcd'), 2]);
  }
});

test('typing is journalled, what is saved becomes the copy, and then the journal goes', async () => {
  const files = new FakeFiles();
  const timers = new FakeTimers();
  let text = 'a';
  const session = { fileName: 'Plan.docx', version: 4, hasUnsavedChanges: false, content: () => content(text) };
  const keeper = new Keeper({ session, files, generation: 0, onChange() {}, timers, clock: () => 0 });
  const type = async (next) => {
    text = next;
    session.hasUnsavedChanges = true;
    keeper.changed();
    assert.equal(keeper.isKept, false);
    await timers.fire();
    for (let turn = 0; turn < 5; ++turn) await settled();
  };
  await type('ab');
  assert.deepEqual([keeper.isKept, files.state.text], [true, json('ab')]);
  files.fail = 3;
  await type('abc');
  assert.equal(keeper.error, 'the disk is full');
  await timers.fire();
  await keeper.record();
  keeper.sending(session.content());
  await type('abcd');
  assert.deepEqual([keeper.error, files.state.sentTexts], [null, [json('abc')]]);
  keeper.saved(5);
  for (let turn = 0; turn < 5; ++turn) await timers.fire();
  assert.deepEqual([files.copy, files.state.base, files.state.unsent], [null, 5, true]);
  keeper.sending(session.content());
  session.hasUnsavedChanges = false;
  keeper.saved(6);
  for (let turn = 0; turn < 5; ++turn) await timers.fire();
  assert.deepEqual([files.copy, files.state], [[content('abcd'), 6], null]);
});

test('Base64 of a large text with characters of every length', () => {
  const text = 'aé€😀'.repeat(20000);
  assert.equal(Buffer.from(base64(text), 'base64').toString(), text);
});
