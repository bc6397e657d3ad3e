/**
 * What editors copy and paste, and how it travels. Own data survives exactly; other programs get HTML and text.
 *
 * @typedef {{text: string, html: string, fragment: object | null, image: string | null}} ClipboardContent
 *   fragment: {kind: "text", slice} or {kind: "table", rows}; image: a data URL. Empty texts and nulls: there is none
 */

export const fragmentType = 'application/zqdoc-fragment';
const startMark = '<!--StartFragment-->';
const endMark = '<!--EndFragment-->';
const imageUrl = /^data:image\/(?:png|jpeg|gif|webp|bmp);base64,([A-Za-z0-9+/=]+)$/;
/** Larger pictures would make a document that is slow to save. */
export const largestImage = 6 * 1024 * 1024;

function fragmentFrom(text) {
  try {
    const fragment = JSON.parse(text);
    return fragment && (fragment.kind === 'text' || fragment.kind === 'table') ? fragment : null;
  } catch {
    return null;
  }
}

/** HTML that other programs put on the clipboard, without a header of offsets and what stands around the fragment. */
export function plainHtml(text) {
  const start = text.indexOf(startMark);
  const end = text.lastIndexOf(endMark);
  if (start >= 0 && end > start) return text.slice(start + startMark.length, end);
  return text.replace(/^Version:[\s\S]*?(?=<)/, '');
}

/** The arguments of `setClipboardData`. @param {ClipboardContent} content */
export function nativeArguments({ text, html, fragment, image }) {
  const picture = image && imageUrl.exec(image);
  return {
    ...(text ? { 'text/plain': text } : {}),
    ...(html ? { 'text/html': html } : {}),
    ...(fragment ? { [fragmentType]: JSON.stringify(fragment) } : {}),
    ...(picture ? { 'image/base64': picture[1] } : {}),
  };
}

function decodedText(base64) {
  try {
    const bytes = Uint8Array.from(atob(base64), (letter) => letter.charCodeAt(0));
    return new TextDecoder().decode(bytes).replace(/\0+$/, '');
  } catch {
    return '';
  }
}

function valueOf(result, wanted) {
  const key = Object.keys(result).find((each) => each.toLowerCase().startsWith(wanted));
  return key !== undefined && typeof result[key] === 'string' ? result[key] : '';
}

/** @param {object} result the "result" of `getClipboardData` @returns {ClipboardContent} */
export function fromNative(result) {
  if (!result || typeof result !== 'object') return { text: '', html: '', fragment: null, image: null };
  const links = Array.isArray(result['text/uri-list']) ? result['text/uri-list'].map(decodedText).filter(Boolean) : [];
  const picture = valueOf(result, 'image/png');
  return {
    text: decodedText(valueOf(result, 'text/plain')) || links.join('\n'),
    html: plainHtml(decodedText(valueOf(result, 'text/html'))),
    fragment: fragmentFrom(decodedText(valueOf(result, fragmentType))),
    image: picture ? `data:image/png;base64,${picture}` : null,
  };
}

/** Fills the data of a browser's copy event. */
export function fillEvent(data, { text, html, fragment }) {
  data.setData('text/plain', text);
  if (html) data.setData('text/html', html);
  if (fragment) data.setData(fragmentType, JSON.stringify(fragment));
}

/** @param {DataTransfer} data of a paste event @returns {ClipboardContent} without pictures, which are files there */
export function fromEvent(data) {
  return {
    text: data.getData('text/plain'),
    html: plainHtml(data.getData('text/html')),
    fragment: fragmentFrom(data.getData(fragmentType)),
    image: null,
  };
}

export function isEmpty({ text, html, fragment, image }) {
  return !text && !html && !fragment && !image;
}
