import { sameJson } from './sameJson.js';

/**
 * What to do when the server's document arrives while a local copy of it is open already.
 * @param {object} local
 * @param {object} local.content the copy as it was opened
 * @param {number | null} local.version the version that it rests on; null when that is not known
 * @param {object[]} [local.sent] what was made of that version and sent: the server may have taken it
 * @param {{content: object, version: number}} server
 * @param {boolean} edited whether the user has typed since
 * @returns {'same' | 'send' | 'show' | 'conflict'} same: go on; send: the copy holds changes that the server lacks;
 *   show: put the server's content into the editor; conflict: keep both, and let the user choose
 */
export function reconciliation(local, server, edited) {
  if (sameJson(local.content, server.content)) return 'same';
  const { sent = [] } = local;
  if (local.version === server.version || sent.some((content) => sameJson(content, server.content))) return 'send';
  const ahead = local.version !== null && local.version > server.version;
  return edited || ahead ? 'conflict' : 'show';
}
