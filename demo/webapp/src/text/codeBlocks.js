import { DOMSerializer } from 'prosemirror-model';
import { Selection } from 'prosemirror-state';
import { tellFailure } from '../ui/files.js';
import { loadPart } from '../ui/parts.js';

function plainView(node) {
  return DOMSerializer.renderSpec(document, node.type.spec.toDOM(node));
}

async function codeEditorWhenIdle() {
  await new Promise((resolve) => window.requestIdleCallback(resolve, { timeout: 2000 }));
  return loadPart('code');
}

/**
 * How the text editor shows code blocks: as plain text at first, which can be edited like all other text, and with the
 * first of them as code editors, as soon as the page has read those when it had nothing better to do.
 * @param {(nodeViews: object) => void} replaceViews called once, unless the code editor cannot be read
 */
export function codeBlockViews(replaceViews) {
  let asked = false;
  const askOnce = async () => {
    if (asked) return;
    asked = true;
    try {
      const { CodeBlockView } = await codeEditorWhenIdle();
      replaceViews({ code_block: (node, outer, position) => new CodeBlockView(node, outer, position) });
    } catch (error) {
      asked = false;
      tellFailure(`Code is shown without highlighting: ${error.message}`);
    }
  };
  return {
    code_block(node) {
      askOnce();
      return plainView(node);
    },
  };
}

function arrowInto(direction) {
  return (state, dispatch, view) => {
    if (!state.selection.empty || !view.endOfTextblock(direction)) return false;
    const side = direction === 'left' || direction === 'up' ? -1 : 1;
    const { $head } = state.selection;
    const next = Selection.near(state.doc.resolve(side > 0 ? $head.after() : $head.before()), side);
    if (next.$head.parent.type.name !== 'code_block') return false;
    dispatch(state.tr.setSelection(next));
    return true;
  };
}

/** Arrow keys that walk from the text into a code block. */
export const codeBlockKeys = {
  ArrowLeft: arrowInto('left'),
  ArrowRight: arrowInto('right'),
  ArrowUp: arrowInto('up'),
  ArrowDown: arrowInto('down'),
};
