import assert from 'node:assert/strict';
import test from 'node:test';
import { saveOutcome, SaveQueue } from '../../demo/webapp/src/document/SaveQueue.js';
import { FakeTimers, settled } from './support/FakeTimers.mjs';

/** A queue over an editor whose text the test sets, and a server whose answers the test delivers. */
function start() {
  const timers = new FakeTimers();
  const sent = [];
  const states = [];
  const editor = { text: '' };
  const queue = new SaveQueue({
    send: (version, content) => new Promise((resolve) => sent.push({ version, content, answer: resolve })),
    takeContent: () => editor.text,
    version: 1,
    onState: (state) => states.push(state.kind),
    timers,
  });
  const edit = (text) => {
    editor.text = text;
    queue.changed();
  };
  const answer = async (outcome) => {
    sent[sent.length - 1].answer(outcome);
    await settled();
  };
  return { timers, sent, states, queue, edit, answer };
}

test('typing is saved once, after a pause', async () => {
  const { timers, sent, states, queue, edit, answer } = start();
  edit('a');
  edit('ab');
  assert.deepEqual(timers.delays, [1000]);
  assert.equal(sent.length, 0);
  await timers.fire();
  assert.deepEqual([sent[0].version, sent[0].content], [1, 'ab']);
  await answer({ ok: true, version: 2 });
  assert.deepEqual(states, ['changed', 'changed', 'saving', 'saved']);
  assert.equal(queue.hasUnsavedChanges, false);
  await queue.flush();
  assert.equal(sent.length, 1);
});

test('what is typed during a save goes into the next one, never two at a time', async () => {
  const { timers, sent, queue, edit, answer } = start();
  edit('a');
  await timers.fire();
  edit('ab');
  const flushed = queue.flush();
  assert.equal(sent.length, 1);
  await answer({ ok: true, version: 2 });
  assert.deepEqual([sent[1].version, sent[1].content], [2, 'ab']);
  await answer({ ok: true, version: 3 });
  await flushed;
  assert.equal(queue.state.kind, 'saved');
  assert.deepEqual(timers.delays, []);
});

test('an unreachable server is tried again, later and later, with the newest text', async () => {
  const { timers, sent, queue, edit, answer } = start();
  edit('a');
  await timers.fire();
  const delays = [];
  for (let round = 0; round < 6; ++round) {
    await answer({ ok: false, reason: 'unreachable', message: 'away' });
    assert.deepEqual(queue.state, { kind: 'failed', message: 'away', isSignedOut: false });
    delays.push(timers.delays[0]);
    await timers.fire();
  }
  assert.deepEqual(delays, [2000, 4000, 8000, 16000, 30000, 30000]);
  edit('newest');
  await answer({ ok: true, version: 2 });
  await timers.fire();
  assert.equal(sent[sent.length - 1].content, 'newest');
  await answer({ ok: false, reason: 'unreachable', message: 'away' });
  assert.deepEqual(timers.delays, [2000]);
});

test('a refused save waits for the next change', async () => {
  const { timers, queue, edit, answer } = start();
  edit('a');
  await timers.fire();
  await answer({ ok: false, reason: 'refused', message: 'too large' });
  assert.deepEqual(timers.delays, []);
  assert.equal(queue.hasUnsavedChanges, true);
  edit('b');
  assert.deepEqual(timers.delays, [1000]);
});

test('a conflict stops saving until the user overwrites', async () => {
  const { timers, sent, queue, edit, answer } = start();
  edit('mine');
  await timers.fire();
  await answer({ ok: false, reason: 'conflict', version: 9 });
  edit('mine 2');
  await queue.flush();
  assert.deepEqual(timers.delays, []);
  assert.equal(sent.length, 1);
  assert.equal(queue.hasUnsavedChanges, true);
  const overwritten = queue.overwrite();
  assert.deepEqual([sent[1].version, sent[1].content], [9, 'mine 2']);
  await answer({ ok: true, version: 10 });
  await overwritten;
  assert.equal(queue.state.kind, 'saved');
});

test('a closed queue schedules nothing and reports nothing', async () => {
  const { timers, states, queue, edit, answer } = start();
  edit('a');
  await timers.fire();
  queue.close();
  await answer({ ok: false, reason: 'unreachable', message: 'away' });
  edit('b');
  assert.deepEqual(timers.delays, []);
  assert.deepEqual(states, ['changed', 'saving']);
});

test('save replies', () => {
  const failed = (status, value = null) => ({ ok: false, status, value, message: 'm' });
  const cases = [
    [{ ok: true, value: { result: 'ok', file_version: 4 } }, { ok: true, version: 4 }],
    [{ ok: true, value: { result: 'ok' } }, { ok: false, reason: 'refused', message: 'the server did not confirm the save' }],
    [failed(409, { file_version: 8 }), { ok: false, reason: 'conflict', version: 8 }],
    [failed(409), { ok: false, reason: 'refused', message: 'm' }],
    [failed(413), { ok: false, reason: 'refused', message: 'm' }],
    [failed(503), { ok: false, reason: 'unreachable', message: 'm' }],
    [failed(0), { ok: false, reason: 'unreachable', message: 'm' }],
  ];
  for (const [reply, outcome] of cases) assert.deepEqual(saveOutcome(reply), outcome);
});
