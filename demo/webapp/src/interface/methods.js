/**
 * Every script method of the bridge and of its named handlers: what it takes, how it answers and what comes back.
 *
 * - `args`: the arguments of the sample call, or a function of what earlier calls left in `env`
 * - `optional`: arguments that may be left out, with what counts then
 * - `reply`: shape of the reply; `calls`: shape of the text that the function named by `via` (an argument) gets.
 *   A method without either answers nothing.
 * - `effect`: what it does besides
 * - `keep(env, answer)`: what later calls need of the answer
 * - `ends`: the call ends, reloads or leaves the page, or opens a window that waits; it is not part of a whole run
 */
import { either, flag, number, object, text } from './shapes.js';

const site = globalThis.location ? location.origin : 'https://docs.skyleaf.test';
const ok = { callstatus: 'ok' };
const error = (err) => ({ callstatus: 'error', err });
const refused = (errormsg) => ({ callstatus: 'error', errormsg });
const serviceFailure = { callstatus: 'fail', err: text, ipcerrorcode: number };
const done = { callstatus: 'ok', result: true };

const general = [
  { name: 'clouddocsApiVersion', reply: { ...ok, version: '1.0.0' }, effect: 'The version of the interface.' },
  { name: 'getCurSkin', reply: { ...ok, result: either('light', 'dark') }, effect: 'The skin of the shell.' },
  { name: 'getSkinIcon', args: { name: 'close' }, reply: { ...ok, result: text }, effect: 'An icon of the skin as a data URL.' },
  { name: 'resize', effect: 'Nothing: kept for older front ends.' },
  { name: 'loginStateChanged', effect: 'Nothing: kept for older front ends.' },
  { name: 'showOfflinePage', ends: true, effect: 'The page shows that it is offline.' },
  { name: 'gotoHomepage', ends: true, effect: 'The page goes to the start page.' },
  { name: 'jsReload', ends: true, effect: 'The page loads again.' },
  { name: 'jsReloadCef', ends: true, effect: 'The page loads again.' },
  { name: 'closeDialog', ends: true, effect: 'The page closes.' },
];

const files = [
  { name: 'openFileByCloud', args: { fileid: '100001', fileName: 'Welcome.docx', csource: 'interface' },
    optional: { fileid: '"-1"', openUrl: 'the link to the document', openSrc: '""' }, effect: 'A preview page shows the document.' },
  { name: 'openDocsOnlineFile', args: { fileId: '100001', url: `${site}/office/p/100001?officeType=w`, fileName: 'Welcome' },
    reply: { callstatus: 'ok', errormsg: '' }, effect: 'A preview page shows the document at the URL.' },
  { name: 'openDocsOnlineFile', args: { url: `${site}/p/1` }, reply: refused('url query(officeType) isEmpty'),
    effect: 'Other errors: "args isEmpty", "url isEmpty", "url invalid", "internal error".' },
  { name: 'openProcessOnFile', args: { fileid: '100001', groupid: '0', fileName: 'plan.pom' }, reply: { result: true },
    effect: 'A process page shows the file.' },
  { name: 'openProcessOnFile', args: {}, reply: { result: false }, effect: 'Without a file nothing opens.' },
  { name: 'openProcessOnPage', args: { type: 'flow', groupid: '0' }, optional: { parentid: '"0"' }, effect: 'A process page for a place of the drive.' },
  { name: 'openFileEx', args: { fileid: '100001', fileName: 'Welcome.docx', openByNewTab: true }, reply: done,
    effect: 'As openFile.' },
  { name: 'openFile', args: { fileid: '100001', fileName: 'Welcome.docx', openByNewTab: true, csource: 'interface' }, reply: done,
    optional: { openFrom: '""', openSrc: '""', from: '"clouddriver"', openByNewTab: 'false', supportNoLand: 'false', pageIdxInfo: '""' },
    effect: 'The shell downloads the file and opens it, in the place of the page or, with "openByNewTab" or "openFrom" = "rightmenu", in a tab of its own.' },
];

const transferReport = { failed: [object], success: [object], 'queued?': [object] };

