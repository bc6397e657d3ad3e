/**
 * Builds the front end into static files: node build.mjs --out DIR [--types w,s] [--version V]
 *
 * The result is the documents site; `pack.mjs` makes front-end packages for the desktop side of it. Nothing in it is
 * fetched from anywhere else at run time.
 */
import path from 'node:path';
import { parseArgs } from 'node:util';
import { writeServiceWorker } from './serviceWorker.mjs';
import { buildSite, ownVersion } from './siteBuilder.mjs';
import { officeType, officeTypes } from './src/document/officeTypes.js';

async function options() {
  const text = { type: 'string' };
  const { values } = parseArgs({ options: { out: text, types: text, version: text } });
  if (!values.out) throw new Error('usage: node build.mjs --out DIR [--types w,s] [--version V]');
  const codes = values.types ? values.types.split(',') : officeTypes().map(({ code }) => code);
  const types = codes.map((code) => {
    if (!officeType(code)) throw new Error(`there is no kind of document "${code}"`);
    return officeType(code);
  });
  return { out: path.resolve(values.out), types, version: values.version || (await ownVersion()) };
}

try {
  const chosen = await options();
  await buildSite(chosen);
  await writeServiceWorker(chosen.out);
} catch (error) {
  console.error(`webapp: ${error.message}`);
  process.exitCode = 1;
}
