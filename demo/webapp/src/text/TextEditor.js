import { dropCursor } from 'prosemirror-dropcursor';
import { gapCursor } from 'prosemirror-gapcursor';
import { history } from 'prosemirror-history';
import { keymap } from 'prosemirror-keymap';
import { EditorState } from 'prosemirror-state';
import { EditorView } from 'prosemirror-view';
import { DesktopLink } from '../ui/DesktopLink.js';
import { codeBlockKeys, codeBlockViews } from './codeBlocks.js';
import { fileActions } from './fileMenu.js';
import { textInputRules, textKeymaps } from './keys.js';
import { textMenuBar } from './menu.js';
import { documentFromContent } from './schema.js';
import { textTools } from './textTools.js';

/**
 * Puts a text editor into `host`.
 * @throws {Error} when the content is not a text document of this editor's schema
 */
export function mountTextEditor(host, content, { onChange, fileName }) {
  let desktop = null;
  const state = EditorState.create({
    doc: documentFromContent(content),
    plugins: [
      textInputRules, keymap(codeBlockKeys), ...textKeymaps,
      dropCursor(), gapCursor(), history(), textMenuBar(fileActions(fileName, () => desktop)),
    ],
  });
  const view = new EditorView(host, {
    state,
    attributes: { class: 'text-page', 'aria-label': 'Document text', spellcheck: 'true' },
    nodeViews: codeBlockViews((nodeViews) => view.isDestroyed || view.setProps({ nodeViews })),
    dispatchTransaction(transaction) {
      view.updateState(view.state.apply(transaction));
      if (transaction.docChanged) onChange();
    },
  });
  const tools = textTools(view, { onRefresh: () => view.updateState(view.state) });
  desktop = new DesktopLink({ host, tools, fileName });
  return {
    content: () => view.state.doc.toJSON(),
    commit() {},
    focus: () => view.focus(),
    destroy() {
      desktop.end();
      view.destroy();
    },
  };
}
