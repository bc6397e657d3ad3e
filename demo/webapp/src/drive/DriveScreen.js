import crelt from 'crelt';
import { askForText } from '../ui/askForText.js';
import { askToConfirm } from '../ui/askToConfirm.js';
import { FileList } from './FileList.js';
import { downloadIds, hashOf, nameProblem, placeFromHash } from './driveItems.js';
import { openItem } from './openItem.js';

/** The page of the drive: one folder at a time, named by the URL's hash. */
export class DriveScreen {
  #window;
  #api;
  #native;
  #transport;
  #list = new FileList({ onOpen: (item) => this.#open(item), onSelection: () => this.#showSelection() });
  #state = crelt('div', { class: 'folder-state' });
  #path = crelt('ol', { class: 'path' });
  #notices;
  #buttons = {};
  #shown = null;
  #loading = null;
  #above = [];

  /**
   * @param {object} parts
   * @param {Window} parts.window
   * @param {import('./DriveApi.js').DriveApi} parts.api
   * @param {import('../document/NativeSide.js').NativeSide} parts.native
   * @param {object} parts.transport how files travel: a ShellTransport or a BrowserTransport
   * @param {HTMLElement} parts.notices where messages go
   */
  constructor({ window, api, native, transport, notices }) {
    this.#window = window;
    this.#api = api;
    this.#native = native;
    this.#transport = transport;
    this.#notices = notices;
    const nav = crelt('nav', { 'aria-label': 'Folder' }, this.#path);
    this.dom = crelt('div', { class: 'drive-screen' }, nav, this.#toolBar(), crelt('div', { class: 'folder' }, this.#list.dom, this.#state));
    this.dom.addEventListener('keydown', (event) => this.#onKey(event));
    window.addEventListener('hashchange', () => this.load());
  }

  get place() {
    return placeFromHash(this.#window.location.hash);
  }

  /** Reads the folder that the URL names. What is shown stays until the answer is there, unless it is another folder. */
  async load() {
    if (this.#loading) this.#loading.abort();
    const loading = new AbortController();
    this.#loading = loading;
    const { place } = this;
    if (this.#shown !== hashOf(place)) this.#showBusy();
    const reply = await this.#api.folder(place, { signal: loading.signal });
    if (loading.signal.aborted) return;
    const items = reply.ok && reply.value && Array.isArray(reply.value.items) ? reply.value.items : null;
    if (items) this.#show(place, reply.value.path, items);
    else this.#showProblem(reply);
  }

  /** A message above the list, until it is dismissed or another one comes. */
  tell(text) {
    const close = crelt('button', { type: 'button', class: 'close', title: 'Dismiss', onclick: () => this.#notices.replaceChildren() }, '×');
    this.#notices.replaceChildren(crelt('div', { class: 'notice' }, crelt('span', text), close));
  }

  #toolBar() {
    const button = (name, label, title, onclick) => {
      this.#buttons[name] = crelt('button', { type: 'button', title, onclick }, label);
      return this.#buttons[name];
    };
    const group = (...members) => crelt('div', { class: 'tool-group' }, members);
    return crelt('div', { class: 'tool-bar', role: 'toolbar', 'aria-label': 'Drive' },
      group(
        button('upload', 'Upload files', 'Choose files of this computer', () => this.#transport.upload(this.place)),
        button('uploadFolder', 'Upload folder', 'Choose a folder of this computer', () => this.#transport.upload(this.place, { isFolder: true })),
        button('folder', 'New folder', 'Make a folder here', () => this.#askForFolder()),
      ),
      group(
        button('open', 'Open', 'Open (Enter)', () => this.#open(this.#list.selection[0])),
        button('download', 'Download', 'Download the selection', () => this.#transport.download(this.place, this.#list.selection)),
        button('version', 'New version…', 'Upload a newer state of this file', () => this.#uploadVersion()),
        button('delete', 'Delete', 'Delete the selection (Delete)', () => this.#delete()),
      ),
      group(button('reload', 'Reload', 'Read the folder again', () => this.load())));
  }

  #showSelection() {
    const selection = this.#list.selection;
    const { open, download, version, delete: remove } = this.#buttons;
    const single = selection.length === 1;
    open.disabled = !single;
    version.disabled = !single || selection[0].type !== 'file';
    download.disabled = downloadIds(selection).length === 0;
    remove.disabled = selection.length === 0 || selection.some(({ type }) => type === 'document');
  }

  #showBusy() {
    this.#list.show([]);
    this.#state.replaceChildren(crelt('div', { class: 'busy', role: 'status' }, crelt('div', { class: 'spinner' }), 'Loading…'));
  }

  #showProblem({ ok, status, message }) {
    this.#shown = null;
    this.#list.show([]);
    const gone = status === 404;
    const actions = crelt('div', { class: 'actions' },
      crelt('button', { class: 'primary', type: 'button', onclick: () => this.load() }, 'Retry'),
      crelt('a', { class: 'button', href: '#0/0' }, 'All files'));
    const detail = ok ? 'The server sent no list.' : `The folder could not be read: ${message}.`;
    this.#state.replaceChildren(crelt('section', { class: 'problem', role: 'alert' },
      crelt('h1', gone ? 'There is no such folder' : 'The folder is missing'), crelt('p', detail), actions));
  }

  #show(place, path, items) {
    const isOther = this.#shown !== hashOf(place);
    this.#shown = hashOf(place);
    this.#above = Array.isArray(path) ? path : [];
    this.#showPath(place);
    this.#list.show(items);
    const text = 'Nothing here yet. Drop files onto the page, or choose them with "Upload files".';
    this.#state.replaceChildren(...(items.length > 0 ? [] : [crelt('p', { class: 'empty' }, text)]));
    if (isOther) this.#list.focus();
  }

  #showPath({ group }) {
    const steps = [{ id: '0', name: 'Drive' }, ...this.#above.filter(({ id }) => String(id) !== '0')];
    const last = steps.length - 1;
    this.#path.replaceChildren(...steps.map(({ id, name }, index) => crelt('li',
      index === last ? crelt('span', { 'aria-current': 'page' }, name) : crelt('a', { href: hashOf({ group, folder: id }) }, name))));
    this.#window.document.title = last > 0 ? `${steps[last].name} – Drive` : 'Drive';
  }

  #open(item) {
    if (item.type === 'folder') this.#window.location.hash = hashOf({ ...this.place, folder: item.id });
    else openItem(item, { window: this.#window, native: this.#native, contentUrl: this.#api.contentUrl(item.id), onProblem: (text) => this.tell(text) });
  }

  #askForFolder() {
    const { place } = this;
    const accept = async (name) => {
      const reply = await this.#api.makeFolder(place, name.trim());
      if (!reply.ok) this.tell(`"${name}" could not be made: ${reply.message}.`);
      this.load();
    };
    askForText({ label: 'Name of the folder', submit: 'Make folder', problem: nameProblem, accept, done: () => this.#buttons.folder.focus() });
  }

  #uploadVersion() {
    const [{ id, name }] = this.#list.selection;
    this.#transport.upload(this.place, { version: { id, name } });
  }

  async #delete() {
    const selection = this.#list.selection;
    if (selection.length === 0 || this.#buttons.delete.disabled) return;
    const what = selection.length === 1 ? `"${selection[0].name}"` : `${selection.length} items`;
    const folders = selection.some(({ type }) => type === 'folder') ? ' with everything in it' : '';
    if (!(await askToConfirm({ text: `Delete ${what}${folders}? This cannot be undone.`, submit: 'Delete' }))) return;
    for (const { id, name } of selection) {
      const reply = await this.#api.remove(id);
      if (!reply.ok && reply.status !== 404) {
        this.tell(`"${name}" could not be deleted: ${reply.message}.`);
        break;
      }
    }
    await this.load();
    this.#list.focus();
  }

  #onKey(event) {
    if (event.target.matches('input[type="text"]')) return;
    if (event.key === 'Delete') this.#delete();
    const parent = this.#above[this.#above.length - 2];
    if (event.key === 'Backspace' && this.#above.length > 0) {
      event.preventDefault();
      this.#window.location.hash = hashOf({ ...this.place, folder: parent ? parent.id : '0' });
    }
  }
}
