import { MenuItem } from 'prosemirror-menu';
import { chooseFile, downloadBlob, tellFailure, withExtension } from '../ui/files.js';
import { loadPart } from '../ui/parts.js';
import { readableFiles, readTextFile } from './fileImport.js';

function item(label, run) {
  return new MenuItem({ label, title: label, run: (state, _dispatch, view) => run(view, state) });
}

function endOfSelectedBlock({ selection: { $to } }) {
  return $to.depth > 0 ? $to.after(1) : $to.pos;
}

async function insertFile(view) {
  const file = await chooseFile(readableFiles);
  try {
    const doc = await readTextFile(file);
    view.dispatch(view.state.tr.insert(endOfSelectedBlock(view.state), doc.content).scrollIntoView());
  } catch (error) {
    tellFailure(`"${file.name}" could not be read: ${error.message}`);
  }
  view.focus();
}

/** Makes a file by a part of the front end, and hands it to the browser. */
async function download(part, makeBlob, fileName) {
  try {
    downloadBlob(await makeBlob(await loadPart(part)), fileName);
  } catch (error) {
    tellFailure(`The file could not be made: ${error.message}`);
  }
}

const downloadDocx = (doc, fileName) => download('textFiles', ({ docxBlob }) => docxBlob(doc), withExtension(fileName, 'docx'));

function downloadMarkdown(doc, fileName) {
  const markdownBlob = ({ markdownFromContent }) =>
    new Blob([markdownFromContent(doc.toJSON())], { type: 'text/markdown;charset=utf-8' });
  return download('markdown', markdownBlob, withExtension(fileName, 'md'));
}

/**
 * The menu items that deal with files, and with what comes from or goes to other programs.
 * @param {() => import('../ui/DesktopLink.js').DesktopLink | null} desktop null as long as the editor is being made
 */
export function fileActions(fileName, desktop) {
  const command = (label, name) => item(label, () => desktop().run(name));
  const canSend = () => desktop() !== null && desktop().canSend;
  return {
    edit: [
      command('Cut (Ctrl+X)', 'cut'),
      command('Copy (Ctrl+C)', 'copy'),
      command('Paste (Ctrl+V)', 'paste'),
      command('Paste as plain text (Ctrl+Shift+V)', 'pastePlain'),
    ],
    file: [
      item('Download as .docx', (_view, state) => downloadDocx(state.doc, fileName)),
      item('Download as Markdown', (_view, state) => downloadMarkdown(state.doc, fileName)),
      command('Print… (Ctrl+P)', 'print'),
      new MenuItem({ label: 'Send file…', title: 'Send the file to somebody', enable: canSend, run: () => desktop().run('sendFile') }),
    ],
    insert: [item('Text from a file (.docx, .md, .html)…', (view) => insertFile(view))],
  };
}
