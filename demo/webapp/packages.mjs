/** Front-end packages, made of a built site: what the desktop side reads of a package, for one kind of document. */
import { cp, mkdir, readFile, rm, writeFile } from 'node:fs/promises';
import path from 'node:path';
import { pageFolder, scriptFolder } from './siteBuilder.mjs';

/** The values that the desktop side writes into a page of a package; the pages use all of them. */
export const injectedNames = [
  '_LOCAL_INJECT_DATA_FILEINFO',
  '_LOCAL_INJECT_DATA_OFFLINESWITCH',
  '_LOCAL_INJECT_DATA',
  '_LOCAL_INJECT_CACHE',
  '_LOCAL_INJECT_DATA_SSRCONTENT',
  '_LOCAL_INJECT_DATA_SSRCONTENT_TIMES',
  '_LOCAL_CONNID',
];

export async function siteVersion(site) {
  return (await readFile(path.join(site, 'version'), 'utf8')).trim();
}

/** The files of the script folder that a page or one of its scripts names, in a fixed order. */
async function filesNamedBy(site, page) {
  const pattern = /\/hybrid\/weboffice-static\/js\/([\w-]+(?:\.[\w-]+)+)/g;
  const found = new Set();
  const pending = [page];
  while (pending.length > 0) {
    for (const [, name] of pending.pop().matchAll(pattern)) {
      if (found.has(name)) continue;
      found.add(name);
      if (name.endsWith('.js')) pending.push(await readFile(path.join(site, scriptFolder, name), 'utf8'));
    }
  }
  return [...found].sort();
}

/**
 * Writes the package of one kind of document into `folder`, replacing what is there.
 * @param {{site: string, folder: string, type: import('./src/document/officeTypes.js').OfficeType}} options
 */
export async function writePackage({ site, folder, type }) {
  const pageName = `index-${type.code}.html`;
  const page = await readFile(path.join(site, pageFolder, pageName), 'utf8');
  const names = await filesNamedBy(site, page);
  await rm(folder, { recursive: true, force: true });
  await mkdir(path.join(folder, pageFolder), { recursive: true });
  await mkdir(path.join(folder, scriptFolder), { recursive: true });
  await Promise.all(names.map((name) => cp(path.join(site, scriptFolder, name), path.join(folder, scriptFolder, name))));
  await writeFile(path.join(folder, pageFolder, pageName), page);
  const readAhead = { pc: [`/dist_langs/zh-CN/${pageName}`, ...names.map((name) => `/weboffice-static/js/${name}`)] };
  await writeFile(path.join(folder, 'preload-file.json'), `${JSON.stringify(readAhead, null, 2)}\n`);
  await writeFile(path.join(folder, 'inject.json'), `${JSON.stringify(injectedNames, null, 2)}\n`);
  await writeFile(path.join(folder, 'version'), `${await siteVersion(site)}\n`);
}
