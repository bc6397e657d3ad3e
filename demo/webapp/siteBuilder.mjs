/**
 * Builds the front end: scripts and styles with content hashes in their names, and the pages that name them. The
 * version stands in every script and page, so that another version never shares a script's name.
 */
import { createHash } from 'node:crypto';
import { cp, mkdir, readdir, readFile, rm, writeFile } from 'node:fs/promises';
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { build } from 'esbuild';
import { officeTypes } from './src/document/officeTypes.js';

export const here = path.dirname(fileURLToPath(import.meta.url));
export const scriptFolder = path.join('weboffice-static', 'js');
export const pageFolder = path.join('dist_langs', 'zh-CN');
const oldestBrowser = 'chrome87';
const siteScripts = '/hybrid/weboffice-static/js';
const editors = { w: 'editorText', s: 'editorTable' };
/** What an editor reads only when it is asked for it. */
const parts = { w: ['code', 'markdown', 'textFiles', 'desktop'], s: ['chart', 'tableFiles', 'desktop'] };
/** What parts take from the editor's script instead of bringing their own; see `src/text/sharedModules.js`. */
const sharedModules = { code: /^prosemirror-(commands|history|state)$/ };
/** Styles up to this size stand in the page, which saves a request before the first paint. */
const inlineStyleLimit = 8192;

export async function ownVersion() {
  return JSON.parse(await readFile(path.join(here, 'package.json'), 'utf8')).version;
}

function hashed(name, bytes) {
  const extension = path.extname(name);
  const hash = createHash('sha256').update(bytes).digest('hex').slice(0, 16);
  return `${path.basename(name, extension)}.${hash}${extension}`;
}

const fromEditor = (modules) => ({
  name: 'from-editor',
  setup(builder) {
    builder.onResolve({ filter: modules }, ({ path: name }) => ({ path: name, namespace: 'from-editor' }));
    builder.onLoad({ filter: /.*/, namespace: 'from-editor' }, ({ path: name }) => ({
      contents: `module.exports = window.skyleafShared[${JSON.stringify(name)}];`,
    }));
  },
});

/** @returns {Promise<Map<string, Uint8Array>>} a part's script and style by plain name */
function partBundles(name, define) {
  return bundles([entry(`parts/${name}.js`, name)], define, sharedModules[name] ? [fromEditor(sharedModules[name])] : []);
}

/** @returns {Promise<Map<string, Uint8Array>>} the bundles by plain name, such as "document.js" */
async function bundles(entries, define, plugins = []) {
  const { outputFiles } = await build({
    absWorkingDir: here,
    entryPoints: entries,
    outdir: 'out',
    write: false,
    bundle: true,
    minify: true,
    format: 'iife',
    target: [oldestBrowser],
    legalComments: 'none',
    define: { 'process.env.NODE_ENV': '"production"', global: 'window', ...define },
    plugins,
    logLevel: 'warning',
  });
  return new Map(outputFiles.map((file) => [path.basename(file.path), file.contents]));
}

function entry(source, name) {
  return { in: `src/${source}`, out: name };
}

/** Writes the bundles under hashed names. @returns {Promise<Record<string, string>>} plain name to URL */
async function writeHashed(files, folder, urlPrefix) {
  const urls = {};
  for (const [name, bytes] of files) {
    const fileName = hashed(name, bytes);
    await writeFile(path.join(folder, fileName), bytes);
    urls[name] = `${urlPrefix}/${fileName}`;
  }
  return urls;
}

/** A text that may stand in a script element. */
function scriptText(bytes) {
  return Buffer.from(bytes).toString('utf8').trim().replace(/<\/(script)/gi, '<\\/$1');
}

function styleElement(name, files, urls) {
  const bytes = files.get(name);
  if (bytes.length > inlineStyleLimit) return `<link rel="stylesheet" href="${urls[name]}">`;
  return `<style>${Buffer.from(bytes).toString('utf8').trim()}</style>`;
}

function filled(template, values) {
  return template.replace(/\{\{(\w+)\}\}/g, (_, name) => {
    if (values[name] === undefined) throw new Error(`a page names "${name}", which is not known`);
    return values[name];
  });
}

/** An editor's script, which names its parts, and its style. @returns {Promise<Map<string, Uint8Array>>} */
async function editorBundles(code, define, folder) {
  const built = await Promise.all(parts[code].map((name) => partBundles(name, define)));
  const partUrls = await writeHashed(new Map(built.flatMap((each) => [...each])), folder, siteScripts);
  const [source, name] = [editors[code], `editor-${code}`];
  return bundles([entry(`${source}.js`, name), entry(`styles/${source}.css`, name)],
    { ...define, PART_URLS: JSON.stringify(partUrls) });
}

