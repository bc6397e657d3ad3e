import { fileVersion } from './fileVersion.js';

/**
 * What the desktop side wrote into the page before its scripts ran (`window.__INJECT__`). The object may be absent
 * and every member may be null; whatever has the wrong shape counts as absent.
 * @typedef {object} Injected
 * @property {string | null} connId       connection id, whose holder keeps prefetched replies for this page
 * @property {object | null} content      locally synchronised document content, as the editors read it
 * @property {number | null} contentVersion  the version that the content rests on, where it says so
 * @property {string | null} cachedHtml   a rendering of the document kept from an earlier visit, or by the server
 * @property {string | null} fileName
 * @property {boolean} offlineEditing     whether documents of this kind may be edited without the server
 */

const nameMembers = ['name', 'file_name', 'fileName', 'fname'];
const nestedMembers = ['file_info', 'fileInfo', 'data'];

function isObject(value) {
  return typeof value === 'object' && value !== null && !Array.isArray(value);
}

function parsed(value) {
  if (typeof value !== 'string') return value;
  try {
    return JSON.parse(value);
  } catch {
    return null;
  }
}

/** The file name that a file-information object carries, at its top or one level down. */
export function fileNameOf(fileInfo) {
  const info = parsed(fileInfo);
  if (!isObject(info)) return null;
  for (const holder of [info, ...nestedMembers.map((member) => info[member]).filter(isObject)]) {
    const member = nameMembers.find((name) => typeof holder[name] === 'string' && holder[name] !== '');
    if (member) return holder[member];
  }
  return null;
}

/** The content may stand alone, or beside the version that it rests on: {"file_version", "content"}. */
function readContent(data) {
  const value = isObject(data) ? parsed(data.content) : null;
  if (!isObject(value)) return { content: null, contentVersion: null };
  if (!isObject(value.content)) return { content: value, contentVersion: null };
  return { content: value.content, contentVersion: fileVersion(value.file_version) };
}

// Closing tags were kept from ending the script block early; that is taken back.
function readRendering(source) {
  const cache = source._LOCAL_INJECT_CACHE;
  const html = isObject(cache) && typeof cache.csr === 'string' ? cache.csr : '';
  return html === '' ? null : html.replace(/<\\\//g, '</');
}

/** The server's rendering: the HTML itself, or the reply that carries it. */
function readServerRendering(value) {
  const ssr = isObject(parsed(value)) ? parsed(value) : value;
  const html = isObject(ssr) && isObject(ssr.ssr) ? ssr.ssr.html : ssr;
  return typeof html === 'string' && html !== '' ? html : null;
}

const documentMembers = ['_LOCAL_INJECT_DATA', '_LOCAL_INJECT_CACHE'];

/**
 * The injected values while their document was not opened yet: an object that was used once says nothing about the
 * document that the page opens next.
 */
export class Injection {
  #owner;
  #used = new WeakSet();

  constructor(owner) {
    this.#owner = owner;
  }

  /** @returns {Injected} */
  read(fileId) {
    const inject = this.#owner.__INJECT__;
    const source = isObject(inject) ? { ...inject } : {};
    for (const name of documentMembers) {
      if (this.#used.has(source[name])) delete source[name];
    }
    return readInjected(source, fileId);
  }

  used() {
    const inject = this.#owner.__INJECT__;
    if (!isObject(inject)) return;
    documentMembers.map((name) => inject[name]).filter(isObject).forEach((value) => this.#used.add(value));
  }
}

/** Whether the injected values say that they are another document's. */
function isOfAnother(source, fileId) {
  const info = parsed(source._LOCAL_INJECT_DATA_FILEINFO);
  const owner = isObject(info) ? info.fileId : undefined;
  return typeof owner === 'string' && owner !== '' && owner !== fileId;
}

/**
 * @param {unknown} inject
 * @param {string} fileId the document that the page opens; what is injected for another one counts as absent
 * @returns {Injected}
 */
export function readInjected(inject, fileId) {
  const given = isObject(inject) ? inject : {};
  const source = isOfAnother(given, fileId)
    ? { _LOCAL_INJECT_DATA_OFFLINESWITCH: given._LOCAL_INJECT_DATA_OFFLINESWITCH }
    : given;
  const connId = source._LOCAL_CONNID;
  return {
    connId: typeof connId === 'string' && connId !== '' && connId !== 'null' ? connId : null,
    ...readContent(source._LOCAL_INJECT_DATA),
    cachedHtml: readRendering(source) || readServerRendering(source._LOCAL_INJECT_DATA_SSRCONTENT),
    offlineEditing: source._LOCAL_INJECT_DATA_OFFLINESWITCH === true,
    fileName: fileNameOf(source._LOCAL_INJECT_DATA_FILEINFO),
  };
}

/**
 * The connection under which the page asks for its document. The replies kept for the injected one are as old as the
 * page's first load: a page that is loaded again asks under an id of its own, which only the server answers.
 */
export function connectionFor(injected, owner) {
  const [navigation] = owner.performance?.getEntriesByType?.('navigation') ?? [];
  const loadedAgain = navigation?.type === 'reload';
  return (!loadedAgain && injected.connId) || newConnectionId();
}

/** A fresh connection id: 32 hexadecimal digits. */
export function newConnectionId(random = (bytes) => globalThis.crypto.getRandomValues(bytes)) {
  return Array.from(random(new Uint8Array(16)), (byte) => byte.toString(16).padStart(2, '0')).join('');
}
