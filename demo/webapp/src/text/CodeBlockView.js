import { defaultKeymap } from '@codemirror/commands';
import { defaultHighlightStyle, LanguageDescription, syntaxHighlighting } from '@codemirror/language';
import { languages } from '@codemirror/language-data';
import { Compartment } from '@codemirror/state';
import { drawSelection, EditorView as CodeView, keymap } from '@codemirror/view';
import crelt from 'crelt';
import { exitCode } from 'prosemirror-commands';
import { redo, undo } from 'prosemirror-history';
import { Selection, TextSelection } from 'prosemirror-state';

function languageChooser(choose) {
  const options = [crelt('option', { value: '' }, 'Plain'), ...languages.map(({ name }) => crelt('option', { value: name }, name))];
  const select = crelt('select', { 'aria-label': 'Language of the code' }, ...options);
  select.addEventListener('change', () => choose(select.value));
  return select;
}

/**
 * Shows a code block as a code editor with highlighting. The outer document stays the truth: edits are forwarded as
 * its transactions, its changes are applied to the code editor, and the arrow keys leave the block at its ends.
 */
export class CodeBlockView {
  #node;
  #outer;
  #position;
  #code;
  #chooser;
  #closed = false;
  #language = new Compartment();
  #updating = false;

  constructor(node, outer, position) {
    this.#node = node;
    this.#outer = outer;
    this.#position = position;
    this.#code = new CodeView({
      doc: node.textContent,
      extensions: [
        keymap.of([...this.#leavingKeys(), ...defaultKeymap]),
        drawSelection(),
        syntaxHighlighting(defaultHighlightStyle),
        this.#language.of([]),
        CodeView.updateListener.of((update) => this.#forward(update)),
      ],
    });
    this.#chooser = languageChooser((name) => this.#chooseLanguage(name));
    this.dom = crelt('div', { class: 'code-block' }, this.#chooser, this.#code.dom);
    this.#showLanguage();
  }

  /** Called by the outer editor when the node changed. */
  update(node) {
    if (node.type !== this.#node.type) return false;
    const isOtherLanguage = node.attrs.params !== this.#node.attrs.params;
    this.#node = node;
    if (isOtherLanguage) this.#showLanguage();
    if (this.#updating) return true;
    const next = node.textContent;
    const now = this.#code.state.doc.toString();
    if (next === now) return true;
    let start = 0;
    while (start < Math.min(now.length, next.length) && now[start] === next[start]) ++start;
    let nowEnd = now.length;
    let nextEnd = next.length;
    while (nowEnd > start && nextEnd > start && now[nowEnd - 1] === next[nextEnd - 1]) {
      --nowEnd;
      --nextEnd;
    }
    this.#updating = true;
    this.#code.dispatch({ changes: { from: start, to: nowEnd, insert: next.slice(start, nextEnd) } });
    this.#updating = false;
    return true;
  }

  setSelection(anchor, head) {
    this.#code.focus();
    this.#updating = true;
    this.#code.dispatch({ selection: { anchor, head } });
    this.#updating = false;
  }

  selectNode() {
    this.#code.focus();
  }

  stopEvent() {
    return true;
  }

  ignoreMutation() {
    return true;
  }

  destroy() {
    this.#closed = true;
    this.#code.destroy();
  }

  async #showLanguage() {
    const name = this.#node.attrs.params;
    const description = name ? LanguageDescription.matchLanguageName(languages, name, true) : null;
    this.#chooser.value = description ? description.name : '';
    const support = description ? await description.load() : [];
    if (!this.#closed && name === this.#node.attrs.params) this.#code.dispatch({ effects: this.#language.reconfigure(support) });
  }

  #chooseLanguage(name) {
    const { state, dispatch } = this.#outer;
    dispatch(state.tr.setNodeAttribute(this.#position(), 'params', name));
    this.#code.focus();
  }

  #forward(update) {
    if (this.#updating || (!update.docChanged && !this.#code.hasFocus)) return;
    let offset = this.#position() + 1;
    const { main } = update.state.selection;
    const from = offset + main.from;
    const to = offset + main.to;
    const outerSelection = this.#outer.state.selection;
    if (!update.docChanged && outerSelection.from === from && outerSelection.to === to) return;
    const transaction = this.#outer.state.tr;
    update.changes.iterChanges((fromA, toA, fromB, toB, text) => {
      const { schema } = this.#outer.state;
      if (text.length > 0) transaction.replaceWith(offset + fromA, offset + toA, schema.text(text.toString()));
      else transaction.delete(offset + fromA, offset + toA);
      offset += toB - fromB - (toA - fromA);
    });
    transaction.setSelection(TextSelection.create(transaction.doc, from, to));
    this.#updating = true;
    this.#outer.dispatch(transaction);
    this.#updating = false;
  }

  #leavingKeys() {
    const outer = this.#outer;
    return [
      { key: 'ArrowUp', run: () => this.#leave('line', -1) },
      { key: 'ArrowLeft', run: () => this.#leave('char', -1) },
      { key: 'ArrowDown', run: () => this.#leave('line', 1) },
      { key: 'ArrowRight', run: () => this.#leave('char', 1) },
      { key: 'Backspace', run: () => this.#removeEmpty() },
      { key: 'Mod-z', run: () => undo(outer.state, outer.dispatch) },
      { key: 'Mod-y', run: () => redo(outer.state, outer.dispatch) },
      { key: 'Mod-Shift-z', run: () => redo(outer.state, outer.dispatch) },
      { key: 'Mod-Enter', run: () => exitCode(outer.state, outer.dispatch) && (outer.focus(), true) },
    ];
  }

  #leave(unit, direction) {
    const { state } = this.#code;
    let { main } = state.selection;
    if (!main.empty) return false;
    if (unit === 'line') main = state.doc.lineAt(main.head);
    if (direction < 0 ? main.from > 0 : main.to < state.doc.length) return false;
    const target = this.#position() + (direction < 0 ? 0 : this.#node.nodeSize);
    const outer = this.#outer;
    const selection = Selection.near(outer.state.doc.resolve(target), direction);
    outer.dispatch(outer.state.tr.setSelection(selection).scrollIntoView());
    outer.focus();
    return true;
  }

  #removeEmpty() {
    if (this.#code.state.doc.length > 0) return false;
    const { state, dispatch } = this.#outer;
    const position = this.#position();
    const { paragraph } = state.schema.nodes;
    dispatch(state.tr.replaceWith(position, position + this.#node.nodeSize, paragraph.create()));
    this.#outer.focus();
    return true;
  }
}
