/**
 * How far the opening of a document is, for measurements and tests: performance marks, and `window.__DOCS_STATE__`.
 */
export class OpenProgress {
  #window;

  constructor(owner) {
    this.#window = owner;
  }

  get state() {
    return this.#window.__DOCS_STATE__;
  }

  begin({ fileId, officeType }) {
    this.#window.performance.clearMarks('docs-text-visible');
    this.#window.performance.clearMarks('docs-editable');
    this.#window.__DOCS_STATE__ = {
      fileId,
      officeType,
      visible: false,
      editable: false,
      source: { preopen: null, envConfig: null },
      saved: true,
      error: null,
    };
  }

  set(members) {
    Object.assign(this.state, members);
  }

  setSource(reply, source) {
    this.state.source[reply] = source;
  }

  /** The document's text is in the page: marks the time at which it was painted. */
  textShown() {
    const state = this.state;
    const paint = (fn) => this.#window.requestAnimationFrame(fn);
    paint(() => paint(() => {
      if (this.state !== state || state.visible) return;
      state.visible = true;
      this.#window.performance.mark('docs-text-visible');
    }));
  }

  editable() {
    this.set({ editable: true });
    this.#window.performance.mark('docs-editable');
  }
}
