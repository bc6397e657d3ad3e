import crelt from 'crelt';
import { mountAccountCorner } from '../account/AccountCorner.js';
import { NativeSide } from '../document/NativeSide.js';
import { parseLocation } from '../document/location.js';
import { EditorClipboard } from './EditorClipboard.js';
import { SuitePrinting } from './SuitePrinting.js';

const native = new NativeSide(window);
const notify = (text) => window.skyleafDocs.notify({ id: 'desktop', text });
const printing = new SuitePrinting({ native, fetchFn: (url, init) => window.fetch(url, init), notify });
let corner = null;
let current = null;

function fileId() {
  return parseLocation(window.location).fileId || '';
}

async function replyOf(method, args) {
  try {
    return await native.call(method, args);
  } catch {
    return {};
  }
}

/** Hands the selected text to the assistant in the suite's dock panel. */
async function askAssistant() {
  if (current === null) return;
  const text = current.tools.selectedText();
  if (text === '') {
    notify('Select the text that the assistant is to get.');
    return;
  }
  const { task_id: taskId = '' } = await replyOf('docs.sorrel.generateTaskId');
  const data = { taskId, action: 'ask', fileId: fileId(), fileName: current.fileName, text };
  const reply = await replyOf('docs.sorrel.notifyDockPanelSorrelMsg', { source: 'editor', data });
  if (reply.success !== true) notify('The assistant did not take the text.');
}

/** The corner of the title bar outlives the editors. */
async function makeCorner() {
  const header = document.querySelector('.title-bar');
  await mountAccountCorner({ native, header, notify });
  const { result } = await replyOf('docs.sorrel.isDockPanelEntryVisible');
  const place = header.querySelector('.corner');
  if (result !== true || !place) return;
  const button = { type: 'button', title: 'Send the selected text to the assistant', onclick: askAssistant };
  // The selection is what it is about: the button does not take it away.
  const keep = (event) => event.preventDefault();
  place.prepend(crelt('button', { ...button, onmousedown: keep }, 'Ask the assistant'));
}

async function print({ tools, fileName }) {
  if (await printing.isSupported()) await printing.print({ fileId: fileId(), fileName, body: tools.printBody() });
  else if (native.present) notify('Printing documents is switched off in this suite.');
  else window.print();
}

async function sendFile({ fileName }) {
  const reply = await replyOf('sendFile', { fileId: fileId(), fileName });
  if (reply.result !== true) notify('The window that sends files could not be opened.');
}

/**
 * Links an editor with the services of the desktop side, and with the browser's clipboard where there is none.
 * @param {{host: HTMLElement, tools: object, fileName: string}} editor see `ui/DesktopLink.js`
 */
export function linkEditor({ host, tools, fileName }) {
  const editor = { tools, fileName };
  const clipboard = new EditorClipboard({ native, host, tools, notify });
  const printByKey = (event) => {
    if (!(event.ctrlKey || event.metaKey) || event.shiftKey || event.altKey || event.key.toLowerCase() !== 'p') return;
    event.preventDefault();
    print(editor);
  };
  window.addEventListener('keydown', printByKey);
  current = editor;
  corner = corner || makeCorner();
  const link = {
    canSend: false,
    copy: () => clipboard.copy(),
    cut: () => clipboard.cut(),
    paste: () => clipboard.paste(),
    pastePlain: () => clipboard.paste({ plain: true }),
    print: () => print(editor),
    sendFile: () => sendFile(editor),
    end() {
      clipboard.end();
      window.removeEventListener('keydown', printByKey);
      if (current === editor) current = null;
    },
  };
  corner.then(async () => {
    link.canSend = (await replyOf('isSupportSendFile')).result === true;
    if (current === editor && link.canSend) tools.refresh();
  });
  return link;
}
