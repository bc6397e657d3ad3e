import { linkTarget } from '../text/linkTarget.js';

const keptTags = new Set([
  'A', 'B', 'BLOCKQUOTE', 'BR', 'CODE', 'DIV', 'EM', 'H1', 'H2', 'H3', 'H4', 'H5', 'H6', 'HR', 'I', 'IMG', 'LI', 'OL', 'P', 'PRE',
  'S', 'SPAN', 'STRONG', 'SUB', 'SUP', 'TABLE', 'TBODY', 'TD', 'TFOOT', 'TH', 'THEAD', 'TR', 'U', 'UL',
]);
const droppedTags = new Set([
  'AUDIO', 'BUTTON', 'EMBED', 'FORM', 'HEAD', 'IFRAME', 'INPUT', 'MATH', 'NOSCRIPT', 'OBJECT', 'OPTION', 'SCRIPT', 'SELECT', 'STYLE',
  'SVG', 'TEMPLATE', 'TEXTAREA', 'TITLE', 'VIDEO', 'XMP',
]);
const wholeNumber = (text) => (/^\d{1,4}$/.test(text) ? text : null);
const imageSource = (text) => (/^(https?:\/\/|data:image\/(png|jpeg|gif|webp);|\/(?!\/))/i.test(text) ? text : null);
const keptAttributes = {
  A: { href: linkTarget },
  IMG: { src: imageSource, alt: String },
  OL: { start: wholeNumber },
  TD: { colspan: wholeNumber, rowspan: wholeNumber },
  TH: { colspan: wholeNumber, rowspan: wholeNumber },
};

function copyAttributes(source, target) {
  for (const [name, clean] of Object.entries(keptAttributes[target.tagName] || {})) {
    const value = source.hasAttribute(name) ? clean(source.getAttribute(name)) : null;
    if (value !== null) target.setAttribute(name, value);
  }
}

function copyChildren(source, target) {
  for (const child of source.childNodes) {
    const tag = child.nodeType === Node.ELEMENT_NODE ? child.tagName.toUpperCase() : '';
    if (child.nodeType === Node.TEXT_NODE) {
      target.append(child.data);
    } else if (keptTags.has(tag)) {
      const element = document.createElement(tag);
      copyAttributes(child, element);
      copyChildren(child, element);
      target.append(element);
    } else if (tag && !droppedTags.has(tag)) {
      copyChildren(child, target);
    }
  }
}

/**
 * Shows a kept rendering of a document. It is shown, not trusted: the page is built anew of plain elements, so that
 * nothing in it runs, is submitted, or is styled.
 */
export function renderHtmlPreview(html, officeType) {
  const place = document.createElement('div');
  place.className = officeType === 's' ? 'table-preview' : 'text-page';
  copyChildren(new DOMParser().parseFromString(html, 'text/html').body, place);
  return place;
}
