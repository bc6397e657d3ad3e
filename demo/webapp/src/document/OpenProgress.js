/**
 * How far the opening of a document is, for measurements and tests: performance marks, and `window.__DOCS_STATE__`.
 * Times in it are milliseconds of the wall clock, so that other processes can compare them with theirs.
 */
export class OpenProgress {
  #window;

  constructor(owner) {
    this.#window = owner;
  }

  get state() {
    return this.#window.__DOCS_STATE__;
  }

  begin({ fileId, officeType, frontVersion = null }) {
    this.#window.performance.clearMarks('docs-text-visible');
    this.#window.performance.clearMarks('docs-editable');
    this.#window.__DOCS_STATE__ = {
      fileId,
      officeType,
      frontVersion,
      visible: false,
      editable: false,
      // Where the text that was painted first, and the editor's content, came from: "injected", "prefetched", "network"
      // or "kept" (on this computer).
      visibleFrom: null,
      contentFrom: null,
      times: { visible: null, editable: null },
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

  step(name) {
    this.#window.performance.mark(`docs-${name}`);
  }

  /** The document's text is in the page: marks the time at which it was painted. */
  textShown(from) {
    const state = this.state;
    const paint = (fn) => this.#window.requestAnimationFrame(fn);
    paint(() => paint(() => {
      if (this.state !== state || state.visible) return;
      Object.assign(state, { visible: true, visibleFrom: from });
      state.times.visible = this.#mark('docs-text-visible');
    }));
  }

  /** The editor takes input. Only the first call counts for the time. */
  editable(from) {
    const { state } = this;
    state.contentFrom = from;
    if (state.editable) return;
    state.editable = true;
    state.times.editable = this.#mark('docs-editable');
  }

  #mark(name) {
    const { performance } = this.#window;
    performance.mark(name);
    return performance.timeOrigin + performance.now();
  }
}
