import crelt from 'crelt';
import { allCalls, groups } from './methods.js';
import { runCall, runCalls } from './runCalls.js';
import { shapeText } from './shapes.js';

const calls = allCalls();
const cells = new Map();
const env = {};
const surroundings = () => ({ helio: window.helio, env, target: window });

function answerText(method) {
  const parts = [];
  if (method.reply) parts.push(`reply ${shapeText(method.reply)}`);
  if (method.calls) parts.push(`${method.via}(${shapeText(method.calls)})`);
  return parts.join(', then ') || 'no answer';
}

function show(row) {
  const { outcome, brought, time } = cells.get(row.id);
  const answers = [row.reply, row.called].filter((each) => each !== undefined);
  brought.textContent = answers.map((each) => JSON.stringify(each)).join('\n').slice(0, 600);
  outcome.textContent = row.problem ? row.problem : 'as expected';
  outcome.className = row.problem ? 'wrong' : 'right';
  time.textContent = `${row.ms} ms`;
}

function rowOf(method) {
  const cell = { outcome: crelt('td'), brought: crelt('td', { class: 'brought' }), time: crelt('td', { class: 'time' }) };
  cells.set(method.id, cell);
  const runOne = async () => show(await runCall(method, surroundings()));
  return crelt('tr',
    crelt('td', crelt('code', method.name), method.effect ? crelt('div', { class: 'effect' }, method.effect) : ''),
    crelt('td', crelt('code', typeof method.args === 'function' ? 'from earlier answers' : JSON.stringify(method.args || {}))),
    crelt('td', crelt('code', answerText(method))),
    cell.brought, cell.outcome, cell.time,
    crelt('td', crelt('button', { type: 'button', onclick: runOne, title: method.ends ? 'This ends or leaves the page' : '' }, 'Call')));
}

function groupTable({ title, methods }, rows) {
  const heads = ['Method', 'Arguments', 'Answers', 'Came back', 'Right', 'Time', ''];
  return [
    crelt('h2', title),
    crelt('table', crelt('thead', crelt('tr', heads.map((head) => crelt('th', head)))),
      crelt('tbody', rows.splice(0, methods.length).map(rowOf))),
  ];
}

async function runAll(onRow = () => {}) {
  const state = document.getElementById('state');
  const whole = calls.filter(({ ends }) => !ends);
  let wrong = 0;
  const rows = await runCalls(whole, surroundings(), (row) => {
    wrong += row.problem ? 1 : 0;
    show(row);
    state.textContent = `${row.name}…`;
    onRow(row);
  });
  state.textContent = wrong ? `${wrong} of ${rows.length} calls came back wrong` : `All ${rows.length} calls came back as expected`;
  return rows;
}

/** For whoever drives the page: the calls, one call by its id, all calls that do not end the page. */
window.helioInterface = {
  calls: calls.map(({ id, name, ends }) => ({ id, name, ends: Boolean(ends) })),
  env,
  run: async (id) => {
    const row = await runCall(calls[id], surroundings());
    show(row);
    return row;
  },
  runAll,
};

const remaining = [...calls];
document.getElementById('methods').replaceChildren(...groups.flatMap((group) => groupTable(group, remaining)));
const button = document.getElementById('run');
button.disabled = !window.helio;
if (!window.helio) document.getElementById('state').textContent = 'This page is not in the shell: there is nothing to call.';
button.addEventListener('click', async () => {
  button.disabled = true;
  await runAll();
  button.disabled = false;
});
