import { DOMSerializer, Slice } from 'prosemirror-model';
import { NodeSelection } from 'prosemirror-state';
import { textSchema } from './schema.js';

function fromFragment(view, { kind, slice }) {
  if (kind !== 'text') return false;
  try {
    const change = view.state.tr.replaceSelection(Slice.fromJSON(textSchema, slice));
    change.doc.check();
    view.dispatch(change.scrollIntoView().setMeta('paste', true));
    return true;
  } catch {
    return false;
  }
}

function holdsText(html) {
  const { body } = new window.DOMParser().parseFromString(html, 'text/html');
  return body.textContent.trim() !== '';
}

/**
 * What the services around the text editor need of it; see `ui/DesktopLink.js`.
 * @param {import('prosemirror-view').EditorView} view
 */
export function textTools(view, { onRefresh }) {
  const selectedText = () => {
    const { from, to } = view.state.selection;
    return view.state.doc.textBetween(from, to, '\n\n', '\n');
  };
  return {
    kind: 'text',
    /** Code blocks are editors of their own. */
    handles: (target) => view.dom.contains(target) && !target.closest('.cm-editor'),
    focus: () => view.focus(),
    refresh: onRefresh,
    selectedText,

    copy() {
      const { selection } = view.state;
      if (selection.empty) return null;
      const { dom, text, slice } = view.serializeForClipboard(selection.content());
      const picture = selection instanceof NodeSelection && selection.node.type === textSchema.nodes.image;
      return {
        text,
        html: dom.innerHTML,
        fragment: { kind: 'text', slice: slice.toJSON() },
        image: picture ? selection.node.attrs.src : null,
      };
    },

    remove() {
      view.dispatch(view.state.tr.deleteSelection().scrollIntoView().setMeta('uiEvent', 'cut'));
    },

    /** @returns {boolean} whether something of the content could be taken */
    paste({ fragment, html, text, image }, { plain = false } = {}) {
      if (plain) return text !== '' && view.pasteText(text) !== false;
      if (fragment && fromFragment(view, fragment)) return true;
      // A table becomes lines with tabs: this editor has no tables.
      if (fragment && fragment.kind === 'table' && text) return view.pasteText(text) !== false;
      if (html && (!image || holdsText(html))) return view.pasteHTML(html) !== false;
      if (image) {
        view.dispatch(view.state.tr.replaceSelectionWith(textSchema.nodes.image.create({ src: image }), false).scrollIntoView());
        return true;
      }
      return text !== '' && view.pasteText(text) !== false;
    },

    printBody() {
      const place = document.createElement('div');
      place.append(DOMSerializer.fromSchema(textSchema).serializeFragment(view.state.doc.content));
      return place.innerHTML;
    },
  };
}
