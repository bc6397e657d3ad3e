/**
 * Writes the reference of the script interface from the table of its calls: node interfaceDocs.mjs [--out FILE]
 */
import { writeFile } from 'node:fs/promises';
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { parseArgs } from 'node:util';
import { groups } from './src/interface/methods.js';
import { shapeText } from './src/interface/shapes.js';

const placeholders = { localId: '<local id>', droppedFile: '/home/user/file.txt', driveFile: '<file id>' };

function cell(text) {
  return text.replaceAll('|', '\\|').replaceAll('<', '&lt;');
}

function code(text) {
  return `\`${text.replaceAll('|', '\\|')}\``;
}

function argumentsText({ args, optional }) {
  const sample = typeof args === 'function' ? args(placeholders) : args;
  const parts = sample ? [code(JSON.stringify(sample))] : ['none'];
  const defaults = Object.entries(optional || {}).map(([name, value]) => `${code(name)} (${cell(value)})`);
  if (defaults.length) parts.push(`also ${defaults.join(', ')}`);
  return parts.join('; ');
}

function answerText({ reply, calls, via }) {
  const parts = [];
  if (reply) parts.push(`reply ${code(shapeText(reply))}`);
  if (calls) parts.push(`function ${code(via)} gets ${code(shapeText(calls))}`);
  return parts.join(', then ') || 'no answer';
}

function table(methods) {
  const rows = methods.map((method) => `| ${code(method.name)} | ${argumentsText(method)} | ${answerText(method)} | ${cell(method.effect || '')} |`);
  return ['| Method | Arguments (sample) | Answer | What it does |', '|---|---|---|---|', ...rows].join('\n');
}

export function interfaceDocs() {
  const sections = groups.map(({ title, methods }) => `## ${title}\n\n${table(methods)}\n`);
  return [
    '# The script interface\n',
    'Made by `demo/webapp/interfaceDocs.mjs` from the table that the site\'s page `/interface.html` calls. The web application reaches all of it as',
    '`window.helio.call(name, arguments)`, which promises the reply. "no answer" means that the promise stays open. A function is one of `window`; it gets',
    'one text, the JSON shown. Markers such as *text* stand for any value of that kind; members with a "?" may be missing. A method may stand here several',
    'times, with what it answers to other arguments. Answers end with the document that asked: the next document of the tab gets none of them.\n',
    ...sections,
  ].join('\n');
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
  const here = path.dirname(fileURLToPath(import.meta.url));
  const { values } = parseArgs({ options: { out: { type: 'string', default: path.join(here, '..', '..', 'docs', 'script-interface.md') } } });
  await writeFile(values.out, interfaceDocs());
}
