import { fileVersion } from './fileVersion.js';

const key = 'docs-saved-versions';
const mostFiles = 50;

/**
 * The versions up to which this browser has saved its documents. A reply that was fetched ahead of time may be older
 * than the last save, after a reload for instance: it would bring back what the user has changed.
 */
export class SavedVersions {
  #storage;

  /** @param {() => Storage} storage may throw, as where the browser keeps nothing */
  constructor(storage) {
    this.#storage = storage;
  }

  /** @returns {number} 0 when nothing is known */
  of(fileId) {
    const found = this.#read().find(([id]) => id === fileId);
    return (found && fileVersion(found[1])) || 0;
  }

  saved(fileId, version) {
    const others = this.#read().filter(([id]) => id !== fileId).slice(0, mostFiles - 1);
    try {
      this.#storage().setItem(key, JSON.stringify([[fileId, version], ...others]));
    } catch {
      // Without it, a reload may show an older reply for as long as the desktop side holds it.
    }
  }

  #read() {
    try {
      const value = JSON.parse(this.#storage().getItem(key));
      return Array.isArray(value) ? value.filter(Array.isArray) : [];
    } catch {
      return [];
    }
  }
}
