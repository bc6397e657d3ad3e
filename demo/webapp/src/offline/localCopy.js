import { fileVersion } from '../document/fileVersion.js';
import { newestJournal } from './journal.js';

/**
 * What this computer holds of a document.
 * @typedef {object} LocalCopy
 * @property {object} content
 * @property {number | null} version the version it rests on; null when that is not known
 * @property {boolean} unsent        whether the server lacks something of it
 * @property {object[]} sent         states that were sent and not confirmed
 * @property {string} fileName       empty when that is not known
 */

/** How long a document that is there waits for what may be kept of it before it goes into the editor. */
const longestReadMs = 1500;

function fromJournal({ text, base, unsent, sentTexts, fileName }) {
  const sent = sentTexts.map((each) => JSON.parse(each));
  return { content: JSON.parse(text), version: base, unsent, sent, fileName };
}

function fromCopyFile(text) {
  try {
    const { content, file_version: version } = JSON.parse(text);
    const isContent = typeof content === 'object' && content !== null;
    return isContent ? { content, version: fileVersion(version), unsent: false, sent: [], fileName: '' } : null;
  } catch {
    return null;
  }
}

/**
 * Reads what is kept of a document. The journal is at least as new as the copy.
 * @param {import('./PackageFiles.js').PackageFiles} files
 * @returns {Promise<{copy: LocalCopy | null, generation: number}>} generation: of the newest journal, 0 without one
 */
export async function readLocalCopy(files) {
  const [journals, copyFile] = await Promise.all([files.readJournals(), files.readCopy()]);
  const journal = newestJournal(journals);
  if (journal) return { copy: fromJournal(journal), generation: journal.generation };
  return { copy: copyFile === null ? null : fromCopyFile(copyFile), generation: 0 };
}

/** What cannot be read is not shown; it stays as it is. */
function readable(kept) {
  return kept.catch(() => ({ copy: null, generation: 0 }));
}

function within(promise, timers) {
  let timer;
  const limit = new Promise((resolve) => { timer = timers.setTimeout(() => resolve(null), longestReadMs); });
  return Promise.race([promise, limit]).finally(() => timers.clearTimeout(timer));
}

/** @param {Promise<{copy: LocalCopy | null}> | null} kept @returns {Promise<LocalCopy | null>} */
export async function unsentCopy(kept, timers = globalThis) {
  if (kept === null) return null;
  const found = await within(readable(kept), timers);
  return found && found.copy && found.copy.unsent ? found.copy : null;
}

/** Whether a reply says that the server cannot be reached, rather than what it knows about the document. */
function isAway(reply) {
  return !reply.ok && (reply.status === 0 || reply.status >= 500 || reply.reason === 'empty' || reply.reason === 'malformed');
}

/**
 * The copy to open without waiting for the server: what is unsent, else what stands in the page; what else is kept
 * only when the server cannot be reached.
 * @param {object} options
 * @param {import('../document/inject.js').Injected} options.injected
 * @param {Promise<{copy: LocalCopy | null}> | null} options.kept
 * @param {Promise<object>} options.reply the server's
 * @returns {Promise<LocalCopy | null>}
 */
export async function copyToOpen({ injected, kept, reply }, timers = globalThis) {
  if (injected.content) {
    const stored = { content: injected.content, version: injected.contentVersion, unsent: false, sent: [], fileName: '' };
    return (await unsentCopy(kept, timers)) || stored;
  }
  if (kept === null) return null;
  const first = await Promise.race([unsentCopy(kept, timers), reply.then(() => null)]);
  if (first) return first;
  if (!isAway(await reply)) return null;
  return (await readable(kept)).copy;
}
