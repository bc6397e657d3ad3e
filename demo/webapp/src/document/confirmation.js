/**
 * Waits until the server answers with the document, while a local copy of it is open: asks again after a while, and
 * at once when the user wants it.
 */
const firstRetryMs = 2000;
const longestRetryMs = 30000;

/**
 * @param {object} options
 * @param {Promise<object>} options.reply the request that runs already
 * @param {() => Promise<object>} options.ask
 * @param {(reply: object) => {ok: true} | {ok: false, message: string}} options.read
 * @param {(message: string, tryAgain: () => void) => void} options.onFailure
 * @param {AbortSignal} options.signal
 * @returns {Promise<object | null>} what `read` made of the reply; null when given up
 */
export async function confirmedDocument({ reply, ask, read, onFailure, signal, timers = globalThis }) {
  let current = reply;
  for (let delayMs = firstRetryMs; ; delayMs = Math.min(delayMs * 2, longestRetryMs)) {
    const document = read(await current);
    if (signal.aborted) return null;
    if (document.ok) return document;
    await new Promise((resolve) => {
      const timer = timers.setTimeout(resolve, delayMs);
      const go = () => {
        timers.clearTimeout(timer);
        resolve();
      };
      signal.addEventListener('abort', go, { once: true });
      onFailure(document.message, go);
    });
    if (signal.aborted) return null;
    current = ask();
  }
}
