/**
 * One call of a method that answers through a function of the page ("callback"), or at once with its refusal.
 * @param {import('../document/NativeSide.js').NativeSide} native
 * @param {{as?: string, timeoutMs?: number}} [options] as: the argument that names the function
 * @returns {Promise<object>} what the function got, or the refusal; rejects when nothing came in time
 */
export function answered(native, method, args, { as = 'callback', timeoutMs = 15000 } = {}) {
  return new Promise((resolve, reject) => {
    const end = (settle) => (value) => {
      clearTimeout(timer);
      callback.release();
      settle(value);
    };
    const callback = native.callback((value) => end(resolve)(value || {}));
    const timer = setTimeout(() => end(reject)(new Error(`"${method}" did not answer`)), timeoutMs);
    const onReply = (reply) => reply.callstatus === 'error' && end(resolve)(reply);
    native.tell(method, { ...args, [as]: callback.name }, { onReply, onFailure: (text) => end(reject)(new Error(text)) });
  });
}
