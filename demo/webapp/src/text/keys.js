import { baseKeymap, chainCommands, exitCode, setBlockType, toggleMark, wrapIn } from 'prosemirror-commands';
import { redo, undo } from 'prosemirror-history';
import {
  ellipsis, emDash, inputRules, smartQuotes, textblockTypeInputRule, undoInputRule, wrappingInputRule,
} from 'prosemirror-inputrules';
import { keymap } from 'prosemirror-keymap';
import { liftListItem, sinkListItem, splitListItem, wrapInList } from 'prosemirror-schema-list';
import { textSchema } from './schema.js';

const { nodes, marks } = textSchema;

const insertBreak = chainCommands(exitCode, (state, dispatch) => {
  if (dispatch) dispatch(state.tr.replaceSelectionWith(nodes.hard_break.create()).scrollIntoView());
  return true;
});

function headingKeys() {
  const keys = { 'Mod-Alt-0': setBlockType(nodes.paragraph) };
  for (let level = 1; level <= 6; ++level) keys[`Mod-Alt-${level}`] = setBlockType(nodes.heading, { level });
  return keys;
}

export const textKeymaps = [
  keymap({
    'Mod-z': undo,
    'Mod-y': redo,
    'Shift-Mod-z': redo,
    Backspace: undoInputRule,
    'Mod-b': toggleMark(marks.strong),
    'Mod-i': toggleMark(marks.em),
    'Mod-`': toggleMark(marks.code),
    'Shift-Mod-7': wrapInList(nodes.ordered_list),
    'Shift-Mod-8': wrapInList(nodes.bullet_list),
    'Shift-Mod-9': wrapIn(nodes.blockquote),
    Enter: splitListItem(nodes.list_item),
    Tab: sinkListItem(nodes.list_item),
    'Shift-Tab': liftListItem(nodes.list_item),
    'Shift-Enter': insertBreak,
    'Mod-Enter': insertBreak,
    ...headingKeys(),
  }),
  keymap(baseKeymap),
];

/** What typing turns into: "# " a heading, "- " a list, quotes and dashes, "```" a code block. */
export const textInputRules = inputRules({
  rules: [
    ...smartQuotes, ellipsis, emDash,
    wrappingInputRule(/^\s*>\s$/, nodes.blockquote),
    wrappingInputRule(/^\s*([-+*])\s$/, nodes.bullet_list),
    wrappingInputRule(
      /^(\d+)\.\s$/, nodes.ordered_list,
      (match) => ({ order: Number(match[1]) }),
      (match, node) => node.childCount + node.attrs.order === Number(match[1]),
    ),
    textblockTypeInputRule(/^```(\w*)\s$/, nodes.code_block, (match) => ({ params: match[1] })),
    textblockTypeInputRule(/^(#{1,6})\s$/, nodes.heading, (match) => ({ level: match[1].length })),
  ],
});
