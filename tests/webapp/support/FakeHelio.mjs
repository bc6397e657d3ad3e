/** Stands in for the desktop side: records calls, answers those it has a reply for, others stay open. */
export class FakeHelio {
  calls = [];
  #listeners = new Map();
  #replies;

  /** @param {Record<string, object | Error | ((args: object) => object)>} replies by method */
  constructor(replies = {}) {
    this.#replies = replies;
    this.window = { helio: { call: this.#call, on: (name, listener) => this.#listeners.set(name, listener) } };
  }

  #call = async (name, args) => {
    this.calls.push({ name, args });
    const reply = this.#replies[name];
    if (reply === undefined) return new Promise(() => {});
    if (reply instanceof Error) throw reply;
    return typeof reply === 'function' ? reply(args) : reply;
  };

  argumentsOf(method) {
    return this.calls.filter(({ name }) => name === method).map(({ args }) => args);
  }

  /** Calls the function that the page named in its last call of that method. */
  callBack(method, data) {
    const { callback } = this.argumentsOf(method).pop();
    this.window[callback](JSON.stringify(data));
  }

  raise(event, data) {
    this.#listeners.get(event)(JSON.stringify(data));
  }
}
