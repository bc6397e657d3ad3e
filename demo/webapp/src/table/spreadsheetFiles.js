import readXlsxFile from 'read-excel-file/browser';
import writeXlsxFile from 'write-excel-file/browser';
import { cellNumber, columnLetters } from './tableContent.js';

const pixelsPerCharacter = 7;
const longestSheetName = 31;

function cell(value) {
  const number = cellNumber(value);
  if (number !== null) return { type: Number, value: number };
  return value === '' || value === null || value === undefined ? null : { type: String, value: String(value) };
}

/** A sheet name that spreadsheet programs accept. */
export function fileSheetName(name, index) {
  const cleaned = name.replace(/[\\/?*[\]:]/g, ' ').trim().slice(0, longestSheetName);
  return cleaned === '' ? `Sheet ${index + 1}` : cleaned;
}

/** What goes into a spreadsheet file for the sheets: titles as a bold first row, numbers as numbers. */
export function fileSheets(sheets) {
  return sheets.map(({ name, columns, rows }, index) => ({
    sheet: fileSheetName(name, index),
    columns: columns.map(({ width }) => ({ width: Math.round((width || 120) / pixelsPerCharacter) })),
    data: [
      columns.map(({ title }) => ({ type: String, value: title || ' ', fontWeight: 'bold' })),
      ...rows.map((row) => columns.map((_, column) => cell(row[column]))),
    ],
  }));
}

/** @param {import('./tableContent.js').Sheet[]} sheets */
export function spreadsheetBlob(sheets) {
  return writeXlsxFile(fileSheets(sheets)).toBlob();
}

function shownText(value) {
  if (value === null || value === undefined) return '';
  return value instanceof Date ? value.toISOString().slice(0, 10) : String(value);
}

/** A sheet out of a file's cells: the first row gives the titles. */
export function sheetFromCells(name, data) {
  const [titles = [], ...rows] = data;
  const width = data.reduce((most, row) => Math.max(most, row.length), 1);
  const title = (index) => shownText(titles[index]) || columnLetters(index);
  return {
    name,
    columns: Array.from({ length: width }, (_, index) => ({ title: title(index), width: 120 })),
    rows: rows.map((row) => row.map(shownText)),
  };
}

/** @param {File} file @returns {Promise<import('./tableContent.js').Sheet[]>} rejects when it is no such file */
export async function readSpreadsheet(file) {
  const sheets = await readXlsxFile(file);
  return sheets.map(({ sheet, data }) => sheetFromCells(sheet, data));
}
