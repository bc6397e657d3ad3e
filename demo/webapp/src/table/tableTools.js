import { htmlOfRows, rowsOfContent, textOfRows } from './cellRows.js';
import { withoutBlankEnd } from './tableContent.js';

function escaped(text) {
  return text.replace(/&/g, '&amp;').replace(/</g, '&lt;');
}

/** A sheet for printing: its titles above its rows. */
function sheetHtml({ name, columns, rows }) {
  return `<h2>${escaped(name)}</h2>${htmlOfRows([columns.map(({ title }) => title || ''), ...withoutBlankEnd(rows)])}`;
}

/**
 * What the services around the table editor need of it; see `ui/DesktopLink.js`.
 * @param {{grid: () => import('./SheetGrid.js').SheetGrid, sheets: () => object[], onRefresh: () => void}} editor
 */
export function tableTools({ grid, sheets, onRefresh }) {
  return {
    kind: 'table',
    /** A cell that is being typed into is a line of text of its own. */
    handles: (target) => target.closest('.grid') !== null && !target.matches('input, textarea'),
    focus: () => grid().focus(),
    refresh: onRefresh,
    selectedText: () => textOfRows(grid().cells() || []),

    copy() {
      const rows = grid().cells();
      if (rows === null) return null;
      return { text: textOfRows(rows), html: htmlOfRows(rows), fragment: { kind: 'table', rows }, image: null };
    },

    remove: () => grid().clearCells(),

    /** @returns {Promise<boolean>} whether something of the content could be taken */
    async paste(content, { plain = false } = {}) {
      const rows = rowsOfContent(content, { plain });
      return rows !== null && grid().setCells(rows);
    },

    printBody: () => sheets().map(sheetHtml).join('\n'),
  };
}
