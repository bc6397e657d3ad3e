/**
 * The desktop side's script object (`window.helio`), which is absent in a plain browser and may appear shortly after
 * the page's scripts start. Every call is safe without it.
 */
const pollMs = 50;
const pollLimit = 60;

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
}
