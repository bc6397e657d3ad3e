import { tellFailure } from './files.js';
import { loadPart } from './parts.js';

const idleLimitMs = 3000;

/**
 * An editor's link to the part "desktop": clipboard, printing, sending, the assistant and the user's corner. The part is
 * read when the document stands and nothing else is to do, or with the first command.
 *
 * The editor gives its `tools`: {kind, handles(target), focus(), refresh(), selectedText(), copy(), remove(),
 * paste(content, {plain}), printBody()}; the content is that of `editing/clipboardData.js`.
 */
export class DesktopLink {
  #host;
  #tools;
  #fileName;
  #link = null;
  #ended = false;

  constructor({ host, tools, fileName }) {
    this.#host = host;
    this.#tools = tools;
    this.#fileName = fileName;
    this.#whenIdle();
  }

  /** Whether the desktop side sends files. Known only after a while; the editor's `refresh` is called then. */
  get canSend() {
    return this.#link !== null && this.#link.canSend;
  }

  /** @param {'copy' | 'cut' | 'paste' | 'pastePlain' | 'print' | 'sendFile'} command */
  async run(command) {
    try {
      await (await this.#linked())[command]();
    } catch (error) {
      tellFailure(`This did not work: ${error.message}.`);
    }
  }

  end() {
    this.#ended = true;
    if (this.#link) this.#link.end();
  }

  #whenIdle() {
    window.requestIdleCallback(() => {
      if (this.#ended) return;
      const isEarly = document.readyState !== 'complete' || this.#host.classList.contains('arriving');
      if (isEarly) setTimeout(() => this.#whenIdle(), 200);
      // Nobody asked for it yet: a part that is missing is told with the first command.
      else this.#linked().catch(() => {});
    }, { timeout: idleLimitMs });
  }

  async #linked() {
    const { linkEditor } = await loadPart('desktop');
    if (this.#link === null && !this.#ended) {
      this.#link = linkEditor({ host: this.#host, tools: this.#tools, fileName: this.#fileName });
    }
    if (this.#link === null) throw new Error('the document is closed');
    return this.#link;
  }
}
