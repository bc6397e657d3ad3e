import assert from 'node:assert/strict';
import test from 'node:test';
import { chartData, chartOptions } from '../../demo/webapp/src/table/chartData.js';
import {
  fileSheetName, readSpreadsheet, spreadsheetBlob,
} from '../../demo/webapp/src/table/spreadsheetFiles.js';
import {
  cellNumber, columnLetters, fieldName, gridRows, selectionSummary, sheetRows, sheetsFromContent,
} from '../../demo/webapp/src/table/tableContent.js';

const columns = [{ title: 'Item', width: 160 }, { title: 'Q1', width: 90 }];
const budget = { name: 'Budget', columns, rows: [['Rent', '1,200.5'], ['', ''], ['Food', '-3']] };

test('rows survive the way into the grid and back', () => {
  const [sheet] = sheetsFromContent({ sheets: [{ ...budget, frozen: 1 }] });
  assert.equal(sheet.frozen, 1);
  const rows = gridRows(sheet);
  assert.ok(rows.length > budget.rows.length);
  assert.deepEqual(sheetRows(rows, [fieldName(0), fieldName(1)]), budget.rows);
  assert.deepEqual(sheetRows(rows, [fieldName(1)])[0], ['1,200.5']);
});

test('rows that are wider than the columns lose nothing', () => {
  const [sheet] = sheetsFromContent({ sheets: [{ name: 'A', columns: [{ title: 'X' }], rows: [['1', '2', '3']] }] });
  assert.deepEqual(sheet.columns.map(({ title }) => title), ['X', 'B', 'C']);
  assert.equal(gridRows(sheet)[0][fieldName(2)], '3');
});

test('a new table has a sheet to type into; what is no table is refused', () => {
  for (const content of [{}, { sheets: [] }, { sheets: [{ name: 'A', columns: [], rows: [] }] }]) {
    assert.equal(sheetsFromContent(content)[0].columns.length, 8);
  }
  for (const content of [{ sheets: {} }, { sheets: [null] }, { sheets: [{ columns: [], rows: [1] }] }, { sheets: [{ rows: [] }] }]) {
    assert.throws(() => sheetsFromContent(content), JSON.stringify(content));
  }
});

test('column letters', () => {
  assert.deepEqual([0, 25, 26, 51, 52, 701, 702].map(columnLetters), ['A', 'Z', 'AA', 'AZ', 'BA', 'ZZ', 'AAA']);
});

test('numbers in cells', () => {
  const cases = [['12', 12], [' -1,234.5 ', -1234.5], ['1e3', 1000], ['.5', 0.5], [7, 7],
    ['', null], ['1,2', null], ['1 2', null], ['12a', null], [null, null], [NaN, null]];
  for (const [cell, number] of cases) assert.equal(cellNumber(cell), number, String(cell));
  assert.equal(selectionSummary(['a', '0.1', '0.2']), 'Sum 0.3 · Average 0.15 · Numbers 2');
  assert.equal(selectionSummary(['a', '1']), '');
});

test('a chart takes number columns as series and the first other as labels', () => {
  const data = chartData(['Q1', 'Item', 'Empty', 'Q2'], [['1', 'Rent', '', '3'], ['', 'Food', '', '4']]);
  assert.deepEqual(data, {
    labels: ['Rent', 'Food'],
    series: [{ name: 'Q1', values: [1, null] }, { name: 'Q2', values: [3, 4] }],
  });
  assert.deepEqual(chartData(['A'], [['1'], ['2']]).labels, ['1', '2']);
  assert.deepEqual(chartOptions(data, 'pie').series, [
    { name: 'Q1', type: 'pie', data: [{ name: 'Rent', value: 1 }, { name: 'Food', value: null }] },
  ]);
});

test('a downloaded spreadsheet file reads back as the same table', async () => {
  const blob = await spreadsheetBlob([budget, { name: 'Plan: a/b', columns, rows: [] }]);
  const sheets = await readSpreadsheet(blob);
  assert.deepEqual(sheets.map(({ name }) => name), ['Budget', fileSheetName('Plan: a/b', 1)]);
  assert.deepEqual(sheets[0].columns.map(({ title }) => title), ['Item', 'Q1']);
  assert.deepEqual(sheets[0].rows[0], ['Rent', '1200.5']);
  assert.deepEqual(sheets[0].rows[2], ['Food', '-3']);
  await assert.rejects(readSpreadsheet(new Blob(['no spreadsheet'])));
});
