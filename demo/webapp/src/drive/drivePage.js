import crelt from 'crelt';
import { mountAccountCorner } from '../account/AccountCorner.js';
import { NativeSide } from '../document/NativeSide.js';
import { watchFailures } from '../ui/watchFailures.js';
import { BrowserTransport } from './BrowserTransport.js';
import { DriveApi } from './DriveApi.js';
import { DriveScreen } from './DriveScreen.js';
import { makeDropTarget } from './dropTarget.js';
import { ShellTransport } from './ShellTransport.js';
import { TransferStrip } from './TransferStrip.js';

const refreshMs = 3000;
const native = new NativeSide(window);
const api = new DriveApi((url, init) => window.fetch(url, init));
const main = document.getElementById('drive');
let lastRefresh = 0;

function chooseFiles({ folder, multiple }) {
  return new Promise((resolve) => {
    const input = crelt('input', { type: 'file', hidden: 'hidden' });
    input.multiple = multiple;
    input.webkitdirectory = folder;
    input.addEventListener('change', () => input.files.length > 0 && resolve(input.files));
    input.click();
  });
}

function save(url, name) {
  const link = crelt('a', { href: url, download: name, hidden: 'hidden' });
  document.body.append(link);
  link.click();
  link.remove();
}

function refreshAfter({ finished }) {
  if (!finished && Date.now() - lastRefresh < refreshMs) return;
  lastRefresh = Date.now();
  screen.load();
}

const listeners = {
  onUploads(transfers) {
    strips.uploads.show(transfers);
    refreshAfter(transfers);
  },
  onDownloads: (transfers) => strips.downloads.show(transfers),
  onProblem: (text) => screen.tell(text),
};

// The script object is there before the page's scripts run; a page without it is one of a plain browser.
const transport = native.present ? new ShellTransport(native, listeners) : new BrowserTransport(api, { chooseFiles, save }, listeners);
const strips = {
  uploads: new TransferStrip('Uploads', native.present ? () => transport.showUploads() : null),
  downloads: new TransferStrip('Downloads', native.present ? () => transport.showDownloads() : null),
};
const screen = new DriveScreen({ window, api, native, transport, notices: document.getElementById('notices') });

main.replaceChildren(screen.dom, crelt('div', { class: 'strips' }, strips.uploads.dom, strips.downloads.dom));
makeDropTarget({ host: main, native, transport: () => transport, place: () => screen.place, onProblem: (text) => screen.tell(text) });
watchFailures(window, (text) => screen.tell(`Something in this page failed: ${text}.`));
mountAccountCorner({ native, header: document.querySelector('.title-bar'), notify: (text) => screen.tell(text), onChange: () => screen.load() });
window.__DRIVE_STARTED__ = true;
screen.load();