const transfers = [
  { name: 'fileUploadListener', args: { callback: 'onUploads' }, effect: 'The function gets the state of uploads every second while there are any.' },
  { name: 'fileDownloadListener', args: { callback: 'onDownloads' }, effect: 'The function gets the state of downloads every second while there are any.' },
  { name: 'uploadFileDrag', args: (env) => ({ groupid: '0', parentid: '0', files: [env.droppedFile || '/nonexistent/file.txt'] }),
    via: 'onUploads', calls: transferReport, effect: 'Files and folders, as "ondragenter" tells them, go to a folder of the drive.' },
  { name: 'callFileUploader', args: { isDir: '0', groupid: '0', parentid: '0' }, optional: { fileid: '"0"', filename: '""' },
    reply: either({ result: 'FileSuffixConflict' }, undefined), effect: 'The user chooses files or (with "isDir") folders to upload. "FileSuffixConflict" when a new version of "filename" has another suffix.' },
  { name: 'callFileDownload', args: (env) => ({ fileids: [{ id: env.driveFile || '1', idDir: false }], groupid: '0' }), optional: { historyid: '""' },
    effect: 'The user chooses where the files and folders ("idDir") go.' },
  { name: 'showFileUploadProgress', effect: 'The shell\'s window of uploads.' },
  { name: 'showFileDownloadProgress', effect: 'The shell\'s window of downloads.' },
];

const clipboard = [
  { name: 'setClipboardData', args: { 'text/plain': 'plain', 'text/html': '<b>rich</b>', 'application/zqdoc': { a: 1 } }, reply: ok,
    effect: 'The clipboard holds these kinds of data; also "text/uri-list" (a list) and "image/base64".' },
  { name: 'getClipboardData', reply: { result: object }, effect: 'The clipboard\'s data by kind, in Base64.',
    check: ({ result }) => (atob(result['text/plain'] || '') === 'plain' ? '' : 'the text that was set is not there') },
  { name: 'writeClipboard', args: { data: { type: 'cloudFile', content: '{"url":"u","fileids":"1"}' } }, reply: { result: 'ok' }, effect: 'Text or a reference to files of the cloud.' },
  { name: 'readClipboard', reply: { type: 'cloudFile', content: { url: 'u', fileids: '1' } } },
  { name: 'writeClipboard', args: { data: { type: 'text', content: 'words' } }, reply: { result: 'ok' } },
  { name: 'readClipboard', reply: { type: 'text', content: 'words' }, effect: '"type" is "binary", without "content", for other data.' },
];

const account = [
  { name: 'tavaCheckLogined', reply: { logined: flag, userid: text, vltkey: text } },
  { name: 'getVlt_sid', reply: { sid: text } },
  { name: 'registerCookieUpdateHandler', args: { callback: 'onLogin' }, effect: 'The function gets {"act": "notifyLoginStatus", "logined": 0 or 1, "userid", "vltkey"} when the login changed.' },
  { name: 'getRoamingMode', reply: either({ mode: text }, { ...refused('rpc call getRoamingMode error'), mode: 'unknown' }) },
  { name: 'setRoamingMode', reply: either({}, { ...refused('rpc call setRoamingMode error'), mode: 'unknown' }), effect: 'Switches between the modes.' },
  { name: 'setRoamingMode', reply: either({}, { ...refused('rpc call setRoamingMode error'), mode: 'unknown' }), effect: '… and back.' },
  { name: 'checkNetwork', args: { callback: 'onNetwork' }, via: 'onNetwork', calls: { status: either('true', 'false') }, effect: 'Answers within five seconds.' },
  { name: 'isSupportSendFile', reply: { ...ok, result: flag } },
  { name: 'sendFile', args: { fileId: '100001', fileName: 'Welcome.docx' }, reply: done, effect: 'Opens the window that sends the file.' },
  { name: 'isSupportParallelCloseCollaboration', reply: { ...ok, result: flag } },
  { name: 'notifyCloseCooperationResult', args: {}, reply: { ...ok, result: 'file id is empty' } },
  { name: 'notifyCloseCooperationResult', args: { fileId: 'none', closeCooperation: false }, reply: { ...ok, result: 'close openedFile faile' },
    effect: 'Closes the local document of the file ("close openedFile success") and shows the page again; with "closeCooperation" the page closes.' },
  { name: 'getOpenCooperationResult', reply: { ...ok, result: flag } },
  { name: 'upgradeVip', args: { pageSource: 'interface' }, reply: { result: true }, effect: 'The membership page.' },
  { name: 'tavaOpenVipUrl', args: { url: `${site}/` }, reply: object, effect: 'Opens the URL in the shell.' },
  { name: 'openVirtualCloudDisk', effect: 'The drive of the user, or the sign-in window.' },
  { name: 'showNetDetect', effect: 'The diagnosis tool.' },
  { name: 'gotoH5Page', ends: true, effect: 'A message box with the method\'s name.' },
  { name: 'shareFile', ends: true, effect: 'A message box with the method\'s name.' },
  { name: 'showVipUpgradeDialog', ends: true, effect: 'A message box with the method\'s name.' },
  { name: 'showUserSecureIdentityDialog', ends: true, effect: 'A message box with the method\'s name.' },
  { name: 'tavaLogin', ends: true, reply: object, effect: 'The sign-in window.' },
  { name: 'tavaLogout', ends: true, reply: object, effect: 'Signs the user out; pages get new cookies.' },
];

