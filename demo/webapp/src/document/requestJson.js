/**
 * One HTTP exchange that ends in a JSON value or in a described failure; it never throws.
 * @typedef {{ok: true, value: any, source: 'local' | 'network'}} JsonAnswer
 * @typedef {{ok: false, reason: 'network' | 'timeout' | 'aborted' | 'status' | 'empty' | 'malformed',
 *            status: number, value: any, message: string}} JsonFailure
 *   status is 0 without an HTTP answer; value is the JSON body of an answer with a bad status, or null
 */

const defaultTimeoutMs = 20000;

function failure(reason, status, message, value = null) {
  return { ok: false, reason, status, value, message };
}

function parse(text) {
  try {
    return { value: JSON.parse(text) };
  } catch {
    return null;
  }
}

function statusMessage(status, value) {
  const said = value && typeof value === 'object' && typeof value.msg === 'string' ? `: ${value.msg}` : '';
  return `the server answered with status ${status}${said}`;
}

async function readAnswer(response) {
  const text = await response.text();
  const body = parse(text);
  if (!response.ok) {
    return failure('status', response.status, statusMessage(response.status, body && body.value), body && body.value);
  }
  if (text.trim() === '') return failure('empty', response.status, 'the answer was empty');
  if (!body) return failure('malformed', response.status, 'the answer was not JSON');
  const local = (response.headers.get('x-client-proxy') || '').toLowerCase() === 'true';
  return { ok: true, value: body.value, source: local ? 'local' : 'network' };
}

/** Whether the server wants a user first. @param {JsonAnswer | JsonFailure} answer */
export function isSignedOut(answer) {
  return !answer.ok && answer.status === 401;
}

/**
 * @param {typeof fetch} fetchFn
 * @param {string} url
 * @param {RequestInit & {json?: any, timeoutMs?: number}} [options] json is sent as the body
 * @returns {Promise<JsonAnswer | JsonFailure>}
 */
export async function requestJson(fetchFn, url, { json, timeoutMs = defaultTimeoutMs, signal, ...init } = {}) {
  const limit = new AbortController();
  const abort = () => limit.abort();
  if (signal && signal.aborted) return failure('aborted', 0, 'the request was given up');
  if (signal) signal.addEventListener('abort', abort, { once: true });
  const timer = setTimeout(abort, timeoutMs);
  const request = { credentials: 'same-origin', ...init, signal: limit.signal };
  if (json !== undefined) {
    request.body = JSON.stringify(json);
    request.headers = { 'Content-Type': 'application/json' };
  }
  try {
    return await readAnswer(await fetchFn(url, request));
  } catch (error) {
    if (signal && signal.aborted) return failure('aborted', 0, 'the request was given up');
    if (limit.signal.aborted) return failure('timeout', 0, `no answer within ${timeoutMs / 1000} seconds`);
    return failure('network', 0, 'the server could not be reached');
  } finally {
    clearTimeout(timer);
    if (signal) signal.removeEventListener('abort', abort);
  }
}

/**
 * Asks `url`, which a local side may answer, and once more `networkUrl` when that brought no JSON value, or none that
 * `isUsable` takes.
 * @param {(value: any) => boolean} isUsable
 * @returns {Promise<JsonAnswer | JsonFailure>}
 */
export async function requestJsonTwice(fetchFn, url, networkUrl, isUsable, options) {
  const first = await requestJson(fetchFn, url, options);
  const useless = first.ok && first.source === 'local' && !isUsable(first.value);
  if ((first.ok && !useless) || first.reason === 'aborted') return first;
  return requestJson(fetchFn, networkUrl, options);
}
