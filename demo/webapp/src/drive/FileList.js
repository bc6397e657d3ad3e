import crelt from 'crelt';
import { documentKind, sizeText, sorted } from './driveItems.js';

const shownTime = new Intl.DateTimeFormat('en', { dateStyle: 'medium', timeStyle: 'short' });

function icon(item) {
  if (item.type === 'folder') return crelt('span', { class: 'folder-icon', 'aria-hidden': 'true' });
  const kind = documentKind(item);
  return crelt('img', { src: `/static/icon-${kind === 'w' || kind === 's' ? kind : 'other'}.svg`, alt: '', width: 22, height: 22 });
}

function row(item) {
  const time = Number(item.mtime);
  return crelt('div', { class: 'row', role: 'row', tabindex: '-1', 'aria-selected': 'false', 'data-id': item.id, 'data-type': item.type },
    crelt('span', { role: 'gridcell', class: 'check' },
      crelt('input', { type: 'checkbox', tabindex: '-1', 'aria-label': `Select ${item.name}` })),
    crelt('span', { role: 'gridcell', class: 'name' }, icon(item), crelt('span', { class: 'label', title: item.name }, item.name)),
    crelt('span', { role: 'gridcell', class: 'size' }, item.type === 'folder' ? '' : sizeText(item.size)),
    crelt('span', { role: 'gridcell', class: 'time' }, time > 0 ? shownTime.format(new Date(time)) : ''));
}

/**
 * The items of a folder, some of them selected. Arrows move, space selects, enter opens. The rows carry the item's id
 * ("data-id"); a long list is laid out only where it is seen.
 */
export class FileList {
  #items = new Map();
  /** The rows that are shown, with what they show: a row whose item is as before stays. */
  #shown = new Map();
  #selected = new Set();
  #onOpen;
  #onSelection;
  #all = crelt('input', { type: 'checkbox', 'aria-label': 'Select everything' });
  #rows = crelt('div', { class: 'rows', role: 'rowgroup' });

  /** @param {{onOpen: (item: object) => void, onSelection: () => void}} listeners */
  constructor({ onOpen, onSelection }) {
    this.#onOpen = onOpen;
    this.#onSelection = onSelection;
    const head = crelt('div', { class: 'row head', role: 'row' },
      crelt('span', { role: 'columnheader', class: 'check' }, this.#all),
      ['name', 'size', 'time'].map((name, index) => crelt('span', { role: 'columnheader', class: name }, ['Name', 'Size', 'Changed'][index])));
    this.dom = crelt('div', { class: 'file-list', role: 'grid', 'aria-multiselectable': 'true', 'aria-label': 'Files' }, head, this.#rows);
    this.#all.addEventListener('change', () => this.#selectAll(this.#all.checked));
    this.#rows.addEventListener('click', (event) => this.#onClick(event));
    this.#rows.addEventListener('dblclick', (event) => this.#openRow(event.target.closest('.row')));
    this.#rows.addEventListener('keydown', (event) => this.#onKey(event));
  }

  get selection() {
    return [...this.#selected].map((id) => this.#items.get(id));
  }

  item(id) {
    return this.#items.get(id);
  }

  get isEmpty() {
    return this.#items.size === 0;
  }

  /** Shows other items; what is still there stays selected and keeps the focus. */
  show(items) {
    const focused = this.#rows.contains(document.activeElement) ? document.activeElement.dataset.id : null;
    this.#items = new Map(sorted(items).map((item) => [String(item.id), { ...item, id: String(item.id) }]));
    this.#selected = new Set([...this.#selected].filter((id) => this.#items.has(id)));
    this.#shown = new Map([...this.#items].map(([id, item]) => [id, this.#kept(id, item)]));
    this.#place([...this.#shown.values()].map((each) => each.row));
    this.#selected.forEach((id) => this.#mark(this.#row(id), true));
    const before = this.#rows.querySelector('[tabindex="0"]');
    const first = (focused && this.#row(focused)) || before || this.#rows.firstElementChild;
    if (first) first.tabIndex = 0;
    if (focused && first) first.focus({ preventScroll: true });
    this.#changed();
  }

  focus() {
    const row = this.#rows.querySelector('[tabindex="0"]');
    if (row) row.focus();
  }

  #kept(id, item) {
    const content = JSON.stringify([item.name, item.type, item.size, item.mtime, item.groupid]);
    const before = this.#shown.get(id);
    return before && before.content === content ? before : { content, row: row(item) };
  }

  /** Only what is new moves: the rest of a long list costs nothing. */
  #place(rows) {
    const wanted = new Set(rows);
    [...this.#rows.children].filter((each) => !wanted.has(each)).forEach((each) => each.remove());
    let next = this.#rows.firstElementChild;
    for (const each of rows) {
      if (each === next) next = next.nextElementSibling;
      else this.#rows.insertBefore(each, next);
    }
  }

  #row(id) {
    const shown = this.#shown.get(id);
    return shown ? shown.row : null;
  }

  #mark(row, isSelected) {
    if (row.getAttribute('aria-selected') === String(isSelected)) return;
    row.setAttribute('aria-selected', String(isSelected));
    row.querySelector('input').checked = isSelected;
  }

  #select(row, isSelected) {
    this.#mark(row, isSelected);
    if (isSelected) this.#selected.add(row.dataset.id);
    else this.#selected.delete(row.dataset.id);
  }

  #selectAll(isSelected) {
    [...this.#rows.children].forEach((row) => this.#select(row, isSelected));
    this.#changed();
  }

  #changed() {
    this.#all.checked = this.#items.size > 0 && this.#selected.size === this.#items.size;
    this.#all.indeterminate = this.#selected.size > 0 && !this.#all.checked;
    this.#onSelection();
  }

  #moveTo(row) {
    const before = this.#rows.querySelector('[tabindex="0"]');
    if (before) before.tabIndex = -1;
    row.tabIndex = 0;
    row.focus();
  }

  #openRow(row) {
    if (row) this.#onOpen(this.#items.get(row.dataset.id));
  }

  #onClick({ target }) {
    const row = target.closest('.row');
    if (!row) return;
    if (target.matches('.label')) {
      this.#openRow(row);
      return;
    }
    this.#select(row, row.getAttribute('aria-selected') !== 'true');
    this.#moveTo(row);
    this.#changed();
  }

  #onKey(event) {
    const row = event.target.closest('.row');
    const steps = {
      ArrowDown: () => row.nextElementSibling && this.#moveTo(row.nextElementSibling),
      ArrowUp: () => row.previousElementSibling && this.#moveTo(row.previousElementSibling),
      Home: () => this.#moveTo(this.#rows.firstElementChild),
      End: () => this.#moveTo(this.#rows.lastElementChild),
      Enter: () => this.#openRow(row),
      ' ': () => {
        this.#select(row, row.getAttribute('aria-selected') !== 'true');
        this.#changed();
      },
    };
    const all = (event.ctrlKey || event.metaKey) && event.key.toLowerCase() === 'a';
    const step = all ? () => this.#selectAll(true) : steps[event.key];
    if (!row || !step) return;
    event.preventDefault();
    step();
  }
}
