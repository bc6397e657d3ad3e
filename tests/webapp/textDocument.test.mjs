import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import test from 'node:test';
import { docxDocument } from '../../demo/webapp/src/text/docxExport.js';
import { documentFromMarkdown, markdownFromDocument } from '../../demo/webapp/src/text/markdown.js';
import { documentFromContent } from '../../demo/webapp/src/text/schema.js';

const fromWebapp = createRequire(new URL('../../demo/webapp/package.json', import.meta.url));
const { Packer } = fromWebapp('docx');
const mammoth = fromWebapp('mammoth');

const markdown = [
  '# Title', 'Plain **bold** *slanted* `code` [link](https://example.org)', '* one\n* two\n\n  1. inner', '> said',
  '```python\nprint(1)\n```', '---',
].join('\n\n');

test('a document keeps everything from the server and back', () => {
  const content = documentFromMarkdown(markdown).toJSON();
  assert.deepEqual(documentFromContent(JSON.parse(JSON.stringify(content))).toJSON(), content);
  const code = content.content.find(({ type }) => type === 'code_block');
  assert.equal(code.attrs.params, 'python');
});

test('Markdown survives the way there and back', () => {
  const doc = documentFromMarkdown(markdown);
  assert.deepEqual(documentFromMarkdown(markdownFromDocument(doc)).toJSON(), doc.toJSON());
});

test('an empty document becomes one that can be typed into', () => {
  for (const content of [{ type: 'doc' }, { type: 'doc', content: [] }]) {
    assert.deepEqual(documentFromContent(content).toJSON(), { type: 'doc', content: [{ type: 'paragraph' }] });
  }
});

test('content that the editor does not know is refused, not dropped', () => {
  const refused = [
    {},
    { type: 'paragraph' },
    { type: 'doc', content: [{ type: 'video' }] },
    { type: 'doc', content: [{ type: 'text', text: 'not in a paragraph' }] },
    { type: 'doc', content: [{ type: 'paragraph', content: [{ type: 'text', text: 'a', marks: [{ type: 'blink' }] }] }] },
  ];
  for (const content of refused) assert.throws(() => documentFromContent(content), JSON.stringify(content));
});

test('a downloaded word-processor file holds the text with its structure', async () => {
  const buffer = await Packer.toBuffer(docxDocument(documentFromMarkdown(markdown)));
  const { value } = await mammoth.convertToHtml({ buffer });
  const expected = [
    '<h1>Title</h1>', '<strong>bold</strong>', '<em>slanted</em>', '<a href="https://example.org">link</a>',
    '<ul><li>one</li><li>two<ol><li>inner</li></ol></li></ul>', '<p>said</p>', '<p>print(1)</p>',
  ];
  for (const part of expected) assert.ok(value.includes(part), `${part} in ${value}`);
});