const infoData = (env) => ({ localId: env.localId, callback: 'onInfo' });

const storageInfo = [
  { name: 'docs.storage.funcSwitch', reply: { ...ok, result: flag }, effect: 'Whether documents of the page\'s kind can be edited offline.' },
  { name: 'docs.storage.info.create', args: { fileId: 'interface-1', callback: 'onInfo' }, via: 'onInfo', calls: { ...ok, result: object },
    keep: (env, { result }) => { env.localId = result.localId; }, effect: 'A record and a package directory for the file.' },
  { name: 'docs.storage.info.create', args: {}, reply: error('fileId isEmpty') },
  { name: 'docs.storage.info.select', args: { fileId: 'interface-1', callback: 'onInfo' }, via: 'onInfo', calls: { ...ok, result: object } },
  { name: 'docs.storage.info.update', args: (env) => ({ ...infoData(env), data: { note: 'x' } }), via: 'onInfo', calls: { ...ok, result: object } },
  { name: 'docs.storage.info.update', args: (env) => ({ ...infoData(env), data: 'text' }), reply: error('param isEmpty') },
];

const fileAt = (env, relativePos, more) => ({ localId: env.localId, relativePos, callback: 'onFile', ...more });

const storageFiles = [
  { name: 'docs.storage.file.create', args: (env) => fileAt(env, 'dir/note.txt', { data: btoa('one') }), reply: done, optional: { isFolder: 'false', crypto: '""' },
    effect: 'A file with the decoded data, or a folder.' },
  { name: 'docs.storage.file.create', args: (env) => fileAt(env, '../outside.txt', { data: '' }), reply: error('relativePos is invalid'),
    effect: 'Nothing outside the package can be named.' },
  { name: 'docs.storage.file.update', args: (env) => fileAt(env, 'dir/note.txt', { data: btoa(' two'), append: true }), via: 'onFile', calls: done },
  { name: 'docs.storage.file.read', args: (env) => ({ localId: env.localId, relativePos: 'dir/note.txt', dataCallbackName: 'onFile' }),
    reply: done, via: 'onFile', calls: { ...ok, result: { body: btoa('one two'), page: { cur: 0, total: 1 } } }, effect: 'The content in Base64.' },
  { name: 'docs.storage.file.read', args: (env) => ({ localId: env.localId, relativePos: 'none', dataCallbackName: 'onFile' }), reply: error('targetPath does not exist') },
  { name: 'docs.storage.file.writeDataSteam', args: (env) => fileAt(env, 'stream.txt', { data: 'größer' }), via: 'onFile', calls: { ...ok, result: { result: true } } },
  { name: 'docs.storage.file.readDataSteam', args: (env) => fileAt(env, 'stream.txt'), via: 'onFile', calls: { ...ok, result: { data: 'größer' } } },
  // An empty zip file: the end record alone.
  { name: 'docs.storage.file.create', args: (env) => fileAt(env, 'a.zip', { data: btoa(`PK\x05\x06${'\0'.repeat(18)}`) }), reply: done },
  { name: 'docs.storage.file.unzip', args: (env) => fileAt(env, 'a.zip', { distRelativePos: 'unpacked', isRemoveZip: true }), via: 'onFile', calls: either(done, serviceFailure) },
  { name: 'docs.storage.file.unzip', args: { isEncrypt: true }, reply: error('encrypt not support') },
  { name: 'docs.storage.file.remove', args: (env) => fileAt(env, 'dir', { isFolder: true }), via: 'onFile', calls: done },
  { name: 'docs.storage.info.upload', args: (env) => ({ localId: env.localId, serverAddress: 'x', relativePos: 'none.zip', packageInfo: '{}', callback: 'onInfo' }), reply: error('uploadZipFile not exist'),
    effect: 'Sends a file of the package to the documents server; the function gets {"callstatus": "ok", "result": true or false}.' },
  { name: 'docs.storage.info.download', args: (env) => ({ localId: env.localId, serverAddress: `${site}/version`, relativePos: 'fetched', callback: 'onInfo' }), via: 'onInfo', calls: { ...ok, result: flag } },
  { name: 'docs.storage.info.remove', args: infoData, via: 'onInfo', calls: done },
];

