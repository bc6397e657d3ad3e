/**
 * Builds the front end into static files: node build.mjs --out DIR [--types w,s]
 *
 * The result is the documents site and, at the same time, a front-end package for the desktop side: it may hold the
 * pages of all document types or of some. Nothing in it is fetched from anywhere else at run time.
 */
import { cp, mkdir, readdir, readFile, rm, writeFile } from 'node:fs/promises';
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { parseArgs } from 'node:util';
import { build } from 'esbuild';
import { officeType, officeTypes } from './src/document/officeTypes.js';

const here = path.dirname(fileURLToPath(import.meta.url));
const oldestBrowser = 'chrome87';
const scriptFolder = path.join('weboffice-static', 'js');
const editors = { w: 'editorText', s: 'editorTable' };

/** The members of `window.__INJECT__` that the pages use; the desktop side writes these and no others. */
const injected = ['_LOCAL_INJECT_DATA_FILEINFO', '_LOCAL_INJECT_DATA', '_LOCAL_INJECT_CACHE', '_LOCAL_CONNID'];

function options() {
  const { values } = parseArgs({ options: { out: { type: 'string' }, types: { type: 'string' } } });
  if (!values.out) throw new Error('usage: node build.mjs --out DIR [--types w,s]');
  const codes = values.types ? values.types.split(',') : officeTypes().map(({ code }) => code);
  const types = codes.map((code) => {
    if (!officeType(code)) throw new Error(`there is no editor for documents of type "${code}"`);
    return officeType(code);
  });
  return { out: path.resolve(values.out), types };
}

async function bundle(entries, outdir) {
  await build({
    absWorkingDir: here,
    entryPoints: entries,
    outdir,
    bundle: true,
    minify: true,
    format: 'iife',
    target: [oldestBrowser],
    legalComments: 'none',
    define: { 'process.env.NODE_ENV': '"production"', global: 'window' },
    logLevel: 'warning',
  });
}

async function copyIcons(codes, folder) {
  await Promise.all(codes.map((code) => cp(path.join(here, 'assets', `icon-${code}.svg`), path.join(folder, `icon-${code}.svg`))));
}

async function writePages(types, out) {
  const template = await readFile(path.join(here, 'pages', 'index.html'), 'utf8');
  const folder = path.join(out, 'dist_langs', 'zh-CN');
  await mkdir(folder, { recursive: true });
  for (const { code, label } of types) {
    const page = template.replaceAll('{{code}}', code).replaceAll('{{label}}', label);
    await writeFile(path.join(folder, `index-${code}.html`), page);
  }
  await cp(path.join(here, 'pages', 'home.html'), path.join(out, 'home.html'));
}

/** What the desktop side reads of a package: its version, the files to read ahead, the values to write into pages. */
async function writePackageFiles(out) {
  const { version } = JSON.parse(await readFile(path.join(here, 'package.json'), 'utf8'));
  const names = (await readdir(path.join(out, scriptFolder))).sort();
  const readAhead = { pc: names.map((name) => `/weboffice-static/js/${name}`) };
  await writeFile(path.join(out, 'version'), `${version}\n`);
  await writeFile(path.join(out, 'preload-file.json'), `${JSON.stringify(readAhead, null, 2)}\n`);
  await writeFile(path.join(out, 'inject.json'), `${JSON.stringify(injected, null, 2)}\n`);
}

async function main() {
  const { out, types } = options();
  const scripts = path.join(out, scriptFolder);
  const site = path.join(out, 'static');
  const owned = ['dist_langs', 'weboffice-static', 'static', 'home.html'];
  await Promise.all(owned.map((name) => rm(path.join(out, name), { recursive: true, force: true })));
  await mkdir(scripts, { recursive: true });
  await mkdir(site, { recursive: true });

  const entries = [{ in: 'src/documentPage.js', out: 'document' }, { in: 'src/styles/document.css', out: 'document' }];
  for (const { code } of types) {
    entries.push({ in: `src/${editors[code]}.js`, out: `editor-${code}` });
    entries.push({ in: `src/styles/${editors[code]}.css`, out: `editor-${code}` });
  }
  await bundle(entries, scripts);
  await bundle([{ in: 'src/home/homePage.js', out: 'home' }, { in: 'src/styles/home.css', out: 'home' }], site);
  await copyIcons(types.map(({ code }) => code), scripts);
  await copyIcons(['w', 's', 'other'], site);
  await writePages(types, out);
  await writePackageFiles(out);
}

try {
  await main();
} catch (error) {
  console.error(`webapp: ${error.message}`);
  process.exitCode = 1;
}
