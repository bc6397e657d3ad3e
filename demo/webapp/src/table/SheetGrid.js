import { TabulatorFull as Tabulator } from 'tabulator-tables';
import { askForText } from '../ui/askForText.js';
import { columnLetters, fieldName, gridRows, sheetRows } from './tableContent.js';

const changes = [
  'cellEdited', 'dataChanged', 'rowAdded', 'rowDeleted', 'columnResized', 'clipboardPasted', 'historyUndo', 'historyRedo',
];
const printable = (event) => event.key.length === 1 && !event.ctrlKey && !event.metaKey && !event.altKey;

/** One sheet in a grid: cells edited in place, ranges copied and pasted, rows and columns added and removed. */
export class SheetGrid {
  #host;
  #sheet;
  #fields;
  #nextField;
  #table;
  #built = false;
  #markBuilt;
  #onChange;

  /** Resolves when the grid stands. */
  built = new Promise((resolve) => {
    this.#markBuilt = resolve;
  });

  /**
   * @param {HTMLElement} host
   * @param {import('./tableContent.js').Sheet} sheet
   * @param {{onChange: () => void, onSelection: () => void}} listeners
   */
  constructor(host, sheet, { onChange, onSelection }) {
    this.#host = host;
    this.#sheet = sheet;
    this.#onChange = onChange;
    this.#fields = sheet.columns.map((_, index) => fieldName(index));
    this.#nextField = this.#fields.length;
    this.#table = new Tabulator(host, this.#options());
    this.#table.on('tableBuilt', () => this.#onBuilt());
    this.#table.on('rangeChanged', onSelection);
    this.#table.on('rangeAdded', onSelection);
    host.addEventListener('keydown', this.#typeOver, { capture: true });
  }

  /** The sheet as it is now. */
  sheet() {
    if (!this.#built) return this.#sheet;
    const columns = this.#columns();
    return {
      ...this.#sheet,
      columns: columns.map((column) => ({
        ...this.#original(column.getField()),
        title: column.getDefinition().title,
        width: column.getWidth(),
      })),
      rows: sheetRows(this.#table.getData(), columns.map((column) => column.getField())),
    };
  }

  /** Titles and cells of the selected range, or of the whole sheet when less than two cells are selected. */
  selection() {
    const range = this.#range();
    const cells = range ? range.getCells() : [];
    if (cells.reduce((count, row) => count + row.length, 0) < 2) {
      const { columns, rows } = this.sheet();
      return { titles: columns.map(({ title }) => title), rows, whole: true };
    }
    const titles = range.getColumns().map((column) => column.getDefinition().title);
    return { titles, rows: cells.map((row) => row.map((cell) => cell.getValue())), whole: false };
  }

  /** The values of the selected range, one cell at least; null without one. */
  cells() {
    const range = this.#range();
    const rows = range ? range.getCells().map((row) => row.filter((cell) => cell.getField()).map((cell) => cell.getValue())) : [];
    return rows.length > 0 && rows[0].length > 0 ? rows : null;
  }

  clearCells() {
    const cells = this.#range() ? this.#range().getCells().flat() : [];
    cells.filter((cell) => cell.getField()).forEach((cell) => cell.setValue(''));
  }

  /**
   * Puts values into the cells from the selection's first one on; rows and columns are added where they are missing.
   * @returns {Promise<boolean>} false without a selection
   */
  async setCells(rows) {
    const range = this.#range();
    const first = range && range.getCells()[0] && range.getCells()[0].find((cell) => cell.getField());
    if (!first) return false;
    const top = this.#table.getRows().indexOf(first.getRow());
    const left = this.#columns().findIndex((column) => column.getField() === first.getField());
    const width = rows.reduce((most, row) => Math.max(most, row.length), 0);
    while (this.#columns().length < left + width) await this.#appendColumn();
    const missing = top + rows.length - this.#table.getDataCount();
    if (missing > 0) await this.#table.addData(Array.from({ length: missing }, () => this.#blankRow()));
    const columns = this.#columns();
    const below = this.#table.getRows().slice(top, top + rows.length);
    rows.forEach((row, index) => row.forEach((value, column) => {
      below[index].getCell(columns[left + column].getField()).setValue(value ?? '');
    }));
    return true;
  }

  async addRow() {
    const rows = this.#range() ? this.#range().getRows() : [];
    const below = rows[rows.length - 1];
    const blank = this.#blankRow();
    await (below ? this.#table.addRow(blank, false, below) : this.#table.addRow(blank));
  }

  async deleteRows() {
    const range = this.#range();
    if (range) await this.#table.deleteRow(range.getRows());
    if (this.#table.getDataCount() === 0) await this.addRow();
  }

  async addColumn() {
    const selected = this.#range() ? this.#range().getColumns().filter((column) => column.getField()) : [];
    await this.#appendColumn(selected[selected.length - 1]);
    this.#onChange();
  }

  async deleteColumns() {
    const range = this.#range();
    const columns = range ? range.getColumns().filter((column) => column.getField()) : [];
    if (columns.length === 0 || columns.length === this.#columns().length) return;
    for (const column of columns) {
      this.#fields = this.#fields.filter((field) => field !== column.getField());
      await column.delete();
    }
    this.#onChange();
  }

  undo() {
    this.#table.undo();
  }

  redo() {
    this.#table.redo();
  }

  /** Takes over a cell that is still being typed into. */
  commit() {
    const active = document.activeElement;
    if (this.#host.contains(active) && active.matches('.tabulator-editing input')) active.blur();
  }

  focus() {
    const holder = this.#host.querySelector('.tabulator-tableholder');
    if (holder) holder.focus();
  }

  destroy() {
    this.#host.removeEventListener('keydown', this.#typeOver, { capture: true });
    this.#table.destroy();
  }

  #blankRow() {
    return Object.fromEntries(this.#fields.map((field) => [field, '']));
  }

  async #appendColumn(after = undefined) {
    const columns = this.#columns();
    const field = fieldName(this.#nextField++);
    const column = this.#column({ title: columnLetters(columns.length), width: 120 }, field);
    await this.#table.addColumn(column, false, after || columns[columns.length - 1]);
    this.#fields.push(field);
  }

  #options() {
    return {
      data: gridRows(this.#sheet),
      columns: this.#sheet.columns.map((column, index) => this.#column(column, this.#fields[index])),
      rowHeader: {
        formatter: 'rownum', headerSort: false, hozAlign: 'center', resizable: false, frozen: true, width: 48,
        cssClass: 'row-number',
      },
      columnDefaults: { headerSort: false, resizable: 'header' },
      height: '100%',
      layout: 'fitData',
      history: true,
      editTriggerEvent: 'dblclick',
      selectableRange: 1,
      selectableRangeColumns: true,
      selectableRangeRows: true,
      selectableRangeClearCells: true,
      selectableRangeClearCellsValue: '',
      clipboard: true,
      clipboardCopyStyled: false,
      clipboardCopyConfig: { rowHeaders: false, columnHeaders: false },
      clipboardCopyRowRange: 'range',
      clipboardPasteParser: 'range',
      clipboardPasteAction: 'range',
    };
  }

  #column({ title, width }, field) {
    const headerDblClick = (_event, column) => this.#rename(column);
    return { title, field, width: width || 120, minWidth: 40, editor: 'input', headerDblClick };
  }

  #columns() {
    return this.#table.getColumns().filter((column) => column.getField());
  }

  #original(field) {
    return this.#sheet.columns[Number(field.slice(1))] || {};
  }

  #range() {
    return this.#built ? this.#table.getRanges()[0] : undefined;
  }

  #onBuilt() {
    this.#built = true;
    this.#markBuilt();
    changes.forEach((name) => this.#table.on(name, this.#onChange));
  }

  #rename(column) {
    askForText({
      label: 'Column title',
      value: column.getDefinition().title,
      submit: 'Rename',
      accept: (title) => column.updateDefinition({ title }).then(() => this.#onChange()),
      done: () => this.focus(),
    });
  }

  /** A letter typed on a selected cell replaces its content, as in any spreadsheet. */
  #typeOver = (event) => {
    if (!printable(event) || event.target.matches('input, textarea')) return;
    const range = this.#range();
    const cell = range && range.getCells()[0] && range.getCells()[0][0];
    if (!cell || !cell.getField()) return;
    event.preventDefault();
    event.stopPropagation();
    cell.edit(true);
    const input = cell.getElement().querySelector('input');
    if (input) input.value = event.key;
  };
}
