import { createHash } from 'node:crypto';
import { readFile, writeFile } from 'node:fs/promises';
import path from 'node:path';
import { build } from 'esbuild';
import { filesBelow, here, pageFolder, scriptFolder } from './siteBuilder.mjs';
import { officeTypes } from './src/document/officeTypes.js';

/** One file as the worker keeps it. A hash in the name is the revision already. */
async function precached(out, file, url) {
  if (/\.[0-9a-f]{16}\.\w+$/.test(file)) return { url, revision: null };
  const bytes = await readFile(path.join(out, file));
  return { url, revision: createHash('sha256').update(bytes).digest('hex').slice(0, 16) };
}

/** Writes the service worker of a built site to `sw.js`, with the list of the site's files that it keeps. */
export async function writeServiceWorker(out) {
  const scripts = (await filesBelow(path.join(out, scriptFolder))).map((name) => path.join(scriptFolder, name));
  const pages = (await filesBelow(path.join(out, pageFolder))).map((name) => path.join(pageFolder, name));
  const list = await Promise.all([
    ...scripts.map((file) => precached(out, file, `/hybrid/${file}`)),
    ...pages.map((file) => precached(out, file, `/${file}`)),
  ]);
  const codes = officeTypes().filter(({ hasEditor }) => hasEditor).map(({ code }) => code);
  const { outputFiles } = await build({
    absWorkingDir: here,
    entryPoints: ['src/serviceWorker.js'],
    write: false,
    bundle: true,
    minify: true,
    format: 'iife',
    target: ['chrome87'],
    legalComments: 'none',
    define: {
      'process.env.NODE_ENV': '"production"',
      PRECACHED: JSON.stringify(list),
      EDITOR_CODES: JSON.stringify(codes),
    },
    logLevel: 'warning',
  });
  await writeFile(path.join(out, 'sw.js'), outputFiles[0].contents);
}
