import { SaveQueue, saveOutcome } from './SaveQueue.js';

/** Contents up to this many characters are still sent while the page goes away. */
const sentOnLeaving = 20000;

/** One open document under edit: its editor and its saves. A local copy has no version until the server answered. */
export class EditingSession {
  #editor;
  #queue;

  /**
   * @param {object} options
   * @param {{fileId: string, fileName: string, version: number | null, content: object}} options.opened
   * @param {Function} options.mount see EditorRegistry
   * @param {Element} options.host
   * @param {import('./DocumentsApi.js').DocumentsApi} options.api
   * @param {(state: import('./SaveQueue.js').SaveState) => void} options.onSaveState
   */
  constructor({ opened, mount, host, api, onSaveState }) {
    this.fileName = opened.fileName;
    const changed = () => this.#queue.changed();
    this.#editor = mount(host, opened.content, { onChange: changed, fileName: opened.fileName });
    this.#queue = new SaveQueue({
      send: async (version, content) => {
        const keepalive = JSON.stringify(content).length <= sentOnLeaving;
        return saveOutcome(await api.save(opened.fileId, version, content, { keepalive }));
      },
      takeContent: () => this.#editor.content(),
      version: opened.version,
      onState: onSaveState,
    });
    /** Resolves when the editor takes input; undefined when it does at once. */
    this.ready = this.#editor.ready;
    onSaveState(this.#queue.state);
  }

  /** The server confirmed the copy; `unsent`: it holds changes that the server lacks. */
  rebase(version, { unsent = false } = {}) {
    this.#queue.rebase(version);
    if (unsent) this.#queue.changed();
  }

  /** The server holds something else than the copy was made of. */
  refuse(version) {
    this.#queue.refuse(version);
  }

  get hasUnsavedChanges() {
    return this.#queue.hasUnsavedChanges;
  }

  focus() {
    this.#editor.focus();
  }

  save() {
    this.#editor.commit();
    return this.#queue.flush();
  }

  overwrite() {
    return this.#queue.overwrite();
  }

  /** Starts to save, and says whether the page's end would cut that short. */
  leavingLosesChanges() {
    this.#editor.commit();
    if (!this.hasUnsavedChanges) return false;
    const stuck = ['failed', 'conflict', 'held'].includes(this.#queue.state.kind);
    this.#queue.flush();
    return stuck || JSON.stringify(this.#editor.content()).length > sentOnLeaving;
  }

  /** Takes the editor off the page; what is unsaved then is given up. */
  discard() {
    this.#queue.close();
    this.#editor.destroy();
  }
}
