import crelt from 'crelt';
import DOMPurify from 'dompurify';

/** Shows a kept rendering of a document. It is shown, not trusted: scripts, forms and handlers are taken out. */
export function renderHtmlPreview(html, officeType) {
  const fragment = DOMPurify.sanitize(html, {
    USE_PROFILES: { html: true },
    FORBID_TAGS: ['style', 'form', 'input', 'button'],
    RETURN_DOM_FRAGMENT: true,
  });
  return crelt('div', { class: officeType === 'w' ? 'text-page' : 'table-preview' }, fragment);
}
