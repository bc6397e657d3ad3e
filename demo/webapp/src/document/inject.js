/**
 * What the desktop side wrote into the page before its scripts ran (`window.__INJECT__`). The object may be absent
 * and every member may be null; whatever has the wrong shape counts as absent.
 * @typedef {object} Injected
 * @property {string | null} connId       connection id, whose holder keeps prefetched replies for this page
 * @property {object | null} content      locally synchronised document content, as the editors read it
 * @property {string | null} cachedHtml   a rendering of the document kept from an earlier visit
 * @property {string | null} fileName
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

/** @returns {Injected} */
export function readInjected(inject) {
  const source = isObject(inject) ? inject : {};
  const connId = source._LOCAL_CONNID;
  const data = source._LOCAL_INJECT_DATA;
  const content = isObject(data) ? parsed(data.content) : null;
  const cache = source._LOCAL_INJECT_CACHE;
  const html = isObject(cache) && typeof cache.csr === 'string' ? cache.csr : '';
  return {
    connId: typeof connId === 'string' && connId !== '' && connId !== 'null' ? connId : null,
    content: isObject(content) ? content : null,
    // Closing tags were kept from ending the script block early; take that back.
    cachedHtml: html === '' ? null : html.replace(/<\\\//g, '</'),
    fileName: fileNameOf(source._LOCAL_INJECT_DATA_FILEINFO),
  };
}

/** A fresh connection id: 32 hexadecimal digits. */
export function newConnectionId(random = (bytes) => globalThis.crypto.getRandomValues(bytes)) {
  return Array.from(random(new Uint8Array(16)), (byte) => byte.toString(16).padStart(2, '0')).join('');
}
