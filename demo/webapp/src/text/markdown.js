import { defaultMarkdownParser, defaultMarkdownSerializer, MarkdownParser } from 'prosemirror-markdown';
import { textSchema } from './schema.js';

const { tokenizer, tokens } = defaultMarkdownParser;
const parser = new MarkdownParser(textSchema, tokenizer, tokens);

export function markdownFromDocument(doc) {
  return defaultMarkdownSerializer.serialize(doc);
}

export function documentFromMarkdown(text) {
  return parser.parse(text);
}
