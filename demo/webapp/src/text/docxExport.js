import { Document, ExternalHyperlink, HeadingLevel, LevelFormat, Packer, Paragraph, TextRun } from 'docx';

const headings = [
  HeadingLevel.HEADING_1, HeadingLevel.HEADING_2, HeadingLevel.HEADING_3,
  HeadingLevel.HEADING_4, HeadingLevel.HEADING_5, HeadingLevel.HEADING_6,
];
const codeFont = 'Consolas';
const indentStep = 720;

function textRun(node) {
  const has = (name) => node.marks.some((mark) => mark.type.name === name);
  const link = node.marks.find((mark) => mark.type.name === 'link');
  const run = new TextRun({
    text: node.text,
    bold: has('strong'),
    italics: has('em'),
    font: has('code') ? codeFont : undefined,
    style: link ? 'Hyperlink' : undefined,
  });
  return link ? new ExternalHyperlink({ children: [run], link: link.attrs.href }) : run;
}

function inlineRuns(block) {
  const runs = [];
  block.forEach((node) => {
    if (node.isText) runs.push(textRun(node));
    else if (node.type.name === 'hard_break') runs.push(new TextRun({ break: 1 }));
    else if (node.type.name === 'image') runs.push(new TextRun(`[${node.attrs.alt || node.attrs.src}]`));
  });
  return runs;
}

function codeParagraphs(block) {
  return block.textContent.split('\n').map((line) => new Paragraph({
    children: [new TextRun({ text: line, font: codeFont })],
    spacing: { before: 0, after: 0 },
  }));
}

/** Walks the document; `lists` collects the numbered lists met, each of which counts by itself. */
class Writer {
  paragraphs = [];
  lists = 0;

  blocks(parent, place) {
    parent.forEach((block) => this.#block(block, place));
  }

  #block(block, place) {
    switch (block.type.name) {
      case 'heading':
        this.#paragraph(block, place, { heading: headings[block.attrs.level - 1] });
        break;
      case 'blockquote':
        this.blocks(block, { ...place, quoteDepth: place.quoteDepth + 1 });
        break;
      case 'bullet_list':
      case 'ordered_list':
        this.#list(block, place);
        break;
      case 'code_block':
        this.paragraphs.push(...codeParagraphs(block));
        break;
      case 'horizontal_rule':
        this.paragraphs.push(new Paragraph({ thematicBreak: true }));
        break;
      default:
        this.#paragraph(block, place, {});
    }
  }

  #list(list, place) {
    const depth = place.listDepth + 1;
    const reference = list.type.name === 'ordered_list' ? { numbering: this.lists++ } : { bullet: true };
    list.forEach((item) => {
      item.forEach((block, _offset, index) => {
        this.#block(block, { ...place, listDepth: depth, marker: index === 0 ? reference : null });
      });
    });
  }

  #paragraph(block, { listDepth, marker, quoteDepth }, options) {
    const level = Math.min(Math.max(listDepth, 0), 8);
    const list = {};
    if (marker && marker.bullet) list.bullet = { level };
    else if (marker) list.numbering = { reference: 'numbers', level, instance: marker.numbering };
    else if (listDepth >= 0) list.indent = { left: indentStep * (level + 1) };
    if (quoteDepth > 0) list.indent = { left: indentStep * quoteDepth };
    this.paragraphs.push(new Paragraph({ children: inlineRuns(block), ...options, ...list }));
  }
}

function numbering() {
  const levels = Array.from({ length: 9 }, (_, level) => ({
    level,
    format: LevelFormat.DECIMAL,
    text: `%${level + 1}.`,
    style: { paragraph: { indent: { left: indentStep * (level + 1), hanging: 360 } } },
  }));
  return { config: [{ reference: 'numbers', levels }] };
}

/** @param {import('prosemirror-model').Node} doc */
export function docxDocument(doc) {
  const writer = new Writer();
  writer.blocks(doc, { listDepth: -1, marker: null, quoteDepth: 0 });
  return new Document({ numbering: numbering(), sections: [{ children: writer.paragraphs }] });
}

/** The text as a word-processor file. */
export function docxBlob(doc) {
  return Packer.toBlob(docxDocument(doc));
}
