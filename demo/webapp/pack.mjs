/**
 * Makes front-end packages of a built site:
 *   node pack.mjs --site DIR --out DIR [--version V] [--plugins quillword,quillvs] [--zip DIR]
 *
 * Each package lies in a folder of its plug-in's name; --zip also writes `<plugin>-<version>.zip` files, whose bytes
 * depend on nothing but the package's files. A version other than the site's is built from the sources for it, so that
 * every script of such a package differs from the site's, in its name too.
 */
import { mkdir, mkdtemp, readFile, rm, writeFile } from 'node:fs/promises';
import os from 'node:os';
import path from 'node:path';
import { parseArgs } from 'node:util';
import { zipSync } from 'fflate';
import { siteVersion, writePackage } from './packages.mjs';
import { buildSite, filesBelow } from './siteBuilder.mjs';
import { officeTypes } from './src/document/officeTypes.js';

const usage = 'usage: node pack.mjs --site DIR --out DIR [--version V] [--plugins a,b] [--zip DIR]';
/** What every file in a zip is dated, so that equal packages are equal files. */
const zipDate = new Date(1980, 0, 1);

function chosenTypes(plugins) {
  if (!plugins) return officeTypes();
  return plugins.split(',').map((plugin) => {
    const type = officeTypes().find((each) => each.plugin === plugin);
    if (!type) throw new Error(`there is no front-end package "${plugin}"`);
    return type;
  });
}

function options() {
  const text = { type: 'string' };
  const { values } = parseArgs({ options: { site: text, out: text, version: text, plugins: text, zip: text } });
  if (!values.site || !values.out) throw new Error(usage);
  if (values.version !== undefined && !/^[\w.-]+$/.test(values.version)) {
    throw new Error(`"${values.version}" is not a version: letters, digits, dots, hyphens and underscores are`);
  }
  return { ...values, types: chosenTypes(values.plugins) };
}

async function writeZip(folder, file) {
  const names = await filesBelow(folder);
  const entries = await Promise.all(names.map(async (name) => [name, await readFile(path.join(folder, name))]));
  await writeFile(file, zipSync(Object.fromEntries(entries), { level: 6, mtime: zipDate }));
}

async function pack(site, { out, zip, types }) {
  const version = await siteVersion(site);
  await Promise.all(types.map((type) => writePackage({ site, folder: path.join(out, type.plugin), type })));
  if (!zip) return;
  await mkdir(zip, { recursive: true });
  await Promise.all(types.map(({ plugin }) => writeZip(path.join(out, plugin), path.join(zip, `${plugin}-${version}.zip`))));
}

async function main() {
  const chosen = options();
  if (!chosen.version || chosen.version === (await siteVersion(chosen.site))) {
    await pack(chosen.site, chosen);
    return;
  }
  const site = await mkdtemp(path.join(os.tmpdir(), 'front-end-'));
  try {
    await buildSite({ out: site, version: chosen.version, types: chosen.types });
    await pack(site, chosen);
  } finally {
    await rm(site, { recursive: true, force: true });
  }
}

try {
  await main();
} catch (error) {
  console.error(`webapp: ${error.message}`);
  process.exitCode = 1;
}
