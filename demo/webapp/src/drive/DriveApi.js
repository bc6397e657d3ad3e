import { requestJson } from '../document/requestJson.js';

const base = '/api/v1/drive';
const longTimeoutMs = 120000;

function part(value) {
  return encodeURIComponent(value);
}

/** The drive of the documents server. Replies are those of `requestJson`. */
export class DriveApi {
  #fetch;

  /** @param {typeof fetch} fetchFn */
  constructor(fetchFn) {
    this.#fetch = fetchFn;
  }

  #ask(path, options) {
    return requestJson(this.#fetch, `${base}${path}`, { cache: 'no-store', ...options });
  }

  folder({ group, folder }, options) {
    return this.#ask(`/groups/${part(group)}/folders/${part(folder)}`, options);
  }

  makeFolder({ group, folder }, name, options) {
    const json = { parentid: folder, name };
    return this.#ask(`/groups/${part(group)}/folders`, { method: 'POST', json, ...options });
  }

  remove(id, options) {
    return this.#ask(`/items/${part(id)}`, { method: 'DELETE', timeoutMs: longTimeoutMs, ...options });
  }

  /** One request for a file of at most 1 MiB. */
  putFile({ group, folder }, { name, fileId = '0', sha1 }, body, options) {
    const query = new URLSearchParams({ name, fileid: fileId, sha1 });
    const path = `/groups/${part(group)}/folders/${part(folder)}/files?${query}`;
    return this.#ask(path, { method: 'PUT', body, ...options });
  }

  beginUpload({ group, folder }, { name, fileId = '0', size, sha1 }, options) {
    const json = { groupid: group, parentid: folder, fileid: fileId, name, size, sha1 };
    return this.#ask('/uploads', { method: 'POST', json, ...options });
  }

  uploadPart(uploadId, offset, body, options) {
    const path = `/uploads/${part(uploadId)}?offset=${offset}`;
    return this.#ask(path, { method: 'PUT', body, timeoutMs: longTimeoutMs, ...options });
  }

  finishUpload(uploadId, options) {
    const path = `/uploads/${part(uploadId)}/finish`;
    return this.#ask(path, { method: 'POST', timeoutMs: longTimeoutMs, ...options });
  }

  contentUrl(id) {
    return `${base}/files/${part(id)}/content`;
  }
}
