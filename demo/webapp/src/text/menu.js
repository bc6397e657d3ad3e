import { setBlockType, toggleMark } from 'prosemirror-commands';
import {
  blockTypeItem, Dropdown, icons, liftItem, menuBar, MenuItem, redoItem, undoItem, wrapItem,
} from 'prosemirror-menu';
import { wrapInList } from 'prosemirror-schema-list';
import { askForText } from '../ui/askForText.js';
import { linkTarget } from './linkTarget.js';
import { textSchema } from './schema.js';

const { nodes, marks } = textSchema;

function markIsActive(state, type) {
  const { from, $from, to, empty } = state.selection;
  if (empty) return Boolean(type.isInSet(state.storedMarks || $from.marks()));
  return state.doc.rangeHasMark(from, to, type);
}

function markItem(type, title, icon) {
  const run = toggleMark(type);
  return new MenuItem({ title, icon, run, enable: (state) => run(state), active: (state) => markIsActive(state, type) });
}

function askForLink(view) {
  askForText({
    label: 'Link to',
    value: 'https://',
    submit: 'Set link',
    problem: (text) => (linkTarget(text) === null ? 'This is not a link that can be followed.' : null),
    accept: (text) => toggleMark(marks.link, { href: linkTarget(text) })(view.state, view.dispatch),
    done: () => view.focus(),
  });
}

function linkItem() {
  return new MenuItem({
    title: 'Link',
    icon: icons.link,
    active: (state) => markIsActive(state, marks.link),
    enable: (state) => !state.selection.empty,
    run(state, dispatch, view) {
      if (markIsActive(state, marks.link)) toggleMark(marks.link)(state, dispatch);
      else askForLink(view);
    },
  });
}

function listItem(type, title, icon) {
  const run = wrapInList(type);
  return new MenuItem({ title, icon, run, enable: (state) => run(state) });
}

function styleMenu() {
  const styles = [
    blockTypeItem(nodes.paragraph, { title: 'Plain paragraph', label: 'Paragraph' }),
    ...[1, 2, 3, 4].map((level) => blockTypeItem(nodes.heading, {
      title: `Heading of level ${level}`, label: `Heading ${level}`, attrs: { level }, class: `style-heading-${level}`,
    })),
    blockTypeItem(nodes.code_block, { title: 'Code with highlighting', label: 'Code block' }),
  ];
  return new Dropdown(styles, { label: 'Style', title: 'Paragraph style' });
}

function insertMenu(fileActions) {
  const rule = new MenuItem({
    title: 'Insert a horizontal rule',
    label: 'Horizontal rule',
    enable: (state) => setBlockType(nodes.paragraph)(state) || state.selection.$from.parent.isTextblock,
    run: (state, dispatch) => dispatch(state.tr.replaceSelectionWith(nodes.horizontal_rule.create())),
  });
  return new Dropdown([rule, ...fileActions.insert], { label: 'Insert', title: 'Insert into the text' });
}

/**
 * The bar above the text.
 * @param {{file: MenuItem[], edit: MenuItem[], insert: MenuItem[]}} fileActions see fileMenu.js
 */
export function textMenuBar(fileActions) {
  const file = new Dropdown(fileActions.file, { label: 'File', title: 'Download, print or send' });
  const edit = new Dropdown(fileActions.edit, { label: 'Edit', title: 'Copy and paste' });
  return menuBar({
    floating: false,
    content: [
      [file, edit, insertMenu(fileActions), styleMenu()],
      [undoItem, redoItem],
      [
        markItem(marks.strong, 'Bold (Ctrl+B)', icons.strong),
        markItem(marks.em, 'Italic (Ctrl+I)', icons.em),
        markItem(marks.code, 'Code (Ctrl+`)', icons.code),
        linkItem(),
      ],
      [
        listItem(nodes.bullet_list, 'Bullet list', icons.bulletList),
        listItem(nodes.ordered_list, 'Numbered list', icons.orderedList),
        wrapItem(nodes.blockquote, { title: 'Quotation', icon: icons.blockquote }),
        liftItem,
      ],
    ],
  });
}
