import crelt from 'crelt';
import { askForText } from '../ui/askForText.js';
import { DesktopLink } from '../ui/DesktopLink.js';
import { chooseFile, downloadBlob, tellFailure, withExtension } from '../ui/files.js';
import { loadPart } from '../ui/parts.js';
import { ChartPanel } from './ChartPanel.js';
import { SheetGrid } from './SheetGrid.js';
import { blankSheet, selectionSummary, sheetsFromContent } from './tableContent.js';
import { tableTools } from './tableTools.js';

/** The sheets of a table, one of them in the grid, with a tool bar above and the sheet tabs below. */
class TableEditor {
  #content;
  #sheets;
  #current = 0;
  #grid = null;
  #onChange;
  #fileName;
  #place = crelt('div', { class: 'grid-place' });
  #tabs = crelt('div', { class: 'sheet-tabs', role: 'tablist' });
  #summary = crelt('div', { class: 'selection-summary', role: 'status' });
  #chart = new ChartPanel(() => this.#grid.selection());
  #send = crelt('button', { type: 'button', title: 'Send the file to somebody', onclick: () => this.#desktop.run('sendFile') }, 'Send…');
  #desktop;

  constructor(host, content, { onChange, fileName }) {
    this.#content = content;
    this.#sheets = sheetsFromContent(content);
    this.#fileName = fileName;
    this.#onChange = () => {
      onChange();
      this.#chart.draw();
    };
    const middle = crelt('div', { class: 'grid-and-chart' }, this.#place, this.#chart.dom);
    host.append(this.#toolBar(), middle, crelt('div', { class: 'sheet-bar' }, this.#tabs, this.#summary));
    this.#open(0);
    this.#send.disabled = true;
    const tools = tableTools({
      grid: () => this.#grid,
      sheets: () => this.#currentSheets(),
      onRefresh: () => (this.#send.disabled = !this.#desktop.canSend),
    });
    this.#desktop = new DesktopLink({ host, tools, fileName });
  }

  content() {
    return { ...this.#content, sheets: this.#currentSheets() };
  }

  commit() {
    this.#grid.commit();
  }

  focus() {
    this.#grid.focus();
  }

  /** Resolves when the grid stands and takes input: it is built after the mount returns. */
  get ready() {
    return this.#grid.built;
  }

  destroy() {
    this.#desktop.end();
    this.#chart.destroy();
    this.#grid.destroy();
  }

  #currentSheets() {
    return this.#sheets.map((sheet, index) => (index === this.#current ? { ...this.#grid.sheet(), name: sheet.name } : sheet));
  }

  #open(index) {
    if (this.#grid) {
      this.#grid.commit();
      this.#sheets = this.#currentSheets();
      this.#grid.destroy();
    }
    this.#current = index;
    const host = crelt('div', { class: 'grid' });
    this.#place.replaceChildren(host);
    this.#grid = new SheetGrid(host, this.#sheets[index], { onChange: this.#onChange, onSelection: () => this.#summarise() });
    this.#summary.textContent = '';
    this.#showTabs();
  }

  #summarise() {
    const { rows, whole } = this.#grid.selection();
    this.#summary.textContent = whole ? '' : selectionSummary(rows.flat());
    this.#chart.draw();
  }

  #showTabs() {
    const tabs = this.#sheets.map(({ name }, index) => crelt('button', {
      type: 'button',
      role: 'tab',
      'aria-selected': String(index === this.#current),
      title: 'Double click to rename',
      onclick: () => index !== this.#current && this.#open(index),
      ondblclick: () => this.#rename(index),
    }, name));
    const add = crelt('button', { type: 'button', title: 'New sheet', onclick: () => this.#addSheets([this.#newSheet()]) }, '+');
    this.#tabs.replaceChildren(...tabs, add);
  }

  #newSheet() {
    return blankSheet(`Sheet ${this.#sheets.length + 1}`);
  }

  #addSheets(sheets) {
    const first = this.#sheets.length;
    this.#sheets = [...this.#currentSheets(), ...sheets];
    this.#open(first);
    this.#onChange();
  }

  #rename(index) {
    const accept = (name) => {
      this.#sheets = this.#sheets.map((sheet, at) => (at === index ? { ...sheet, name: name.trim() } : sheet));
      this.#showTabs();
      this.#onChange();
    };
    const problem = (name) => (name.trim() === '' ? 'A sheet needs a name.' : null);
    askForText({ label: 'Sheet name', value: this.#sheets[index].name, submit: 'Rename', problem, accept });
  }

  async #download() {
    try {
      const { spreadsheetBlob } = await loadPart('tableFiles');
      downloadBlob(await spreadsheetBlob(this.#currentSheets()), withExtension(this.#fileName, 'xlsx'));
    } catch (error) {
      tellFailure(`The file could not be made: ${error.message}`);
    }
  }

  async #import() {
    const file = await chooseFile('.xlsx');
    try {
      const { readSpreadsheet } = await loadPart('tableFiles');
      this.#addSheets(await readSpreadsheet(file));
    } catch (error) {
      tellFailure(`"${file.name}" could not be read: ${error.message}`);
    }
  }

  #toolBar() {
    const button = (label, title, onclick) => crelt('button', { type: 'button', title, onclick }, label);
    const group = (...buttons) => crelt('div', { class: 'tool-group' }, buttons);
    return crelt('div', { class: 'tool-bar', role: 'toolbar', 'aria-label': 'Table' },
      group(button('Undo', 'Undo (Ctrl+Z)', () => this.#grid.undo()), button('Redo', 'Redo (Ctrl+Y)', () => this.#grid.redo())),
      group(
        button('Cut', 'Cut (Ctrl+X)', () => this.#desktop.run('cut')),
        button('Copy', 'Copy (Ctrl+C)', () => this.#desktop.run('copy')),
        button('Paste', 'Paste (Ctrl+V)', () => this.#desktop.run('paste')),
        button('Paste text', 'Paste as plain text (Ctrl+Shift+V)', () => this.#desktop.run('pastePlain')),
      ),
      group(
        button('Add row', 'Insert a row below the selection', () => this.#grid.addRow()),
        button('Delete rows', 'Delete the selected rows', () => this.#grid.deleteRows()),
      ),
      group(
        button('Add column', 'Insert a column right of the selection', () => this.#grid.addColumn()),
        button('Delete columns', 'Delete the selected columns', () => this.#grid.deleteColumns()),
      ),
      group(button('Chart', 'Chart of the selected cells', () => this.#chart.toggle())),
      group(
        button('Insert .xlsx…', 'Add the sheets of a file', () => this.#import()),
        button('Download .xlsx', 'Download the table as a file', () => this.#download()),
        button('Print…', 'Print (Ctrl+P)', () => this.#desktop.run('print')),
        this.#send,
      ));
  }
}

/**
 * Puts a table editor into `host`.
 * @throws {Error} when the content is no table
 */
export function mountTableEditor(host, content, options) {
  return new TableEditor(host, content, options);
}
