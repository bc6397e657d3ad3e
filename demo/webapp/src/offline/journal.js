import { fileVersion } from '../document/fileVersion.js';

/**
 * The journal of what was typed into a document and not yet saved: lines of JSON, only ever appended to. The first
 * holds the whole content, the following ones what changed in its JSON text. A line counts once its end is there, and
 * what comes after a line that cannot be read does not count: a journal that was cut off anywhere says what it said
 * before.
 *
 * @typedef {object} JournalState
 * @property {number} generation  of two journals the one of the higher generation counts
 * @property {number | null} base the version that the content rests on; null when that is not known
 * @property {string} fileName
 * @property {string} text        the content as JSON text
 * @property {boolean} unsent     whether the server lacks something of it
 * @property {string[]} sentTexts states that were sent on top of `base` and not confirmed: they may have arrived
 */

function line(value) {
  return `${JSON.stringify(value)}\n`;
}

export function startLine({ generation, base, fileName, content }) {
  return line({ kind: 'start', generation, base, fileName, content });
}

/** What turns one text into the other: the part between their common beginning and their common end. */
export function editLine(before, after) {
  const shorter = Math.min(before.length, after.length);
  let at = 0;
  while (at < shorter && before[at] === after[at]) ++at;
  let same = 0;
  while (same < shorter - at && before[before.length - 1 - same] === after[after.length - 1 - same]) ++same;
  const put = after.slice(at, after.length - same);
  return line({ kind: 'edit', at, cut: before.length - same - at, put, length: after.length });
}

/** The text as it is now is being sent. */
export function sentLine() {
  return line({ kind: 'sent' });
}

/** What was sent last was saved as this version. */
export function savedLine(version) {
  return line({ kind: 'saved', version });
}

/** The content rests on this version. */
export function baseLine(version) {
  return line({ kind: 'base', version });
}

function isCount(value) {
  return Number.isSafeInteger(value) && value >= 0;
}

function started({ kind, generation, base, fileName, content }) {
  if (kind !== 'start' || !isCount(generation) || typeof content !== 'object' || content === null) return null;
  const text = JSON.stringify(content);
  return { generation, base: fileVersion(base), fileName: String(fileName || ''), text, savedText: null, sentTexts: [] };
}

function edited(state, { at, cut, put, length }) {
  if (!isCount(at) || !isCount(cut) || typeof put !== 'string' || at + cut > state.text.length) return null;
  const text = state.text.slice(0, at) + put + state.text.slice(at + cut);
  return text.length === length ? { ...state, text } : null;
}

function saved(state, version) {
  const { sentTexts } = state;
  if (version === null || sentTexts.length === 0) return null;
  return { ...state, base: version, savedText: sentTexts[sentTexts.length - 1], sentTexts: [] };
}

/** @returns the state after the record; null when it says nothing that fits */
function after(state, record) {
  if (typeof record !== 'object' || record === null) return null;
  if (state === null) return started(record);
  const version = fileVersion(record.version);
  switch (record.kind) {
    case 'edit':
      return edited(state, record);
    case 'sent':
      return { ...state, sentTexts: [...state.sentTexts, state.text] };
    case 'saved':
      return saved(state, version);
    case 'base':
      return version === null ? null : { ...state, base: version, sentTexts: [] };
    default:
      return null;
  }
}

function parsed(text) {
  try {
    return JSON.parse(text);
  } catch {
    return null;
  }
}

/** What a journal says. @param {string} journal @returns {JournalState | null} null when it says nothing */
export function readJournal(journal) {
  const lines = journal.split('\n').slice(0, -1); // the last line has no end: it is empty, or was cut off
  let state = null;
  for (const each of lines) {
    const next = after(state, parsed(each));
    if (next === null) break;
    state = next;
  }
  if (state === null) return null;
  const { savedText, ...rest } = state;
  return parsed(rest.text) === null ? null : { ...rest, unsent: rest.text !== savedText };
}

/** @param {(string | null)[]} journals @returns {JournalState | null} what the newest readable one says */
export function newestJournal(journals) {
  const states = journals.map((text) => (text === null ? null : readJournal(text))).filter((state) => state !== null);
  return states.reduce((best, state) => (best === null || state.generation > best.generation ? state : best), null);
}
