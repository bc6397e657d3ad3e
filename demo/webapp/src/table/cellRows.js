/** Cells as they travel over the clipboard: rows of values. */

function escaped(value) {
  return String(value ?? '').replace(/&/g, '&amp;').replace(/</g, '&lt;').replace(/>/g, '&gt;').replace(/\n/g, '<br>');
}

export function htmlOfRows(rows) {
  const line = (row) => `<tr>${row.map((cell) => `<td>${escaped(cell)}</td>`).join('')}</tr>`;
  return `<table><tbody>${rows.map(line).join('')}</tbody></table>`;
}

/** Tabs between cells; a cell that holds tabs, quotes or line ends stands in quotes. */
export function textOfRows(rows) {
  const cell = (value) => {
    const text = String(value ?? '');
    return /[\t\n\r]|^"/.test(text) ? `"${text.replace(/"/g, '""')}"` : text;
  };
  return rows.map((row) => row.map(cell).join('\t')).join('\n');
}

/** The reverse. */
export function rowsOfText(text) {
  const rows = [[]];
  const cellPattern = /(?:"((?:[^"]|"")*)"(?=[\t\r\n]|$)|([^\t\r\n]*))(\t|\r\n|\n|\r|$)/y;
  for (let match; (match = cellPattern.exec(text)) !== null;) {
    rows[rows.length - 1].push(match[1] === undefined ? match[2] : match[1].replace(/""/g, '"'));
    if (match[3] === '' || cellPattern.lastIndex >= text.length && match[3] !== '\t') break;
    if (match[3] !== '\t') rows.push([]);
  }
  return rows;
}

/** The rows of the first table in HTML; null without one. A cell over several columns is followed by empty ones. */
export function rowsOfHtml(html) {
  const table = new window.DOMParser().parseFromString(html, 'text/html').querySelector('table');
  if (!table) return null;
  const rows = [...table.rows].map((row) => [...row.cells].flatMap((cell) => {
    cell.querySelectorAll('br').forEach((each) => each.replaceWith('\n'));
    const text = cell.textContent.replace(/\u00a0/g, ' ').trim();
    return [text, ...Array(Math.min(cell.colSpan, 100) - 1).fill('')];
  }));
  return rows.length > 0 ? rows : null;
}

function rowsOfFragment({ kind, rows }) {
  const isCell = (value) => ['string', 'number', 'boolean'].includes(typeof value) || value === null;
  return kind === 'table' && Array.isArray(rows) && rows.every((row) => Array.isArray(row) && row.every(isCell)) ? rows : null;
}

/** @param {import('../editing/clipboardData.js').ClipboardContent} content @returns {any[][] | null} null: nothing for cells */
export function rowsOfContent({ fragment, html, text }, { plain = false } = {}) {
  const own = fragment && !plain ? rowsOfFragment(fragment) : null;
  if (own) return own;
  const table = html && !plain ? rowsOfHtml(html) : null;
  return table || (text ? rowsOfText(text) : null);
}
