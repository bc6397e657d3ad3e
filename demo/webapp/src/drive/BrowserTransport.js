import { filesOfInput } from './dropped.js';
import { makeFolders, uploadFile } from './browserUpload.js';
import { noTransfers, withItem } from './transferRecords.js';
import { suffixConflict } from './ShellTransport.js';

/** Transfers of the browser: files one after another while the page is open; downloads are the browser's affair. */
export class BrowserTransport {
  #api;
  #chooseFiles;
  #save;
  #listeners;
  #uploads = noTransfers();
  #last = Promise.resolve();
  #count = 0;

  /**
   * @param {import('./DriveApi.js').DriveApi} api
   * @param {{chooseFiles: (options: {folder: boolean, multiple: boolean}) => Promise<FileList>,
   *   save: (url: string, name: string) => void}} browser
   * @param {Listeners} listeners
   */
  constructor(api, { chooseFiles, save }, listeners) {
    this.#api = api;
    this.#chooseFiles = chooseFiles;
    this.#save = save;
    this.#listeners = listeners;
  }

  get inShell() {
    return false;
  }

  async upload(place, { isFolder = false, version = null } = {}) {
    const files = await this.#chooseFiles({ folder: isFolder, multiple: !version });
    if (!version) {
      await this.uploadFiles(place, filesOfInput(files));
      return;
    }
    const [file] = files;
    const suffix = ({ name }) => name.slice(name.lastIndexOf('.') + 1).toLowerCase();
    if (suffix(file) !== suffix(version)) this.#listeners.onProblem(suffixConflict);
    else await this.#enqueue(place, file, version.id);
  }

  /** @param {{file: File | null, folders: string[]}[]} chosen */
  async uploadFiles(place, chosen) {
    try {
      const places = await makeFolders(this.#api, place, chosen);
      const files = chosen.filter(({ file }) => file !== null);
      await Promise.all(files.map(({ file, folders }) => this.#enqueue(places.get(folders.join('/')), file)));
    } catch (error) {
      this.#listeners.onProblem(`The folders could not be made: ${error.message}.`);
    }
  }

  async download(place, items) {
    for (const item of items) {
      if (item.type === 'file') this.#save(this.#api.contentUrl(item.id), item.name);
      if (item.type === 'folder') await this.#downloadFolder({ group: place.group, folder: item.id }, item.name);
    }
  }

  async #downloadFolder(place, name) {
    const reply = await this.#api.folder(place);
    if (reply.ok) await this.download(place, reply.value.items);
    else this.#listeners.onProblem(`The folder "${name}" could not be read: ${reply.message}.`);
  }

  #report(item, changes) {
    this.#uploads = withItem(this.#uploads, { ...item, ...changes });
    this.#listeners.onUploads(this.#uploads);
  }

  #enqueue(place, file, fileId) {
    const key = `${++this.#count}`;
    const item = { key, name: file.name, size: file.size, done: 0, state: 'waiting', message: '' };
    this.#report(item);
    this.#last = this.#last.then(() => this.#send(item, place, file, fileId));
    return this.#last;
  }

  async #send(item, place, file, fileId) {
    const onProgress = (done) => this.#report(item, { state: 'running', done });
    onProgress(0);
    try {
      await uploadFile(this.#api, { file, place, fileId, onProgress });
      this.#report(item, { state: 'done', done: file.size });
    } catch (error) {
      this.#report(item, { state: 'failed', message: error.message });
    }
  }
}
