/**
 * The table as the server keeps it, {sheets: [{name, columns: [{title, width}], rows: [[cell]]}]}, and as the grid
 * wants it: one object per row with a member per column. Members that this editor does not know are kept.
 *
 * @typedef {{name: string, columns: {title: string, width?: number}[], rows: any[][]}} Sheet
 */

const blankColumns = 8;
const shownRows = 40;
const defaultWidth = 120;

/** 0 → "A", 25 → "Z", 26 → "AA". */
export function columnLetters(index) {
  const last = String.fromCharCode(65 + (index % 26));
  return index < 26 ? last : columnLetters(Math.floor(index / 26) - 1) + last;
}

export function blankSheet(name) {
  const columns = Array.from({ length: blankColumns }, (_, index) => ({ title: columnLetters(index), width: defaultWidth }));
  return { name, columns, rows: [] };
}

function checkSheet(sheet, index) {
  const where = `sheet ${index + 1}`;
  if (typeof sheet !== 'object' || sheet === null) throw new Error(`${where} is not an object`);
  if (!Array.isArray(sheet.columns)) throw new Error(`${where} has no columns`);
  if (!Array.isArray(sheet.rows) || !sheet.rows.every(Array.isArray)) throw new Error(`${where} has no rows`);
}

function completed(sheet, index) {
  checkSheet(sheet, index);
  const width = sheet.rows.reduce((most, row) => Math.max(most, row.length), sheet.columns.length);
  const columns = Array.from({ length: width }, (_, column) => ({ title: columnLetters(column), ...sheet.columns[column] }));
  return { ...sheet, name: sheet.name || `Sheet ${index + 1}`, columns };
}

/**
 * @returns {Sheet[]} at least one sheet; every row fits the columns
 * @throws {Error} when the content is no table
 */
export function sheetsFromContent(content) {
  if (content.sheets !== undefined && !Array.isArray(content.sheets)) throw new Error('its sheets are not a list');
  const sheets = (content.sheets || []).map(completed);
  return sheets.length > 0 ? sheets.map((sheet) => (sheet.columns.length > 0 ? sheet : { ...sheet, ...blankSheet(sheet.name) }))
    : [blankSheet('Sheet 1')];
}

function isBlank(row) {
  return row.every((cell) => cell === '' || cell === null || cell === undefined);
}

/** Rows without the blank ones at the end, which the grid shows only to be typed into. */
export function withoutBlankEnd(rows) {
  let end = rows.length;
  while (end > 0 && isBlank(rows[end - 1])) --end;
  return rows.slice(0, end);
}

export function fieldName(index) {
  return `c${index}`;
}

/** @returns {object[]} the rows by field, with blank rows added to fill the screen */
export function gridRows(sheet) {
  const rows = [...sheet.rows];
  while (rows.length < shownRows) rows.push([]);
  return rows.map((row) => Object.fromEntries(sheet.columns.map((_, index) => [fieldName(index), row[index] ?? ''])));
}

/** The reverse: cells in the order of `fields`, blank rows at the end left out. */
export function sheetRows(rows, fields) {
  return withoutBlankEnd(rows.map((row) => fields.map((field) => row[field] ?? '')));
}

/** A number that a cell holds, "1,250.5" included; null when it holds something else. */
export function cellNumber(cell) {
  if (typeof cell === 'number') return Number.isFinite(cell) ? cell : null;
  const text = String(cell ?? '').trim().replace(/,(?=\d{3}(?:\D|$))/g, '');
  return /^[+-]?(?:\d+\.?\d*|\.\d+)(?:e[+-]?\d+)?$/i.test(text) ? Number(text) : null;
}

/** What the status line says about selected cells; an empty text without numbers among them. */
export function selectionSummary(cells) {
  const numbers = cells.map(cellNumber).filter((number) => number !== null);
  if (numbers.length < 2) return '';
  const sum = numbers.reduce((total, number) => total + number, 0);
  const shown = (number) => String(Math.round(number * 1e6) / 1e6);
  return `Sum ${shown(sum)} · Average ${shown(sum / numbers.length)} · Numbers ${numbers.length}`;
}
