import crelt from 'crelt';

/**
 * What stands around a document: title, save state, notices, the place for the document, and the panel that says
 * what is missing. The elements are in the page's HTML, so that a page whose scripts fail is not blank either.
 */
export class PageFrame {
  #document;

  constructor(owner) {
    this.#document = owner;
  }

  #element(id) {
    const found = this.#document.getElementById(id);
    if (!found) throw new Error(`the page lacks its element "${id}"`);
    return found;
  }

  get place() {
    return this.#element('document-place');
  }

  setTitle(name) {
    this.#document.title = name;
    this.#element('file-name').textContent = name;
  }

  setSaveState(text, tone = 'quiet') {
    const element = this.#element('save-state');
    element.textContent = text;
    element.dataset.tone = tone;
  }

  setStatus(id, text) {
    this.#element(id).textContent = text;
  }

  /** Replaces what is shown in the document's place. The frame's own panel is hidden. */
  show(node) {
    this.hideProblem();
    this.place.replaceChildren(...(node ? [node] : []));
  }

  /** Puts a node into the document's place, out of sight, below what is shown there. */
  insert(node) {
    node.classList.add('arriving');
    this.place.append(node);
  }

  /** Shows a node that was inserted, and takes away everything else in the document's place. */
  reveal(node) {
    this.hideProblem();
    for (const other of [...this.place.children]) {
      if (other !== node) other.remove();
    }
    node.classList.remove('arriving');
  }

  showBusy(text) {
    this.show(crelt('div', { class: 'busy', role: 'status' }, crelt('div', { class: 'spinner' }), text));
  }

  /**
   * Says what is wrong, with a button to try again, above whatever of the document is already shown.
   * @param {{title: string, detail: string, retry: () => void, actions?: {label: string, run: () => void}[]}} problem
   *   actions: what helps more than to try again
   */
  showProblem({ title, detail, retry, actions = [] }) {
    const buttons = [...actions, { label: 'Retry', run: retry }].map(({ label, run }, i) =>
      crelt('button', { class: i === 0 ? 'primary' : '', type: 'button', onclick: run }, label));
    const panel = this.#element('problem');
    const busy = this.place.querySelector('.busy');
    if (busy) busy.remove();
    panel.replaceChildren(
      crelt('h1', title),
      crelt('p', detail),
      crelt('div', { class: 'actions' }, buttons, crelt('a', { href: '/', class: 'button' }, 'All documents')),
    );
    panel.hidden = false;
  }

  hideProblem() {
    this.#element('problem').hidden = true;
  }

  /**
   * A line above the document. A later notice of the same id replaces it.
   * @param {{id: string, text: string, actions?: {label: string, run: () => void}[], closable?: boolean}} notice
   */
  showNotice({ id, text, actions = [], closable = true }) {
    this.hideNotice(id);
    const buttons = actions.map(({ label, run }) => crelt('button', { type: 'button', onclick: run }, label));
    if (closable) {
      const close = { type: 'button', class: 'close', title: 'Dismiss', onclick: () => this.hideNotice(id) };
      buttons.push(crelt('button', close, '×'));
    }
    this.#element('notices').append(crelt('div', { class: 'notice', 'data-notice': id }, crelt('span', text), buttons));
  }

  hideNotice(id) {
    const shown = this.#element('notices').querySelector(`[data-notice="${id}"]`);
    if (shown) shown.remove();
  }

  hideAllNotices() {
    this.#element('notices').replaceChildren();
  }
}
