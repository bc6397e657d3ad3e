/** Timers that fire when the test says so. */
export class FakeTimers {
  #pending = new Map();
  #last = 0;

  setTimeout = (fn, delayMs) => {
    this.#pending.set(++this.#last, { fn, delayMs });
    return this.#last;
  };

  clearTimeout = (id) => this.#pending.delete(id);

  get delays() {
    return [...this.#pending.values()].map(({ delayMs }) => delayMs);
  }

  /** Fires everything that waits, and lets the promises settle that follow from it. */
  async fire() {
    const due = [...this.#pending.values()];
    this.#pending.clear();
    due.forEach(({ fn }) => fn());
    await settled();
  }
}

/** All promise reactions that can run have run. */
export function settled() {
  return new Promise((resolve) => setImmediate(resolve));
}
