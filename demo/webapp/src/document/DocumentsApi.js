import { officeType } from './officeTypes.js';
import { requestJson, requestJsonTwice } from './requestJson.js';

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

/** The documents server as the front end uses it. Replies are those of `requestJson`. */
export class DocumentsApi {
  #fetch;

  /** @param {typeof fetch} fetchFn */
  constructor(fetchFn) {
    this.#fetch = fetchFn;
  }

  list(options) {
    return requestJson(this.#fetch, '/api/v3/office/files', options);
  }

  create(typeCode, options) {
    const json = { officeType: typeCode };
    return requestJson(this.#fetch, '/api/v3/office/files', { method: 'POST', json, ...options });
  }

  /** The document's first reply: its name, version and content. */
  preopen(fileId, typeCode, connId, options) {
    const url = preopenUrl(fileId, officeType(typeCode).packageName);
    const request = { method: 'POST', json: { connid: connId }, ...options };
    return requestJsonTwice(this.#fetch, proxied(url, connId), url, request);
  }

  envConfig(fileId, connId, options) {
    const url = envConfigUrl(fileId);
    return requestJsonTwice(this.#fetch, proxied(url, connId), url, options);
  }

  /** The server's rendering, for a preview only: asked once. */
  rendered(fileId, connId, options) {
    return requestJson(this.#fetch, proxied(renderedUrl(fileId), connId), options);
  }

  save(fileId, baseVersion, content, options) {
    const url = `/api/v3/office/file/${encodeURIComponent(fileId)}/content`;
    const json = { base_version: baseVersion, content };
    return requestJson(this.#fetch, url, { method: 'PUT', json, ...options });
  }
}
