import { SaveQueue, saveOutcome } from './SaveQueue.js';

/** Contents up to this many characters are still sent while the page goes away. */
const sentOnLeaving = 20000;

/** One open document under edit: its editor and its saves. A local copy has no version until the server answered. */
export class EditingSession {
  #editor;
  #queue;

  /** Who keeps the changes on this computer (`offline/Keeper.js`); null where nobody does. */
  keeper = null;
  /** Whether the changes were, at least in part, made while the server was away. */
  isServerAway = false;
  isDiscarded = false;
  /** The content that was sent last. */
  lastSent = null;

  /**
   * @param {object} options
   * @param {{fileId: string, fileName: string, version: number | null, content: object}} options.opened
   * @param {Function} options.mount see EditorRegistry
   * @param {Element} options.host
   * @param {import('./DocumentsApi.js').DocumentsApi} options.api
   * @param {(state: import('./SaveQueue.js').SaveState) => void} options.onSaveState
   * @param {() => void} [options.onChange] the content changed
   */
  constructor({ opened, mount, host, api, onSaveState, onChange = () => {} }) {
    this.fileId = opened.fileId;
    this.fileName = opened.fileName;
    this.version = opened.version === null && opened.base !== undefined ? opened.base : opened.version;
    const changed = () => {
      if (this.keeper) this.keeper.changed();
      this.#queue.changed();
      onChange();
    };
    this.#editor = mount(host, opened.content, { onChange: changed, fileName: opened.fileName });
    this.#queue = new SaveQueue({
      send: async (version, content) => {
        const keepalive = JSON.stringify(content).length <= sentOnLeaving;
        if (this.keeper) this.keeper.sending(content);
        const outcome = saveOutcome(await api.save(opened.fileId, version, content, { keepalive }));
        this.#sent(content, outcome);
        return outcome;
      },
      takeContent: () => this.#editor.content(),
      version: opened.version,
      onState: onSaveState,
    });
    /** Resolves when the editor takes input; undefined when it does at once. */
    this.ready = this.#editor.ready;
    onSaveState(this.#queue.state);
  }

  #sent(content, outcome) {
    this.lastSent = content;
    const isAway = outcome.reason === 'unreachable';
    if (isAway || outcome.ok) this.isServerAway = isAway;
    if (!outcome.ok) return;
    this.version = outcome.version;
    if (this.keeper) this.keeper.saved(outcome.version);
  }

  get state() {
    return this.#queue.state;
  }

  content() {
    return this.#editor.content();
  }

  /** The server confirmed the copy; `unsent`: it holds changes that the server lacks. */
  rebase(version, { unsent = false } = {}) {
    this.version = version;
    this.#queue.rebase(version);
    if (unsent) this.#queue.changed();
    if (this.keeper) this.keeper.rebased(version, { unsent });
  }

  /** What is unsaved is in safety elsewhere. */
  forget() {
    this.#queue.forget();
  }

  /** Whether leaving the page loses nothing, since what is unsaved is on this computer's disk. */
  get isKept() {
    return this.keeper !== null && this.keeper.isKept;
  }

  /** Brings what is unsaved to this computer's disk, where that is done. @returns {Promise<boolean>} whether it is there */
  async keep() {
    if (this.keeper) await this.keeper.settle();
    return this.isKept;
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

  /** Whether the page's end would lose something now. */
  get holdsUnsaved() {
    return this.hasUnsavedChanges && !this.isKept;
  }

  /** Saves and keeps what can be. @returns {Promise<boolean>} whether the page's end then loses nothing */
  async prepareToLeave() {
    const kept = this.keep(); // at the same time: either may hang
    await this.save();
    await kept;
    await this.keep();
    return !this.holdsUnsaved;
  }

  /** Starts to save, and says whether the page's end would cut that short. */
  leavingLosesChanges() {
    this.#editor.commit();
    if (!this.holdsUnsaved) return false;
    this.keep();
    const stuck = ['failed', 'conflict', 'held'].includes(this.#queue.state.kind);
    this.#queue.flush();
    return stuck || JSON.stringify(this.#editor.content()).length > sentOnLeaving;
  }

  /** Takes the editor off the page; what is unsaved then is given up. */
  discard() {
    this.isDiscarded = true;
    if (this.keeper) this.keeper.close();
    this.#queue.close();
    this.#editor.destroy();
  }
}
