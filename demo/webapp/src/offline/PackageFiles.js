import { officeType } from '../document/officeTypes.js';

const missingFile = 'targetPath does not exist';

/** The files of one document's package on this computer that editing without the server needs. */
export class PackageFiles {
  #storage;
  #localId;
  #folder;
  #copyName;

  /**
   * @param {import('./StorageBridge.js').StorageBridge} storage
   * @param {{localId: string, pkgSyncPath: string}} record
   */
  constructor(storage, record, typeCode) {
    this.#storage = storage;
    this.#localId = record.localId;
    this.#folder = record.pkgSyncPath;
    this.#copyName = `content.${officeType(typeCode).packageName}`;
  }

  #place(name) {
    return `${this.#folder.replace(/^\/+/, '')}/${name}`;
  }

  #journal(slot) {
    return this.#place(`unsent.${slot}.jsonl`);
  }

  /** @returns {Promise<(string | null)[]>} the two journals; null for one that is not there */
  readJournals() {
    return Promise.all([0, 1].map((slot) => this.#textOf(this.#journal(slot))));
  }

  writeJournal(slot, text, { append }) {
    return this.#storage.writeText(this.#localId, this.#journal(slot), text, { append });
  }

  /** Removes a journal; one that is not there is removed. */
  async removeJournal(slot) {
    try {
      await this.#storage.remove(this.#localId, this.#journal(slot));
    } catch (error) {
      if ((await this.#textOf(this.#journal(slot))) !== null) throw error;
    }
  }

  readCopy() {
    return this.#textOf(this.#place(this.#copyName));
  }

  /** Notes a name in the record, for the time when nobody else says it. */
  noteName(name) {
    return this.#storage.update(this.#localId, { name });
  }

  writeCopy(content, version) {
    return this.#storage.replaceFile(this.#localId, this.#place(this.#copyName), JSON.stringify({ file_version: version, content }));
  }

  async #textOf(place) {
    try {
      return await this.#storage.readText(this.#localId, place);
    } catch (error) {
      if (error.message === missingFile) return null;
      throw error; // it may hold something
    }
  }
}

/** A file's record as the desktop side writes it into the page or answers it. @returns {object | null} */
export function readRecord(value, fileId) {
  if (typeof value !== 'object' || value === null || value.fileId !== fileId) return null;
  const texts = [value.localId, value.pkgSyncPath];
  return texts.every((text) => typeof text === 'string' && text !== '') ? value : null;
}
