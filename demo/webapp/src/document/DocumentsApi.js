import { fileVersion } from './fileVersion.js';
import { officeType } from './officeTypes.js';
import { readPreopenReply } from './preopenReply.js';
import { requestJson, requestJsonTwice } from './requestJson.js';
import { SavedVersions } from './SavedVersions.js';

const localTimeoutMs = 5000;

function proxied(url, connId) {
  const separator = url.includes('?') ? '&' : '?';
  return `${url}${separator}proxy=true&connid=${encodeURIComponent(connId)}&timeout=${localTimeoutMs}`;
}

export function preopenUrl(fileId, packageName) {
  return `/api/v3/office/file/${encodeURIComponent(fileId)}/preopen/${packageName}`;
}

export function envConfigUrl(fileId) {
  return `/office-config/${encodeURIComponent(fileId)}?part=file_info,font_name_map,config,plugin_config`;
}

export function renderedUrl(fileId) {
  return `/office-config/${encodeURIComponent(fileId)}?part=file_info,config,ssr`;
}

function isObject(value) {
  return typeof value === 'object' && value !== null && !Array.isArray(value);
}

/** The HTML in the server's rendering of a document. @returns {string | null} */
export function renderingOf(value) {
  return isObject(value) && isObject(value.ssr) && typeof value.ssr.html === 'string' ? value.ssr.html : null;
}

/** The documents server as the front end uses it. Replies are those of `requestJson`. */
export class DocumentsApi {
  #fetch;
  #saved;

  /** @param {typeof fetch} fetchFn @param {SavedVersions} [savedVersions] */
  constructor(fetchFn, savedVersions = new SavedVersions(() => window.localStorage)) {
    this.#fetch = fetchFn;
    this.#saved = savedVersions;
  }

  list(options) {
    return requestJson(this.#fetch, '/api/v3/office/files', options);
  }

  create(typeCode, { name, ...options } = {}) {
    const json = { officeType: typeCode, name };
    return requestJson(this.#fetch, '/api/v3/office/files', { method: 'POST', json, ...options });
  }

  /** The document's first reply: its name, version and content. */
  preopen(fileId, typeCode, connId, options) {
    const url = preopenUrl(fileId, officeType(typeCode).packageName);
    const request = { method: 'POST', json: { connid: connId }, ...options };
    const isUsable = (value) => {
      const opened = readPreopenReply(value, typeCode);
      return opened.ok && opened.version >= this.#saved.of(fileId);
    };
    return requestJsonTwice(this.#fetch, proxied(url, connId), url, isUsable, request);
  }

  envConfig(fileId, connId, options) {
    const url = envConfigUrl(fileId);
    return requestJsonTwice(this.#fetch, proxied(url, connId), url, isObject, options);
  }

  /** The server's rendering, for a preview only. */
  rendered(fileId, connId, options) {
    const url = renderedUrl(fileId);
    const isUsable = (value) => renderingOf(value) !== null;
    return requestJsonTwice(this.#fetch, proxied(url, connId), url, isUsable, options);
  }

  async save(fileId, baseVersion, content, options) {
    const url = `/api/v3/office/file/${encodeURIComponent(fileId)}/content`;
    const json = { base_version: baseVersion, content };
    const reply = await requestJson(this.#fetch, url, { method: 'PUT', json, ...options });
    const version = reply.ok && reply.value ? fileVersion(reply.value.file_version) : null;
    if (version !== null) this.#saved.saved(fileId, version);
    return reply;
  }
}
