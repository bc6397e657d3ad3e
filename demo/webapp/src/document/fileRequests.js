import { officeType } from './officeTypes.js';

/**
 * Asks for everything that opening a file needs, all at once. A connection id from the desktop side means that it may
 * hold the server's rendering already, which is worth asking for when there is nothing else to show.
 * @param {import('./DocumentsApi.js').DocumentsApi} api
 * @returns {{preopen: Promise, envConfig: Promise, rendered: Promise | null}} replies of `requestJson`
 */
export function askForFile(api, { fileId, typeCode, connId, injected, signal }) {
  const hasPreview = injected.content !== null || injected.cachedHtml !== null;
  const wantsRendering = injected.connId !== null && !hasPreview && officeType(typeCode).rendered;
  return {
    preopen: api.preopen(fileId, typeCode, connId, { signal }),
    envConfig: api.envConfig(fileId, connId, { signal }),
    rendered: wantsRendering ? api.rendered(fileId, connId, { signal }) : null,
  };
}
