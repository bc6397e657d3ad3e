import { parseLocation } from './location.js';

/**
 * Waits, in a page that was loaded without a document, for the desktop side to say which one it is to open. The page's
 * address names the document by then; a page that has one already keeps it, and its address.
 */
export class TakeOver {
  #window;
  #open;
  #address;

  /**
   * @param {Window} owner
   * @param {() => void} open opens what the page's address names
   */
  constructor(owner, open) {
    this.#window = owner;
    this.#open = open;
    this.#address = owner.location.href;
    owner.addEventListener('ON_APP_OPENFILE_READY', ({ detail }) => this.#take(detail && detail.url));
  }

  get isFree() {
    return parseLocation(new URL(this.#address)).kind === 'none';
  }

  #take(url) {
    const wanted = this.#ownAddress(url);
    if (wanted !== null && this.isFree) {
      this.#address = wanted;
      this.#show(wanted);
      this.#open();
    } else {
      this.#show(this.#address);
    }
  }

  #show(address) {
    if (this.#window.location.href !== address) this.#window.history.replaceState(null, '', address);
  }

  /** @returns {string | null} null when the URL names no document of this site */
  #ownAddress(url) {
    if (typeof url !== 'string' || url === '') return null;
    const { location } = this.#window;
    try {
      const wanted = new URL(url, location.href);
      return wanted.origin === location.origin && parseLocation(wanted).kind !== 'none' ? wanted.href : null;
    } catch {
      return null;
    }
  }
}
