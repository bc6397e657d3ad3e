/** Stands in for `fetch`: answers by rule, records what was asked. A request without a rule fails as unreachable. */
export class FakeServer {
  requests = [];
  #rules = [];

  /** The next request whose URL matches gets this answer; each rule answers once. */
  answer(pattern, { status = 200, body = '', headers = {} } = {}) {
    const text = typeof body === 'string' ? body : JSON.stringify(body);
    this.#rules.push({ pattern, respond: () => new Response(text, { status, headers }) });
    return this;
  }

  fetch = async (url, init = {}) => {
    this.requests.push({ url, method: init.method || 'GET', body: typeof init.body === 'string' ? JSON.parse(init.body) : init.body });
    const index = this.#rules.findIndex(({ pattern }) => pattern.test(url));
    if (index < 0) throw new TypeError('unreachable');
    return this.#rules.splice(index, 1)[0].respond();
  };
}
