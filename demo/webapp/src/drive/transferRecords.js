/**
 * What the desktop side reports of transfers, and what this page does itself, as one record per direction:
 *
 * @typedef {'waiting' | 'running' | 'done' | 'failed' | 'stopped'} TransferState
 * @typedef {{key: string, name: string, size: number, done: number, state: TransferState, message: string}} TransferItem
 * @typedef {{items: Map<string, TransferItem>, finished: boolean}} Transfers  finished: nothing waits or runs any more
 */

const states = [
  ['fail', 'failed'], ['error', 'failed'], ['stop', 'stopped'], ['cancel', 'stopped'], ['paus', 'stopped'],
  ['finish', 'done'], ['done', 'done'], ['ok', 'done'], ['success', 'done'], ['complete', 'done'],
  ['queue', 'waiting'], ['wait', 'waiting'], ['prestart', 'waiting'],
];

/** @returns {Transfers} */
export function noTransfers() {
  return { items: new Map(), finished: true };
}

export function fileName(path) {
  return String(path).split(/[\\/]/).pop();
}

function amount(value) {
  const number = Number(value);
  return Number.isFinite(number) && number > 0 ? number : 0;
}

function listOf(report, name) {
  return report && Array.isArray(report[name]) ? report[name].filter((each) => each && typeof each === 'object') : [];
}

function uploadItem(entry, state, done, message = '') {
  const key = String(entry.src);
  return { key, name: fileName(key), size: amount(entry.size), done, state, message };
}

/** What follows on transfers that have ended starts a list of its own; failures stay until the user dismisses them. */
function begun(before) {
  if (!before.finished) return new Map(before.items);
  return new Map([...before.items].filter(([, { state }]) => state === 'failed'));
}

/**
 * @param {Transfers} before
 * @param {object} report {"queued"?, "failed", "success"}: a file that succeeded is told once, the others every time
 * @returns {Transfers}
 */
export function afterUploadReport(before, report) {
  const queued = listOf(report, 'queued');
  const failed = listOf(report, 'failed');
  const success = listOf(report, 'success');
  if (queued.length + failed.length + success.length === 0) return settledTransfers(before);
  const items = begun(before);
  const put = (item) => items.set(item.key, item);
  queued.forEach((entry) => {
    const percent = Math.min(amount(entry.percent), 100);
    put(uploadItem(entry, entry.percent === 0 ? 'waiting' : 'running', (amount(entry.size) * percent) / 100));
  });
  failed.forEach((entry) => {
    const state = entry.result === 'Stop' ? 'stopped' : 'failed';
    put(uploadItem(entry, state, 0, state === 'failed' ? String(entry.msg || '') : 'Stopped'));
  });
  success.forEach((entry) => put(uploadItem(entry, 'done', amount(entry.size))));
  const after = { items, finished: false };
  return Array.isArray(report.queued) ? after : settledTransfers(after);
}

/** Nothing is under way any more: what was, has ended in a way that was not told. */
function settledTransfers({ items }) {
  return { items: new Map([...items].filter(([, { state }]) => state !== 'waiting' && state !== 'running')), finished: true };
}

function downloadState(word) {
  const known = states.find(([part]) => String(word).toLowerCase().includes(part));
  return known ? known[1] : 'running';
}

/**
 * @param {Transfers} before
 * @param {object | null} report {"tasks": [...]}: all tasks that are watched, every time
 * @returns {Transfers}
 */
export function afterDownloadReport(before, report) {
  const tasks = listOf(report, 'tasks');
  const items = begun(before);
  tasks.forEach((task) => {
    const state = downloadState(task.state);
    const size = amount(task.size);
    const done = state === 'done' ? size : Math.min(amount(task.done), size);
    const key = String(task.taskId);
    items.set(key, { key, name: String(task.name || fileName(task.path || key)), size, done, state, message: String(task.msg || '') });
  });
  const finished = [...items.values()].every(({ state }) => state !== 'waiting' && state !== 'running');
  return { items, finished };
}

/** One item changed: for transfers that this page makes itself. @returns {Transfers} */
export function withItem(before, item) {
  const items = begun(before).set(item.key, item);
  return { items, finished: [...items.values()].every(({ state }) => state !== 'waiting' && state !== 'running') };
}

/**
 * @returns {{count: number, done: number, active: number, failed: TransferItem[], stopped: number, percent: number,
 *   hint: string}} hint: why something that waits does not go on, as far as that is known
 */
export function summary({ items }) {
  const all = [...items.values()];
  const failed = all.filter(({ state }) => state === 'failed');
  const counted = all.filter(({ state }) => state !== 'failed');
  const having = (...wanted) => all.filter(({ state }) => wanted.includes(state)).length;
  // An empty file counts for something, else a list of empty files would never get on.
  const weight = ({ size }) => size + 1;
  const total = counted.reduce((sum, item) => sum + weight(item), 0);
  const moved = counted.reduce((sum, item) => sum + (item.state === 'done' ? weight(item) : item.done), 0);
  return {
    count: all.length,
    done: having('done'),
    active: having('waiting', 'running'),
    failed,
    stopped: having('stopped'),
    percent: total > 0 ? Math.floor((100 * moved) / total) : 0,
    hint: (all.find(({ state, message }) => state === 'waiting' && message !== '') || { message: '' }).message,
  };
}
