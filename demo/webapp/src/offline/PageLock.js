/** A name that one page of the browser has at a time; the next one gets it when that page ends. */
export class PageLock {
  #ended;
  #wait = new AbortController();

  /** @param {LockManager | undefined} locks without one, every page has every name */
  constructor(locks, name) {
    const end = new Promise((resolve) => { this.#ended = resolve; });
    const request = (options) => new Promise((resolve) => {
      const got = (lock) => {
        resolve(lock !== null);
        return lock === null ? undefined : end;
      };
      locks.request(name, options, got).catch(() => resolve(false));
    });
    /** Resolves to whether nobody else had it. */
    this.atOnce = locks ? request({ ifAvailable: true }) : Promise.resolve(true);
    /** Resolves as soon as this page has it; to false when it was given up before. */
    this.held = this.atOnce.then((isOwn) => isOwn || request({ signal: this.#wait.signal }));
  }

  release() {
    this.#wait.abort();
    this.#ended();
  }
}
