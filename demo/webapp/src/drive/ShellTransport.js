import { downloadIds } from './driveItems.js';
import { afterDownloadReport, afterUploadReport, noTransfers } from './transferRecords.js';

/**
 * Transfers between this machine and the drive: by the shell where there is one, else by the browser. `onUploads` and
 * `onDownloads` get the state after each change.
 *
 * @typedef {{onUploads: (transfers: import('./transferRecords.js').Transfers) => void,
 *   onDownloads: (transfers: import('./transferRecords.js').Transfers) => void, onProblem: (text: string) => void}} Listeners
 */
export const suffixConflict = 'A new version has to be a file of the same kind: the suffix of the chosen file differs.';

/** Transfers of the shell: it chooses the local side, keeps the queue and reports once a second. */
export class ShellTransport {
  #native;
  #uploads = noTransfers();
  #downloads = noTransfers();
  #problem;

  /** @param {import('../document/NativeSide.js').NativeSide} native @param {Listeners} listeners */
  constructor(native, { onUploads, onDownloads, onProblem }) {
    this.#native = native;
    this.#problem = onProblem;
    const uploads = native.callback((report) => onUploads((this.#uploads = afterUploadReport(this.#uploads, report))));
    const downloads = native.callback((report) => onDownloads((this.#downloads = afterDownloadReport(this.#downloads, report))));
    this.#tell('fileUploadListener', { callback: uploads.name });
    this.#tell('fileDownloadListener', { callback: downloads.name });
  }

  get inShell() {
    return true;
  }

  upload({ group, folder }, { isFolder = false, version = null } = {}) {
    const place = { groupid: group, parentid: folder };
    const file = version ? { fileid: version.id, filename: version.name } : {};
    const onReply = ({ result }) => result === 'FileSuffixConflict' && this.#problem(suffixConflict);
    this.#tell('callFileUploader', { isDir: isFolder ? '1' : '0', ...place, ...file }, onReply);
  }

  uploadPaths(dragArguments) {
    this.#tell('uploadFileDrag', dragArguments);
  }

  download({ group }, items) {
    this.#tell('callFileDownload', { fileids: downloadIds(items), groupid: group, historyid: '' });
  }

  showUploads() {
    this.#tell('showFileUploadProgress');
  }

  showDownloads() {
    this.#tell('showFileDownloadProgress');
  }

  #tell(method, args, onReply) {
    this.#native.tell(method, args, { onReply, onFailure: (text) => this.#problem(`The desktop side refused: ${text}.`) });
  }
}
