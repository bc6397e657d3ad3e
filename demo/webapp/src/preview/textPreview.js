import crelt from 'crelt';

const blockTags = {
  paragraph: 'p', blockquote: 'blockquote', bullet_list: 'ul', ordered_list: 'ol', list_item: 'li',
  horizontal_rule: 'hr', hard_break: 'br',
};
const markTags = { strong: 'strong', em: 'em', code: 'code', link: 'a' };

function renderText(node) {
  return (node.marks || []).reduce(
    (inner, mark) => (markTags[mark.type] ? crelt(markTags[mark.type], inner) : inner),
    document.createTextNode(node.text),
  );
}

function renderChildren(node) {
  return (Array.isArray(node.content) ? node.content : []).map(renderNode);
}

function renderNode(node) {
  if (node.type === 'text') return renderText(node);
  if (node.type === 'code_block') return crelt('pre', crelt('code', renderChildren(node)));
  if (node.type === 'heading') {
    const level = Math.min(Math.max(Number(node.attrs && node.attrs.level) || 1, 1), 6);
    return crelt(`h${level}`, renderChildren(node));
  }
  return crelt(blockTags[node.type] || 'div', renderChildren(node));
}

/** Shows a text document without an editor; node kinds that it does not know show their text. */
export function renderTextPreview(content) {
  return crelt('div', { class: 'text-page' }, renderChildren(content));
}
