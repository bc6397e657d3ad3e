/**
 * What a page URL asks for.
 * @typedef {{kind: 'document', fileId: string, officeType: string | null}
 *   | {kind: 'new', officeType: string}
 *   | {kind: 'none'}} DocumentLocation  officeType is null when the URL does not say it
 */

const documentPath = /^\/(?:p|l)\/(?:[^/]+\/)*([^/]+)\/?$/;
const newPath = /^\/office\/new\/([^/]+)\/?$/;

function decoded(segment) {
  try {
    return decodeURIComponent(segment);
  } catch {
    return segment;
  }
}

/** @param {{pathname: string, search: string}} location @returns {DocumentLocation} */
export function parseLocation({ pathname, search }) {
  const asked = new URLSearchParams(search).get('officeType') || null;
  const created = newPath.exec(pathname);
  if (created) return { kind: 'new', officeType: decoded(created[1]) };
  const opened = documentPath.exec(pathname);
  if (opened) return { kind: 'document', fileId: decoded(opened[1]), officeType: asked };
  return { kind: 'none' };
}

export function documentUrl(fileId, officeType) {
  return `/p/${encodeURIComponent(fileId)}?officeType=${encodeURIComponent(officeType)}`;
}
