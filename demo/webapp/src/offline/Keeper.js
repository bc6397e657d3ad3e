import { JournalWriter } from './JournalWriter.js';

const journalMs = 200;
const copyMs = 2000;
const retryMs = 2000;
/** Writing takes at most one part in so many of the page's time, however large the document is. */
const restShare = 8;

/**
 * Keeps one open document on this computer: what is unsaved in a journal, what was saved as the copy that the next
 * opening shows.
 */
export class Keeper {
  #session;
  #files;
  #writer;
  #onChange;
  #timers;
  #clock;
  #version;
  #recording = null;
  #copying = null;
  #writes = 0;
  #lastWrite = null;
  #journalMs = journalMs;
  #unkept = false;
  #closed = false;

  /** Why the last change could not be kept; null when it could. */
  error = null;

  /** Once closed: resolves when the last write ended. */
  ended = null;

  /**
   * @param {object} options
   * @param {{fileName: string, version: number | null, hasUnsavedChanges: boolean, content(): object}} options.session
   * @param {import('./PackageFiles.js').PackageFiles} options.files
   * @param {number} options.generation of the newest journal there is; 0 when there is none
   * @param {() => void} options.onChange whether everything is kept may have changed
   */
  constructor({ session, files, generation, onChange, timers = globalThis, clock = () => performance.now() }) {
    const { fileName, version } = session;
    this.#session = session;
    this.#files = files;
    this.#version = version;
    this.#writer = new JournalWriter({ files, generation, base: version, fileName });
    this.#onChange = onChange;
    this.#timers = timers;
    this.#clock = clock;
  }

  /** Whether everything that is unsaved is on the disk. */
  get isKept() {
    return !this.#unkept && this.#writes === 0 && this.error === null;
  }

  /** @param {{isCopyCurrent: boolean}} known whether the copy on the disk is the document as it was opened */
  start({ isCopyCurrent }) {
    if (this.#session.hasUnsavedChanges) this.changed();
    else if (this.#version !== null && !isCopyCurrent) this.#copyLater();
  }

  changed() {
    const wasKept = this.isKept;
    this.#unkept = true;
    if (wasKept) this.#onChange();
    if (this.#closed || this.#recording !== null) return;
    this.#recording = this.#timers.setTimeout(() => this.record(), this.error === null ? this.#journalMs : retryMs);
  }

  /** Writes down now what was not yet. Resolves when that is done, or failed. */
  async record() {
    this.#unschedule();
    if (!this.#unkept) return;
    this.#unkept = false;
    const begin = this.#clock();
    const written = this.#write(() => this.#writer.record(this.#session.content()));
    this.#journalMs = Math.max(journalMs, (this.#clock() - begin) * restShare);
    await written;
  }

  /** Writes down what was not yet. Resolves when nothing is being written any more. */
  async settle() {
    await this.record();
    while (this.#writes > 0) await this.#lastWrite;
  }

  sending(content) {
    this.#write(() => this.#writer.sending(content));
  }

  saved(version) {
    this.#version = version;
    this.#write(() => this.#writer.saved(version));
    if (!this.#session.hasUnsavedChanges) this.#unkept = false;
    this.#copyLater();
  }

  /** The server confirmed the version that the content rests on. */
  rebased(version, { unsent }) {
    if (!unsent && !this.#session.hasUnsavedChanges) {
      this.saved(version);
      return;
    }
    this.#version = version;
    this.#write(() => this.#writer.rebased(version));
  }

  /** What is unsaved was brought into safety elsewhere, or is not wanted: it is not kept any longer. */
  forget() {
    this.#unschedule();
    this.#unkept = false;
    return this.#write(() => this.#writer.clear());
  }

  /** Writes down what was not yet, and ends. */
  close() {
    this.#closed = true;
    this.#timers.clearTimeout(this.#copying);
    this.ended = this.record();
  }

  #unschedule() {
    if (this.#recording !== null) this.#timers.clearTimeout(this.#recording);
    this.#recording = null;
  }

  #write(step) {
    this.#lastWrite = this.#writeNow(step);
    return this.#lastWrite;
  }

  async #writeNow(step) {
    ++this.#writes;
    let error = null;
    try {
      await step();
    } catch (failure) {
      error = failure.message;
    }
    --this.#writes;
    this.error = error;
    if (error !== null && this.#session.hasUnsavedChanges) this.changed();
    this.#onChange();
  }

  #copyLater() {
    this.#timers.clearTimeout(this.#copying);
    if (!this.#closed) this.#copying = this.#timers.setTimeout(() => this.#copy(), copyMs);
  }

  /** The journal goes when the copy stands, unless something was typed in between. */
  async #copy() {
    if (this.#session.hasUnsavedChanges) return; // the next save comes here again
    const content = this.#session.content();
    await this.#write(async () => {
      await this.#files.writeCopy(content, this.#version);
      if (!this.#session.hasUnsavedChanges && !this.#unkept) await this.#writer.clear();
    });
  }
}
