import crelt from 'crelt';
import { summary } from './transferRecords.js';

const longestList = 50;

function stateText(direction, { count, done, active, failed, stopped, percent, hint }) {
  if (active > 0) return `${direction}: ${done} of ${count} · ${percent} %${hint ? ` · ${hint}` : ''}`;
  const parts = [`${done} of ${count} finished`];
  if (failed.length > 0) parts.push(`${failed.length} failed`);
  if (stopped > 0) parts.push(`${stopped} stopped`);
  return `${direction}: ${parts.join(', ')}`;
}

function failureList(failed) {
  const lines = failed.slice(0, longestList).map(({ name, message }) => crelt('li', crelt('b', name), message ? `: ${message}` : ''));
  if (failed.length > longestList) lines.push(crelt('li', `and ${failed.length - longestList} more`));
  return lines;
}

/** How the transfers of one direction are getting on; hidden as long as there are none. */
export class TransferStrip {
  #direction;
  #text = crelt('span', { class: 'strip-text', role: 'status' });
  #bar = crelt('progress', { max: '100', value: '0' });
  #failures = crelt('ul', { class: 'strip-failures', role: 'alert' });
  #shownFailures = '';
  #dismissed = new Set();

  /** @param {string} direction a heading, such as "Uploads" @param {(() => void) | null} showWindow */
  constructor(direction, showWindow) {
    this.#direction = direction;
    this.#bar.setAttribute('aria-label', direction);
    const buttons = [crelt('button', { type: 'button', class: 'close', title: 'Dismiss', onclick: () => this.#dismiss() }, '×')];
    if (showWindow) buttons.unshift(crelt('button', { type: 'button', onclick: showWindow }, 'Show all'));
    this.dom = crelt('section', { class: 'strip', 'aria-label': direction },
      crelt('div', { class: 'strip-line' }, this.#text, this.#bar, buttons), this.#failures);
    this.dom.hidden = true;
  }

  /** @param {import('./transferRecords.js').Transfers} transfers */
  show(transfers) {
    const items = new Map([...transfers.items].filter(([key, { state }]) => state !== 'failed' || !this.#dismissed.has(key)));
    [...transfers.items].forEach(([key, { state }]) => state !== 'failed' && this.#dismissed.delete(key));
    const seen = summary({ items });
    this.dom.hidden = seen.count === 0;
    this.#text.textContent = stateText(this.#direction, seen);
    this.#bar.value = seen.active > 0 ? seen.percent : 100;
    this.dom.classList.toggle('ended', seen.active === 0);
    const shown = JSON.stringify(seen.failed);
    if (shown === this.#shownFailures) return;
    this.#shownFailures = shown;
    this.#failures.replaceChildren(...failureList(seen.failed));
    this.#keys = seen.failed.map(({ key }) => key);
  }

  #keys = [];

  /** Failures that were read are not told again; a strip whose transfers go on comes back with their next report. */
  #dismiss() {
    this.#keys.forEach((key) => this.#dismissed.add(key));
    this.dom.hidden = true;
  }
}
