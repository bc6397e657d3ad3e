import { Schema } from 'prosemirror-model';
import { marks, nodes } from 'prosemirror-schema-basic';
import { addListNodes } from 'prosemirror-schema-list';
import OrderedMap from 'orderedmap';

/** A code block that remembers its language, as fenced blocks of Markdown do ("params"). */
const codeBlock = {
  ...nodes.code_block,
  attrs: { params: { default: '' } },
  parseDOM: [
    { tag: 'pre', preserveWhitespace: 'full', getAttrs: (dom) => ({ params: dom.getAttribute('data-params') || '' }) },
  ],
  toDOM: (node) => ['pre', node.attrs.params ? { 'data-params': node.attrs.params } : {}, ['code', 0]],
};

const blocks = OrderedMap.from(nodes).update('code_block', codeBlock);

export const textSchema = new Schema({ nodes: addListNodes(blocks, 'paragraph block*', 'block'), marks });

/**
 * @param {object} content a document as the server keeps it
 * @returns {import('prosemirror-model').Node}
 * @throws {Error} when it holds what the schema does not know or allow; nothing is dropped silently
 */
export function documentFromContent(content) {
  const blank = !Array.isArray(content.content) || content.content.length === 0;
  if (content.type === 'doc' && blank) return textSchema.topNodeType.createAndFill();
  const node = textSchema.nodeFromJSON(content);
  if (node.type !== textSchema.topNodeType) throw new Error(`its content is a "${node.type.name}", not a document`);
  node.check();
  return node;
}
