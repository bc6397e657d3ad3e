import { shapeProblem } from './shapes.js';

/** How long a method that should not answer is listened to, and one that should is waited for. */
const silenceMs = 150;
const patienceMs = 8000;

function delay(ms) {
  return new Promise((resolve) => setTimeout(resolve, ms));
}

/** The text that the page's function of that name gets next. */
function nextCallOf(name, target) {
  return new Promise((resolve) => {
    target[name] = (argument) => resolve(argument);
  });
}

function parsed(argument) {
  if (typeof argument !== 'string') return argument;
  try {
    return JSON.parse(argument);
  } catch {
    return undefined;
  }
}

const tooLate = Symbol('too late');

async function within(promise, ms) {
  return Promise.race([promise, delay(ms).then(() => tooLate)]);
}

function problemOf(name, answer, shape) {
  if (answer === tooLate) return `${name} did not come`;
  return shapeProblem(answer, shape, name);
}

/** What a call that answers by its reply, by a function, or by both, brought. */
async function outcome(method, reply, called) {
  const mayStaySilent = !method.reply || shapeProblem(undefined, method.reply) === '';
  const replied = await within(reply, mayStaySilent ? silenceMs : patienceMs);
  const result = { reply: replied === tooLate ? undefined : replied, problem: '' };
  if (method.reply) result.problem = replied === tooLate && mayStaySilent ? '' : problemOf('reply', replied, method.reply);
  else if (replied !== tooLate) result.problem = `a reply came: ${JSON.stringify(replied)}`;
  if (!method.calls || result.problem) return result;
  const argument = await within(called, patienceMs);
  result.called = argument === tooLate ? undefined : parsed(argument);
  result.problem = argument === tooLate ? `${method.via} was not called` : problemOf(method.via, result.called, method.calls);
  return result;
}

/**
 * Calls one method.
 * @returns {Promise<object>} the row: the call's members, `arguments`, `reply`, `called`, `ms` and `problem` (empty when
 *   everything came back as it should)
 */
export async function runCall(method, { helio, env, target }) {
  const args = typeof method.args === 'function' ? method.args(env) : method.args || {};
  const started = performance.now();
  const called = method.via ? nextCallOf(method.via, target) : null;
  const row = { id: method.id, name: method.name, arguments: args };
  try {
    const { reply, called: argument, problem } = await outcome(method, helio.call(method.name, args), called);
    Object.assign(row, { reply, called: argument, problem });
    const answer = argument !== undefined ? argument : reply;
    if (!problem && method.check) row.problem = method.check(answer);
    if (!problem && method.keep) method.keep(env, answer);
  } catch (failure) {
    row.problem = String(failure && failure.message ? failure.message : failure);
  }
  row.ms = Math.round((performance.now() - started) * 10) / 10;
  return row;
}

/** Calls the methods one after the other; `onRow` gets each row as it comes. */
export async function runCalls(methods, surroundings, onRow = () => {}) {
  const rows = [];
  for (const method of methods) {
    const row = await runCall(method, surroundings);
    rows.push(row);
    onRow(row);
  }
  return rows;
}
