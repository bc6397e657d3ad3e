/**
 * The desktop side's script object (`window.helio`), which is absent in a plain browser and may appear shortly after
 * the page's scripts start. Every call is safe without it.
 */
const pollMs = 50;
const pollLimit = 60;
const documentName = Array.from(crypto.getRandomValues(new Uint32Array(2)), (word) => word.toString(36)).join('');
let lastCallback = 0;

function parsed(data) {
  if (typeof data !== 'string') return data;
  try {
    return JSON.parse(data);
  } catch {
    return null;
  }
}

export class NativeSide {
  #window;

  constructor(owner) {
    this.#window = owner;
  }

  get #helio() {
    const helio = this.#window.helio;
    return helio && typeof helio.call === 'function' ? helio : null;
  }

  get present() {
    return this.#helio !== null;
  }

  /** Resolves to whether the object is there, at the latest after three seconds. */
  async whenPresent(timers = globalThis) {
    for (let round = 0; round < pollLimit && !this.present; ++round) {
      await new Promise((resolve) => timers.setTimeout(resolve, pollMs));
    }
    return this.present;
  }

  /** @returns {Promise<object>} the reply; rejects without the desktop side, and when it does not know the method */
  async call(name, args = {}) {
    const helio = this.#helio;
    if (!helio) throw new Error('the desktop side is not there');
    const reply = await helio.call(name, args);
    return reply && typeof reply === 'object' ? reply : {};
  }

  /**
   * A call of a method that answers only now and then, or never: nobody waits for it.
   * @param {{onReply?: (reply: object) => void, onFailure?: (message: string) => void}} [listeners]
   */
  tell(name, args = {}, { onReply = () => {}, onFailure = () => {} } = {}) {
    this.call(name, args).then(onReply, (error) => onFailure(error.message));
  }

  /**
   * Makes a function of the window that the desktop side can call by its name, which no other document has.
   * @param {(data: any) => void} listener gets the parsed JSON text; null when it was none
   * @returns {{name: string, release: () => void}}
   */
  callback(listener) {
    const name = `skyleafCallback_${documentName}_${++lastCallback}`;
    this.#window[name] = (data) => listener(parsed(data));
    return { name, release: () => delete this.#window[name] };
  }

  /** Calls `listener` with the data of each page event of that name, as long as the page lives. */
  onEvent(name, listener) {
    const helio = this.#helio;
    if (helio && typeof helio.on === 'function') helio.on(name, (data) => listener(parsed(data)));
  }

  /** @returns {Promise<string | null>} the version of the script interface; null without one */
  async apiVersion() {
    if (!this.present) return null;
    try {
      const reply = await this.#helio.call('clouddocsApiVersion', {});
      return reply && typeof reply.version === 'string' ? reply.version : null;
    } catch {
      return null;
    }
  }

  /** Tells the desktop side that the document is open and can be edited. @returns {boolean} whether it was told */
  reportReady({ fileId, fileName, fileType }) {
    const helio = this.#helio;
    if (!helio || typeof helio.emitHost !== 'function') return false;
    helio.emitHost('webFileReady', { fileId: String(fileId), fileName: String(fileName), fileType: String(fileType) });
    return true;
  }

  /** Tells the desktop side whether the page's end would lose something. @returns {boolean} whether it was told */
  reportUnsaved(unsaved) {
    const helio = this.#helio;
    if (!helio || typeof helio.emitHost !== 'function') return false;
    helio.emitHost('unsavedChanges', { unsaved });
    return true;
  }
}
