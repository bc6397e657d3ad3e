import { DriveApi } from '../drive/DriveApi.js';
import { uploadFile } from '../drive/browserUpload.js';
import { afterDownloadReport, noTransfers } from '../drive/transferRecords.js';
import { printFileName, printPage, printResultText } from './printPage.js';

const folderName = 'Printing';
const place = { group: '0', folder: '0' };

/**
 * Prints through the suite, which prints files of this computer. A page cannot write one: the print file goes to the
 * drive, from there the user downloads it to a directory of his choice, and the drive's copy is deleted.
 */
export class SuitePrinting {
  #native;
  #api;
  #notify;
  #listens = false;
  #pending = null;

  /**
   * @param {object} parts
   * @param {import('../document/NativeSide.js').NativeSide} parts.native
   * @param {typeof fetch} parts.fetchFn
   * @param {(text: string) => void} parts.notify
   */
  constructor({ native, fetchFn, notify }) {
    this.#native = native;
    this.#api = new DriveApi(fetchFn);
    this.#notify = notify;
  }

  async isSupported() {
    if (!this.#native.present) return false;
    try {
      return (await this.#native.call('docs.print.isSupportVltDocsPrint')).isSupport === true;
    } catch {
      return false;
    }
  }

  /** @param {{fileId: string, fileName: string, body: string}} document body: HTML */
  async print({ fileId, fileName, body }) {
    this.#abandon();
    this.#listen();
    try {
      const item = await this.#store(new File([printPage(fileName, body)], printFileName(fileName), { type: 'text/html' }));
      this.#pending = { item, fileId };
      const args = { fileids: [{ id: String(item.id), idDir: false }], groupid: place.group, historyid: '' };
      this.#native.tell('callFileDownload', args, { onFailure: (text) => this.#fail(text) });
    } catch (error) {
      this.#fail(error.message);
    }
  }

  #listen() {
    const listener = this.#native.callback((report) => this.#onDownloads(report));
    this.#native.tell('fileDownloadListener', { callback: listener.name });
    if (this.#listens) return;
    this.#listens = true;
    this.#native.onEvent('notifyPrintResult', (result) => this.#notify(printResultText(result)));
  }

  async #store(file) {
    const folder = await this.#api.makeFolder(place, folderName);
    if (!folder.ok) throw new Error(folder.message);
    return uploadFile(this.#api, { file, place: { group: place.group, folder: folder.value.id } });
  }

  async #onDownloads(report) {
    const task = this.#pending && ((report && report.tasks) || []).find(({ fileId }) => String(fileId) === String(this.#pending.item.id));
    if (!task) return;
    const { fileId } = this.#pending;
    const { state, message } = afterDownloadReport(noTransfers(), { tasks: [task] }).items.get(String(task.taskId));
    if (state === 'failed' || state === 'stopped') this.#fail(message || 'the print file was not downloaded');
    if (state !== 'done') return;
    this.#abandon();
    try {
      const reply = await this.#native.call('docs.print.printFileByZeo', { fileAbsolutePath: task.path, fileId });
      if (reply.resultStatus !== 'ok') this.#fail(reply.errorMsg);
    } catch (error) {
      this.#fail(error.message);
    }
  }

  #fail(text) {
    this.#abandon();
    this.#notify(`Printing failed: ${text}.`);
  }

  /** Nothing is left in the drive of a print that is over. */
  #abandon() {
    if (this.#pending) this.#api.remove(this.#pending.item.id);
    this.#pending = null;
  }
}
