import { DOMParser as ModelParser } from 'prosemirror-model';
import { loadPart } from '../ui/parts.js';
import { documentFromContent, textSchema } from './schema.js';

/** What `readTextFile` reads, as a file chooser wants it. */
export const readableFiles = '.docx,.md,.markdown,.txt,.html,.htm';

function fromHtml(html) {
  const page = new window.DOMParser().parseFromString(html, 'text/html');
  return ModelParser.fromSchema(textSchema).parse(page.body);
}

/**
 * Reads a file into a document of the text schema.
 * @param {File} file
 * @returns {Promise<import('prosemirror-model').Node>} rejects when the file is not what its name says
 */
export async function readTextFile(file) {
  const extension = file.name.slice(file.name.lastIndexOf('.') + 1).toLowerCase();
  if (extension === 'docx') {
    const { docxToHtml } = await loadPart('textFiles');
    return fromHtml(await docxToHtml(await file.arrayBuffer()));
  }
  const text = await file.text();
  if (extension === 'html' || extension === 'htm') return fromHtml(text);
  const { contentFromMarkdown } = await loadPart('markdown');
  return documentFromContent(contentFromMarkdown(text));
}