const others = [
  { name: 'webview.preload.prefetch', args: { key: 'nothing', dataCallbackName: 'onPrefetch', timeout: 20 }, optional: { timeout: '2000' }, via: 'onPrefetch',
    calls: { callstatus: 'ok', err: 'request timeout', result: { body: '', page: { cur: 0, total: 1 }, requestTime: { startTime: -1, endTime: -1 } } },
    effect: 'A reply of the documents server that was fetched in advance: at once, when it arrives, or empty after the time-out.' },
  { name: 'webview.preload.prefetch', args: {}, reply: error('param isEmpty') },
  { name: 'docs.print.isSupportVltDocsPrint', reply: { isShelllessMode: flag, isSupport: flag } },
  { name: 'docs.print.getPrintFileTempPath', args: { filename: 'print.txt' },
    reply: either({ resultStatus: 'ok', path: text }, { resultStatus: 'failed', errorMsg: 'failed on no login' }) },
  { name: 'docs.print.getPrintFileTempPath', args: {}, reply: { resultStatus: 'failed', errorMsg: 'failed on invalid parameters' } },
  { name: 'docs.print.selectPrintFileSavePath', args: { filename: 'print.pdf', caption: 'Save', filter: '' },
    reply: either({ resultStatus: 'ok', path: text }, { resultStatus: 'failed', errorMsg: 'select cancel' }) },
  { name: 'docs.print.printFileByZeo', args: { fileAbsolutePath: '/nonexistent/print.txt', fileId: '1' }, reply: { resultStatus: 'failed', errorMsg: 'localPath[/nonexistent/print.txt] not exists' },
    effect: 'Prints a local file; what came of it is the page event "notifyPrintResult".' },
  { name: 'docs.sorrel.isDockPanelEntryVisible', reply: { result: flag, success: true } },
  { name: 'docs.sorrel.generateTaskId', reply: { task_id: text, success: true } },
  { name: 'docs.sorrel.notifyDockPanelSorrelMsg', args: { source: 'interface', data: { question: 'hello' } },
    reply: either({ success: true }, { success: false, errorMsg: 'dockPanelNotification' }), effect: 'A message to the assistant in the dock panel.' },
  { name: 'docs.dockmsg.getPageInfo', reply: { callstatus: 'ok', loaded: flag, fileInfo: object }, effect: 'What the dock panels know of the page.' },
  { name: 'quilldrive.getDriveInfo', reply: object },
];

export const groups = [
  { title: 'General', methods: general },
  { title: 'Opening files', methods: files },
  { title: 'Uploads and downloads', methods: transfers },
  { title: 'Clipboard', methods: clipboard },
  { title: 'Account, sharing and services', methods: account },
  { title: 'Local storage: records', methods: storageInfo },
  { title: 'Local storage: files', methods: storageFiles },
  { title: 'Fetched replies, printing, assistant', methods: others },
];

/** All sample calls in the order of a whole run, with an id each. */
export function allCalls() {
  return groups.flatMap(({ methods }) => methods).map((method, index) => ({ id: index, ...method }));
}
