import { isSignedOut } from './requestJson.js';
import { readPreopenReply } from './preopenReply.js';

/** Where a reply came from, as the page's state says it. */
export function sourceOf(reply) {
  return reply.source === 'local' ? 'prefetched' : 'network';
}

/**
 * The document that the answer to a pre-open request holds.
 * @returns {import('./preopenReply.js').Opened | {ok: false, title: string, message: string, isSignedOut?: boolean}}
 */
export function openedFrom(reply, fileId, typeCode) {
  if (!reply.ok && reply.status === 404) {
    const message = `The server knows no document "${fileId}" of this type`;
    return { ok: false, title: 'There is no such document', message };
  }
  if (isSignedOut(reply)) {
    return { ok: false, isSignedOut: true, title: 'Sign in to see this document', message: 'The server shows documents to signed-in users only' };
  }
  const title = 'The document could not be opened';
  if (!reply.ok) return { ok: false, title, message: `Document ${fileId}: ${reply.message}` };
  const opened = readPreopenReply(reply.value, typeCode);
  if (!opened.ok) return { ok: false, title, message: `Document ${fileId}: ${opened.message}` };
  return { ...opened, fileId: opened.fileId || fileId };
}
