import { cellNumber } from './tableContent.js';

/**
 * Picks labels and series out of cells: columns whose filled cells are all numbers become series, the first other
 * column gives the labels.
 * @param {string[]} titles
 * @param {any[][]} rows
 * @returns {{labels: string[], series: {name: string, values: (number | null)[]}[]}}
 */
export function chartData(titles, rows) {
  const filled = (row, column) => row[column] !== '' && row[column] !== null && row[column] !== undefined;
  const isNumeric = (column) => {
    const cells = rows.filter((row) => filled(row, column));
    return cells.length > 0 && cells.every((row) => cellNumber(row[column]) !== null);
  };
  const numeric = titles.map((_, column) => isNumeric(column));
  const labelColumn = titles.findIndex((_, column) => !numeric[column] && rows.some((row) => filled(row, column)));
  return {
    labels: rows.map((row, index) => (labelColumn < 0 ? String(index + 1) : String(row[labelColumn] ?? ''))),
    series: titles.flatMap((name, column) => (
      numeric[column] ? [{ name, values: rows.map((row) => cellNumber(row[column])) }] : []
    )),
  };
}

/** The chart library's options for the data. @param {'bar' | 'line' | 'pie'} kind */
export function chartOptions({ labels, series }, kind) {
  const pieData = (values) => values.map((value, index) => ({ name: labels[index], value }));
  const shared = { animation: false, tooltip: {}, legend: { type: 'scroll', top: 0 }, grid: { left: 64, right: 24, bottom: 32, top: 48 } };
  if (kind === 'pie') {
    return { ...shared, series: series.slice(0, 1).map(({ name, values }) => ({ name, type: 'pie', data: pieData(values) })) };
  }
  return {
    ...shared,
    xAxis: { type: 'category', data: labels },
    yAxis: { type: 'value' },
    series: series.map(({ name, values }) => ({ name, type: kind, data: values })),
  };
}
