import crelt from 'crelt';

const shownRows = 200;

/** Shows the first sheet of a table without an editor. */
export function renderTablePreview(content) {
  const sheet = (Array.isArray(content.sheets) && content.sheets[0]) || {};
  const columns = Array.isArray(sheet.columns) ? sheet.columns : [];
  const rows = Array.isArray(sheet.rows) ? sheet.rows.slice(0, shownRows) : [];
  const heads = columns.map(({ title, width }) => crelt('th', { style: `width: ${Number(width) || 120}px` }, title || ''));
  const lines = rows.map((row) => crelt('tr', columns.map((_, index) => crelt('td', String(row[index] ?? '')))));
  return crelt('table', { class: 'table-preview' }, crelt('thead', crelt('tr', heads)), crelt('tbody', lines));
}
