import crelt from 'crelt';

/**
 * A button that opens a menu below it: arrows move, escape and clicks elsewhere close it.
 * @typedef {{label: string, run: () => void, checked?: boolean | null, disabled?: boolean, keepOpen?: boolean}} Entry
 *   checked makes a switch of it; null: its state is not known
 */
export class Menu {
  #entries;
  #button;
  #list = crelt('div', { class: 'menu-list', role: 'menu' });
  #note = crelt('p', { class: 'menu-note', role: 'status' });
  #panel = crelt('div', { class: 'menu-panel' }, this.#list, this.#note);

  /** @param {() => Entry[]} entries what the menu holds, asked for each time it opens or is to be shown again */
  constructor(label, entries) {
    this.#entries = entries;
    this.#button = crelt('button', { type: 'button', 'aria-haspopup': 'menu', 'aria-expanded': 'false' }, label);
    this.dom = crelt('div', { class: 'menu' }, this.#button, this.#panel);
    this.#panel.hidden = true;
    this.#button.addEventListener('click', () => (this.isOpen ? this.close() : this.#open()));
    this.dom.addEventListener('keydown', (event) => this.#onKey(event));
    this.dom.addEventListener('focusout', ({ relatedTarget }) => relatedTarget && !this.dom.contains(relatedTarget) && this.close(false));
    document.addEventListener('pointerdown', ({ target }) => !this.dom.contains(target) && this.close(false));
  }

  get isOpen() {
    return !this.#panel.hidden;
  }

  setLabel(text) {
    this.#button.textContent = text;
  }

  note(text) {
    this.#note.textContent = text;
  }

  /** Shows the entries as they are now. */
  refresh() {
    if (!this.isOpen) return;
    const at = [...this.#list.children].indexOf(document.activeElement);
    this.#fill();
    if (at >= 0) this.#list.children[Math.min(at, this.#list.children.length - 1)].focus();
  }

  close(toButton = true) {
    if (!this.isOpen) return;
    this.#panel.hidden = true;
    this.#button.setAttribute('aria-expanded', 'false');
    if (toButton) this.#button.focus();
  }

  #open() {
    this.#note.textContent = '';
    this.#panel.hidden = false;
    this.#button.setAttribute('aria-expanded', 'true');
    this.#fill();
    const first = this.#list.querySelector('button:not([disabled])');
    if (first) first.focus();
  }

  #fill() {
    this.#list.replaceChildren(...this.#entries().map(({ label, run, checked, disabled = false, keepOpen = false }) => {
      const isSwitch = checked !== undefined;
      const button = crelt('button', { type: 'button', role: isSwitch ? 'menuitemcheckbox' : 'menuitem' }, label);
      if (isSwitch) button.setAttribute('aria-checked', checked === null ? 'mixed' : String(checked));
      button.disabled = disabled;
      button.addEventListener('click', () => {
        if (!keepOpen) this.close();
        run();
      });
      return button;
    }));
  }

  #onKey(event) {
    if (!this.isOpen) return;
    if (event.key === 'Escape') {
      event.stopPropagation();
      this.close();
    }
    const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (!step) return;
    event.preventDefault();
    const items = [...this.#list.querySelectorAll('button:not([disabled])')];
    const at = items.indexOf(document.activeElement);
    const next = items[(at + step + items.length) % items.length];
    if (next) next.focus();
  }
}
