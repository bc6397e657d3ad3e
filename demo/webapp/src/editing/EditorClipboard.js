import { fillEvent, fromEvent, fromNative, isEmpty, largestImage, nativeArguments } from './clipboardData.js';

function urlOf(blob) {
  return new Promise((resolve, reject) => {
    const reader = new FileReader();
    reader.onload = () => resolve(reader.result);
    reader.onerror = () => reject(reader.error);
    reader.readAsDataURL(blob);
  });
}

/** What the browser's clipboard holds, read because a button asked for it; the browser may refuse. */
async function readBrowserClipboard() {
  const content = { text: '', html: '', fragment: null, image: null };
  for (const item of await navigator.clipboard.read()) {
    const blob = async (type) => (item.types.includes(type) ? item.getType(type) : null);
    const [plain, html, image] = await Promise.all(['text/plain', 'text/html', 'image/png'].map(blob));
    if (plain) content.text = await plain.text();
    if (html) content.html = await html.text();
    if (image) content.image = await urlOf(image);
  }
  return content;
}

/**
 * Copy, cut and paste of an editor: by the desktop side where there is one, so that other programs of the suite get all
 * kinds of data; else by the browser. Takes over the browser's own events on the editor.
 */
export class EditorClipboard {
  #native;
  #host;
  #tools;
  #notify;
  #wantsPlain = false;
  #listeners = {
    copy: (event) => this.#onCopy(event, false),
    cut: (event) => this.#onCopy(event, true),
    paste: (event) => this.#onPaste(event),
    keydown: ({ key, ctrlKey, metaKey, shiftKey }) => {
      this.#wantsPlain = key.toLowerCase() === 'v' && (ctrlKey || metaKey) && shiftKey;
    },
  };

  /**
   * @param {object} parts
   * @param {import('../document/NativeSide.js').NativeSide} parts.native
   * @param {HTMLElement} parts.host
   * @param {object} parts.tools see `ui/DesktopLink.js`
   * @param {(text: string) => void} parts.notify
   */
  constructor({ native, host, tools, notify }) {
    this.#native = native;
    this.#host = host;
    this.#tools = tools;
    this.#notify = notify;
    for (const [name, listener] of Object.entries(this.#listeners)) host.addEventListener(name, listener, { capture: true });
  }

  end() {
    for (const [name, listener] of Object.entries(this.#listeners)) this.#host.removeEventListener(name, listener, { capture: true });
  }

  async copy() {
    this.#tools.focus();
    if (this.#native.present) await this.#toNative();
    else document.execCommand('copy');
  }

  async cut() {
    this.#tools.focus();
    if (!this.#native.present) document.execCommand('cut');
    else if (await this.#toNative()) this.#tools.remove();
  }

  /** @param {{plain?: boolean}} [options] */
  async paste({ plain = false } = {}) {
    this.#tools.focus();
    try {
      await this.#put(this.#native.present ? await this.#readNative() : await readBrowserClipboard(), plain);
    } catch (error) {
      const keys = plain ? 'Ctrl+Shift+V' : 'Ctrl+V';
      this.#notify(`The clipboard could not be read (${error.message}). ${keys} may work.`);
    }
  }

  #isOurs({ target }) {
    return target instanceof Element && this.#tools.handles(target);
  }

  #take(event) {
    event.preventDefault();
    event.stopImmediatePropagation();
  }

  #onCopy(event, isCut) {
    if (!this.#isOurs(event)) return;
    if (this.#native.present) {
      this.#take(event);
      (isCut ? this.cut() : this.copy());
      return;
    }
    const content = this.#tools.copy();
    if (!content) return;
    this.#take(event);
    fillEvent(event.clipboardData, content);
    if (isCut) this.#tools.remove();
  }

  async #onPaste(event) {
    if (!this.#isOurs(event)) return;
    const plain = this.#wantsPlain;
    const content = fromEvent(event.clipboardData);
    const picture = [...event.clipboardData.files].find(({ type }) => type.startsWith('image/'));
    this.#take(event);
    try {
      const image = picture && !plain ? await urlOf(picture) : null;
      await this.#put(this.#native.present ? await this.#readNative() : { ...content, image }, plain);
    } catch {
      // What the browser offered is better than nothing.
      await this.#put(content, plain);
    }
  }

  /** @returns {Promise<boolean>} whether the selection is on the clipboard now */
  async #toNative() {
    const content = this.#tools.copy();
    if (!content) return false;
    try {
      const image = content.image && !content.image.startsWith('data:') ? await urlOf(await (await fetch(content.image)).blob()) : content.image;
      await this.#native.call('setClipboardData', nativeArguments({ ...content, image }));
      return true;
    } catch (error) {
      this.#notify(`Nothing was copied: ${error.message}.`);
      return false;
    }
  }

  async #readNative() {
    return fromNative((await this.#native.call('getClipboardData')).result);
  }

  async #put(content, plain) {
    if (isEmpty(content)) return;
    if (content.image && content.image.length > largestImage) {
      this.#notify('The picture is too large to stand in a document.');
      return;
    }
    if (!(await this.#tools.paste(content, { plain }))) this.#notify('What is on the clipboard cannot stand here.');
  }
}
