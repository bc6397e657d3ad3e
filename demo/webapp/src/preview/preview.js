import crelt from 'crelt';
import { renderHtmlPreview } from './htmlPreview.js';
import { renderTablePreview } from './tablePreview.js';
import { renderTextPreview } from './textPreview.js';

/** What stands in the document's place until the editor does. */
export function previewElement(node) {
  return crelt('div', { class: 'preview', 'aria-readonly': 'true' }, node);
}

export function contentPreview(content, typeCode) {
  return previewElement(typeCode === 's' ? renderTablePreview(content) : renderTextPreview(content));
}

export function renderingPreview(html, typeCode) {
  return previewElement(renderHtmlPreview(html, typeCode));
}

/**
 * What the desktop side left in the page, to be shown at once.
 * @param {import('../document/inject.js').Injected} injected
 * @returns {Element | null} null when there is nothing, or nothing that can be read
 */
export function storedPreview({ cachedHtml, content }, typeCode) {
  try {
    if (cachedHtml) return renderingPreview(cachedHtml, typeCode);
    return content ? contentPreview(content, typeCode) : null;
  } catch {
    return null;
  }
}
