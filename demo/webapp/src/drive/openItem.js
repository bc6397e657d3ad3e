import { openingOf } from './driveItems.js';

/**
 * Opens a file or document: in a tab of the shell where there is one, else in the browser.
 * @param {import('./driveItems.js').DriveItem} item
 * @param {{window: Window, native: import('../document/NativeSide.js').NativeSide, contentUrl: string,
 *   onProblem: (text: string) => void}} surroundings
 */
export function openItem(item, { window, native, contentUrl, onProblem }) {
  const opening = openingOf(item);
  const file = { fileid: item.id, fileName: item.name, isCloudFile: true, openSrc: 'Mine', csource: 'drive' };
  const onFailure = (text) => onProblem(`"${item.name}" could not be opened: ${text}.`);
  if (!native.present) {
    window.open(opening.kind === 'document' ? opening.url : contentUrl, '_blank', 'noopener');
  } else if (opening.kind === 'file') {
    native.tell('openFile', { ...file, openByNewTab: true }, { onFailure });
  } else {
    const url = new URL(opening.url, window.location.href).href;
    const online = () => openOnline({ fileId: item.id, url, fileName: item.name }, native, onFailure);
    native.tell('openFileByCloud', { ...file, openUrl: url }, { onFailure: online });
  }
}

/** The newer way to open a document, which says when it fails. */
function openOnline(args, native, onFailure) {
  const onReply = ({ callstatus, errormsg }) => callstatus === 'error' && onFailure(errormsg);
  native.tell('openDocsOnlineFile', args, { onReply, onFailure });
}
