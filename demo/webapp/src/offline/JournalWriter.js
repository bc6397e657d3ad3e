import { baseLine, editLine, savedLine, sentLine, startLine } from './journal.js';

/** A journal is begun anew when its edits are longer than its first line, and longer than this many characters. */
const shortJournal = 100000;

/**
 * Keeps the journal of one document on the disk: one write at a time, in the order of the calls. After a write that
 * failed the journal's end is uncertain, so the next one begins a new journal beside it.
 */
export class JournalWriter {
  #files;
  #fileName;
  #generation;
  #base;
  #text = null;
  #isOpen = false;
  #startLength = 0;
  #length = 0;
  #sentIn = 0;
  #endsSent = false;
  #exists;
  #queue = Promise.resolve();

  /**
   * @param {object} options
   * @param {import('./PackageFiles.js').PackageFiles} options.files
   * @param {number} options.generation of the newest journal there is; 0 when there is none
   * @param {number | null} options.base the version that the content rests on
   */
  constructor({ files, generation, base, fileName }) {
    this.#files = files;
    this.#generation = generation;
    this.#exists = generation > 0;
    this.#base = base;
    this.#fileName = fileName;
  }

  /** The content as it is now. Resolves when it is on the disk; rejects when it could not be written. */
  record(content) {
    return this.#bringInTurn(content, '');
  }

  /** The content is being sent. */
  sending(content) {
    return this.#bringInTurn(content, sentLine());
  }

  /** What was sent last was saved. */
  saved(version) {
    this.#base = version;
    return this.#then(() => {
      if (!this.#isOpen) return undefined;
      const isSentHere = this.#sentIn === this.#generation;
      this.#sentIn = 0;
      return this.#append(isSentHere ? savedLine(version) : baseLine(version));
    });
  }

  /** The content rests on this version; none of it was confirmed. */
  rebased(version) {
    this.#base = version;
    return this.#then(() => (this.#isOpen ? this.#append(baseLine(version)) : undefined));
  }

  /** Nothing is unsaved any more. */
  clear() {
    return this.#then(async () => {
      if (!this.#exists) return;
      this.#isOpen = false;
      await this.#files.removeJournal((this.#generation + 1) % 2); // the older one first, should it still be there
      await this.#files.removeJournal(this.#generation % 2);
      this.#exists = false;
    });
  }

  #then(step) {
    const result = this.#queue.then(step);
    this.#queue = result.catch(() => {});
    return result;
  }

  #bringInTurn(content, ending) {
    const text = JSON.stringify(content);
    return this.#then(() => this.#bring(content, text, ending));
  }

  async #bring(content, text, ending) {
    const isLong = this.#length > Math.max(shortJournal, this.#startLength);
    if (!this.#isOpen || isLong) {
      await this.#start(content, text, ending);
    } else {
      const edit = text === this.#text ? '' : editLine(this.#text, text);
      this.#text = text;
      const isKnown = edit === '' && (ending === '' || this.#endsSent);
      if (!isKnown) await this.#append(edit + ending);
    }
    if (ending !== '') this.#sentIn = this.#generation;
  }

  async #start(content, text, ending) {
    const generation = this.#generation + 1;
    const start = startLine({ generation, base: this.#base, fileName: this.#fileName, content });
    const hadOlder = this.#exists;
    this.#exists = true;
    this.#isOpen = false;
    await this.#files.writeJournal(generation % 2, start + ending, { append: false });
    this.#generation = generation;
    this.#text = text;
    this.#startLength = start.length;
    this.#length = 0;
    this.#endsSent = ending !== '';
    this.#isOpen = true;
    if (hadOlder) await this.#files.removeJournal((generation + 1) % 2);
  }

  async #append(lines) {
    try {
      await this.#files.writeJournal(this.#generation % 2, lines, { append: true });
      this.#length += lines.length;
      this.#endsSent = lines.endsWith(sentLine());
    } catch (error) {
      this.#isOpen = false;
      throw error;
    }
  }
}
