import { documentUrl } from '../document/location.js';
import { officeType } from '../document/officeTypes.js';

/**
 * @typedef {{id: string, groupid: string, parentid: string, name: string, type: 'folder' | 'file' | 'document', size: number,
 *   sha1?: string, mtime: number, version?: number}} DriveItem
 */

const documentSuffixes = { docx: 'w', doc: 'w', xlsx: 's', xls: 's' };
const nameOrder = new Intl.Collator('en', { numeric: true, sensitivity: 'base' });
const units = ['KB', 'MB', 'GB', 'TB'];

export function suffixOf(name) {
  const dot = name.lastIndexOf('.');
  return dot > 0 ? name.slice(dot + 1).toLowerCase() : '';
}

/** The kind of document that an item is for this front end; null when it is no document of the server. */
export function documentKind(item) {
  if (item.type !== 'document') return null;
  const code = item.officeType || documentSuffixes[suffixOf(item.name)];
  return code && officeType(code) ? code : null;
}

/** Folders first, then by name, numbers by their value. @param {DriveItem[]} items */
export function sorted(items) {
  const rank = ({ type }) => (type === 'folder' ? 0 : 1);
  return [...items].sort((a, b) => rank(a) - rank(b) || nameOrder.compare(a.name, b.name));
}

/** 1536 → "1.5 KB". */
export function sizeText(bytes) {
  if (!(bytes >= 1024)) return `${Math.max(0, Number(bytes) || 0)} B`;
  let value = bytes;
  let unit = -1;
  do {
    value /= 1024;
    ++unit;
  } while (value >= 1023.95 && unit < units.length - 1);
  return `${value >= 100 ? Math.round(value) : Math.round(value * 10) / 10} ${units[unit]}`;
}

/**
 * How an item opens.
 * @returns {{kind: 'folder'} | {kind: 'document', url: string} | {kind: 'file'}} url: from the site's root
 */
export function openingOf(item) {
  if (item.type === 'folder') return { kind: 'folder' };
  const code = documentKind(item);
  return code ? { kind: 'document', url: documentUrl(item.id, code) } : { kind: 'file' };
}

/** What the desktop side wants to download: documents of the server are not files of the drive. */
export function downloadIds(items) {
  return items.filter(({ type }) => type !== 'document').map(({ id, type }) => ({ id: String(id), idDir: type === 'folder' }));
}

/** Why a text cannot name a folder or file; null when it can. */
export function nameProblem(text) {
  const name = text.trim();
  if (name === '') return 'A name is needed.';
  if (name === '.' || name === '..') return 'This name stands for another folder.';
  // eslint-disable-next-line no-control-regex
  if (/[/\u0000-\u001f\u007f]/.test(name)) return 'A name holds neither "/" nor control characters.';
  return new TextEncoder().encode(name).length > 255 ? 'This name is too long.' : null;
}

/** The folder that a page URL names: "#<group>/<folder>". */
export function placeFromHash(hash) {
  const [, group = '0', folder = '0'] = /^#(\d+)\/(\d+)$/.exec(hash) || [];
  return { group, folder };
}

export function hashOf({ group, folder }) {
  return `#${group}/${folder}`;
}