/** A document page's first script and style, without the part that only editing offline needs. */
async function documentBundles(define, folder) {
  const partUrls = await writeHashed(await partBundles('offline', define), folder, siteScripts);
  return bundles([entry('documentPage.js', 'document'), entry('styles/document.css', 'document')],
    { ...define, PART_URLS: JSON.stringify(partUrls) });
}

/** Writes the scripts, and the styles that are too large to stand in a page. */
async function buildScripts(types, version, folder) {
  const define = { FRONT_VERSION: JSON.stringify(version) };
  const codes = types.filter(({ hasEditor }) => hasEditor).map(({ code }) => code);
  const [early, ...files] = await Promise.all([
    bundles([entry('earlyPage.js', 'early')], define),
    documentBundles(define, folder),
    ...codes.map((code) => editorBundles(code, define, folder)),
  ]);
  const all = new Map(files.flatMap((each) => [...each]));
  const linked = [...all].filter(([name, bytes]) => name.endsWith('.js') || bytes.length > inlineStyleLimit);
  const urls = await writeHashed(linked, folder, siteScripts);
  return { early: scriptText(early.get('early.js')), files: all, urls };
}

async function writePages(types, version, { early, files, urls }, out) {
  const template = await readFile(path.join(here, 'pages', 'index.html'), 'utf8');
  const folder = path.join(out, pageFolder);
  await mkdir(folder, { recursive: true });
  for (const { code, label, hasEditor } of types) {
    const names = hasEditor ? ['document', `editor-${code}`] : ['document'];
    const page = filled(template, {
      code,
      label,
      version,
      icon: hasEditor ? code : 'other',
      early,
      documentScript: urls['document.js'],
      styles: names.map((name) => styleElement(`${name}.css`, files, urls)).join('\n'),
      scripts: JSON.stringify(names.map((name) => urls[`${name}.js`])),
    });
    await writeFile(path.join(folder, `index-${code}.html`), page);
  }
}

/** Pages beside the documents, with a script `src/<name>/<name>Page.js` and a style `src/styles/<name>.css` each. */
const sitePages = ['home', 'drive', 'interface', 'signin'];

async function writeSitePage(name, out, version) {
  const target = path.join(out, 'static');
  await mkdir(target, { recursive: true });
  const files = await bundles([entry(`${name}/${name}Page.js`, name), entry(`styles/${name}.css`, name)], {});
  const urls = await writeHashed(files, target, '/static');
  const template = await readFile(path.join(here, 'pages', `${name}.html`), 'utf8');
  const names = { version, [`${name}Script`]: urls[`${name}.js`], [`${name}Style`]: urls[`${name}.css`] };
  await writeFile(path.join(out, `${name}.html`), filled(template, names));
}

async function copyIcons(names, folder) {
  const copy = (name) => cp(path.join(here, 'assets', `icon-${name}.svg`), path.join(folder, `icon-${name}.svg`));
  await Promise.all(names.map(copy));
}

/** The paths below `folder`, in a fixed order. */
export async function filesBelow(folder) {
  const entries = (await readdir(folder, { withFileTypes: true })).sort((a, b) => (a.name < b.name ? -1 : 1));
  const lists = await Promise.all(entries.map(async (each) => {
    if (!each.isDirectory()) return [each.name];
    return (await filesBelow(path.join(folder, each.name))).map((name) => `${each.name}/${name}`);
  }));
  return lists.flat();
}

/**
 * Builds the documents site into `out`, replacing what an earlier build left there.
 * @param {{out: string, version: string, types?: ReturnType<typeof officeTypes>}} options
 */
export async function buildSite({ out, version, types = officeTypes() }) {
  const pages = sitePages.map((name) => `${name}.html`);
  const owned = ['dist_langs', 'weboffice-static', 'static', ...pages, 'robots.txt', 'version', 'sw.js'];
  await Promise.all(owned.map((name) => rm(path.join(out, name), { recursive: true, force: true })));
  const scripts = path.join(out, scriptFolder);
  await mkdir(scripts, { recursive: true });
  const built = await buildScripts(types, version, scripts);
  await copyIcons([...new Set(types.map(({ code, hasEditor }) => (hasEditor ? code : 'other')))], scripts);
  await writePages(types, version, built, out);
  await Promise.all(sitePages.map((each) => writeSitePage(each, out, version)));
  await copyIcons(['w', 's', 'other'], path.join(out, 'static'));
  await writeFile(path.join(out, 'robots.txt'), 'User-agent: *\nDisallow: /\n');
  await writeFile(path.join(out, 'version'), `${version}\n`);
}
