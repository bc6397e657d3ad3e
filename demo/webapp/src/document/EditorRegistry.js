/**
 * Where an editor script says that it is there. The page's first script comes up (and asks for the document) before
 * the much larger editor script is read.
 *
 * An editor is `mount(host, content, {onChange, fileName})`, which throws when it cannot read the content and else
 * returns {content(): object, commit(), focus(), destroy(), ready}; commit takes over input that is still being made,
 * ready is a promise for editors that do not take input at once.
 */
export class EditorRegistry {
  #mounts = new Map();
  #waiting = new Map();
  #missing = null;

  register(typeCode, mount) {
    this.#mounts.set(typeCode, mount);
    const waiting = this.#waiting.get(typeCode);
    if (waiting) waiting.forEach(({ resolve }) => resolve(mount));
    this.#waiting.delete(typeCode);
  }

  has(typeCode) {
    return this.#mounts.has(typeCode);
  }

  /** @returns {Promise<Function>} the editor's mount function; rejects when its script is missing */
  editor(typeCode) {
    if (this.#mounts.has(typeCode)) return Promise.resolve(this.#mounts.get(typeCode));
    if (this.#missing) return Promise.reject(this.#missing);
    return new Promise((resolve, reject) => {
      this.#waiting.set(typeCode, [...(this.#waiting.get(typeCode) || []), { resolve, reject }]);
    });
  }

  /** No further script will come: whoever still waits is told. */
  allScriptsRead() {
    this.#missing = new Error('The editor script is missing or could not be run');
    this.#waiting.forEach((waiting) => waiting.forEach(({ reject }) => reject(this.#missing)));
    this.#waiting.clear();
  }
}
