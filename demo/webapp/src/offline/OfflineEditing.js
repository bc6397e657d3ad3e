import { sameJson } from '../document/sameJson.js';
import { loadPart } from '../ui/parts.js';
import { readLocalCopy } from './localCopy.js';
import { PackageFiles, readRecord } from './PackageFiles.js';
import { PageLock } from './PageLock.js';
import { StorageBridge } from './StorageBridge.js';

const nothingKept = { copy: null, generation: 0 };

/**
 * Editing without the server, where the desktop side offers it: what is unsaved is kept on this computer. One page at
 * a time does that for a document.
 */
export class OfflineEditing {
  #window;
  #api;
  #typeCode;
  #storage;
  #onChange;
  #onLateCopy;
  #asked = null;
  #keeper = null;

  /**
   * @param {object} options
   * @param {(session: object) => void} options.onChange what `saveText` says may have changed
   * @param {(session: object) => void} options.onLateCopy unsent changes were found after the document was opened
   *   without them: it is to be opened again
   */
  constructor({ owner, native, api, typeCode, onChange, onLateCopy }) {
    this.#window = owner;
    this.#api = api;
    this.#typeCode = typeCode;
    this.#storage = new StorageBridge(native);
    this.#onChange = onChange;
    this.#onLateCopy = onLateCopy;
  }

  /**
   * Begins to read what is kept of a document that is being opened.
   * @returns {Promise<object> | null} see `readLocalCopy`; null at once when there is nothing to wait for
   */
  ask({ fileId, injected }) {
    const isSame = this.#asked !== null && this.#asked.fileId === fileId;
    if (!isSame) {
      this.#release();
      this.#asked = { fileId, lock: null, files: null, kept: null, foundLate: false };
      this.#keeper = null;
    }
    if (!isSame && injected.offlineEditing && this.#storage.present) this.#read(this.#asked);
    else if (isSame && this.#asked.files) this.#readAgain(this.#asked);
    return this.#asked.kept;
  }

  #release() {
    if (this.#asked && this.#asked.lock) this.#asked.lock.release();
    this.#asked = null;
  }

  /** A document that another page keeps is opened without waiting for that. */
  #read(asked) {
    asked.lock = new PageLock(this.#window.navigator.locks, `offline-${asked.fileId}`);
    asked.kept = asked.lock.atOnce.then((isOwn) => (isOwn ? this.#readNow(asked) : nothingKept));
  }

  async #readNow(asked) {
    if (asked.files === null) {
      const injected = readRecord(this.#injected._LOCAL_INJECT_DATA_FILEINFO, asked.fileId);
      const record = injected || readRecord(await this.#storage.select(asked.fileId).catch(() => null), asked.fileId);
      if (record === null) return nothingKept;
      asked.files = new PackageFiles(this.#storage, record, this.#typeCode);
    }
    return readLocalCopy(asked.files);
  }

  /** After the session before has written its last. */
  #readAgain(asked) {
    const last = this.#keeper ? this.#keeper.ended : null;
    asked.kept = Promise.resolve(last).then(() => this.#readNow(asked));
  }

  get #injected() {
    const inject = this.#window.__INJECT__;
    return typeof inject === 'object' && inject !== null ? inject : {};
  }

  /** Keeps a session's changes from now on. Called when the document can be edited; never rejects. */
  async follow(session, { opened }) {
    const asked = this.#asked;
    try {
      await this.#begin(session, asked, opened);
    } catch {
      // Without it, the page works as one without a desktop side: its save state says what is not saved.
    }
  }

  async #begin(session, asked, opened) {
    if (asked === null || asked.kept === null) {
      const isAnswered = typeof this.#injected._LOCAL_INJECT_DATA_OFFLINESWITCH === 'boolean';
      if (asked === null || isAnswered || !this.#storage.present || !(await this.#storage.isOffered())) return;
      this.#read(asked);
    }
    if (!(await asked.lock.held)) return;
    if (this.#keeper || !(await asked.lock.atOnce)) this.#readAgain(asked);
    const [{ Keeper }, kept] = await Promise.all([loadPart('offline'), asked.kept]);
    if (!asked.files) {
      const record = readRecord(await this.#storage.create(asked.fileId), asked.fileId);
      if (record === null) return;
      asked.files = new PackageFiles(this.#storage, record, this.#typeCode);
      await asked.files.noteName(session.fileName);
    }
    if (session.isDiscarded || this.#asked !== asked) return;
    const { copy, generation } = kept;
    if (copy && copy.unsent && !opened.unsent) {
      if (session.hasUnsavedChanges || asked.foundLate) return; // what is kept stays; it is shown by the next page
      asked.foundLate = true;
      asked.kept = Promise.resolve(kept);
      this.#onLateCopy(session);
      return;
    }
    const onChange = () => this.#onChange(session);
    const keeper = new Keeper({ session, files: asked.files, generation, onChange });
    session.keeper = keeper;
    this.#keeper = keeper;
    const isCopyCurrent = copy !== null && copy.version === session.version && sameJson(copy.content, session.content());
    keeper.start({ isCopyCurrent });
    onChange();
  }

  /**
   * Puts what a session holds into a document of its own, since the server's has moved on; the session is then free
   * to be replaced. @returns {Promise<{id: string, name: string}>} rejects when the server did not take it
   */
  async keepBoth(session) {
    const { keepAsDocument } = await loadPart('offline');
    const copy = await keepAsDocument({
      api: this.#api,
      typeCode: this.#typeCode,
      fileName: session.fileName,
      content: () => session.content(),
      made: session.madeCopy,
      onMade: (made) => { session.madeCopy = made; },
    });
    session.forget();
    if (session.keeper) await session.keeper.forget();
    return copy;
  }
}
