import { answered } from '../native/answered.js';

/**
 * The desktop side's storage of documents ("docs.storage", "docs.storage.info", "docs.storage.file"). Its answers come
 * by a function of the page, named with the call. Every method rejects when the answer is a refusal or does not come.
 */
const longestWaitMs = 10000;

export class StorageBridge {
  #native;

  /** @param {import('../document/NativeSide.js').NativeSide} native */
  constructor(native) {
    this.#native = native;
  }

  get present() {
    return this.#native.present;
  }

  /** Whether documents of the page's kind may be edited without the server. */
  async isOffered() {
    const reply = await this.#native.call('docs.storage.funcSwitch', {});
    return Boolean(reply) && reply.callstatus === 'ok' && reply.result === true;
  }

  /** The record of a file. @returns {Promise<{localId: string, pkgSyncPath: string}>} */
  select(fileId) {
    return this.#ask('info.select', { localId: '', fileId });
  }

  create(fileId) {
    return this.#ask('info.create', { fileId });
  }

  update(localId, data) {
    return this.#ask('info.update', { localId, data });
  }

  /** @returns {Promise<string>} */
  async readText(localId, relativePos) {
    const { data } = await this.#ask('file.readDataSteam', { localId, relativePos });
    if (typeof data !== 'string') throw new Error('the file was not read');
    return data;
  }

  async writeText(localId, relativePos, data, { append }) {
    await this.#ask('file.writeDataSteam', { localId, relativePos, data, append });
  }

  async replaceFile(localId, relativePos, text) {
    await this.#ask('file.update', { localId, relativePos, data: base64(text), append: false });
  }

  async remove(localId, relativePos) {
    await this.#ask('file.remove', { localId, relativePos, isFolder: false });
  }

  async #ask(method, args) {
    const reply = await answered(this.#native, `docs.storage.${method}`, args, { timeoutMs: longestWaitMs });
    if (reply.callstatus !== 'ok') throw new Error(reply.err || `"docs.storage.${method}" was refused`);
    return reply.result;
  }
}

/** The text's UTF-8 bytes as Base64. */
export function base64(text) {
  const bytes = new TextEncoder().encode(text);
  const step = 0x8000;
  let binary = '';
  for (let at = 0; at < bytes.length; at += step) binary += String.fromCharCode(...bytes.subarray(at, at + step));
  return btoa(binary);
}
