import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync, mkdtempSync, readdirSync, readFileSync, rmSync, statSync } from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import test from 'node:test';
import { fileURLToPath } from 'node:url';
import { officeTypes } from '../../demo/webapp/src/document/officeTypes.js';

const site = process.env.WEBAPP_SITE;
const packages = process.env.WEBAPP_PACKAGES;
const packScript = fileURLToPath(new URL('../../demo/webapp/pack.mjs', import.meta.url));
const skip = site ? false : 'WEBAPP_SITE names no built site';
const read = (...names) => readFileSync(path.join(site, ...names), 'utf8');
const pages = [['home.html'], ['drive.html'], ['dist_langs', 'zh-CN', 'index-w.html'], ['dist_langs', 'zh-CN', 'index-s.html']];

/** Where a URL of a page lies in the site. */
function siteFile(url) {
  return path.join(site, url.replace(/^\/hybrid\//, '/'));
}

test('every file that a page names is in the site, without query', { skip }, () => {
  for (const page of pages) {
    const urls = [...read(...page).matchAll(/"(\/(?:hybrid|static)\/[^"]+)"/g)].map((match) => match[1]);
    assert.ok(urls.some((url) => url.endsWith('.js')), page.join('/'));
    for (const url of urls) {
      assert.match(url, /^\/(hybrid\/weboffice-static\/js|static)\/[\w.-]+$/);
      assert.ok(existsSync(siteFile(url)), url);
    }
  }
});

test('the place for injected values comes once, before every script', { skip }, () => {
  for (const page of pages) {
    const html = read(...page);
    const marker = html.indexOf('<!--__INJECT__-->');
    assert.ok(marker > html.indexOf('<head>') && marker < html.indexOf('<script'), page.join('/'));
    assert.equal(html.indexOf('<!--__INJECT__-->', marker + 1), -1);
    assert.ok(html.includes('<html lang="en"') && html.includes('<meta charset="utf-8">'));
  }
});

test('each package holds the page of its kind, what the page and its scripts name, and lists it to read ahead', { skip }, () => {
  assert.deepEqual(readdirSync(packages).sort(), officeTypes().map(({ plugin }) => plugin).sort());
  for (const { plugin, code, hasEditor } of officeTypes()) {
    const folder = path.join(packages, plugin);
    const inPackage = (name) => readFileSync(path.join(folder, name), 'utf8');
    const { pc } = JSON.parse(inPackage('preload-file.json'));
    const page = `/dist_langs/zh-CN/index-${code}.html`;
    const scripts = readdirSync(path.join(folder, 'weboffice-static', 'js')).map((name) => `/weboffice-static/js/${name}`);
    assert.deepEqual([...pc].sort(), [page, ...scripts].sort(), plugin);
    assert.equal(inPackage(page).split('<!--__INJECT__-->').length, 2, plugin);
    const named = [page, ...scripts].flatMap((name) => [...inPackage(name).matchAll(/"\/hybrid(\/weboffice-static\/js\/[^"]+)"/g)]);
    for (const [, name] of named) assert.ok(scripts.includes(name), `${plugin}: ${name}`);
    for (const name of scripts.filter((each) => each.endsWith('.js'))) assert.match(name, /\.[0-9a-f]{16}\.js$/);
    assert.equal(inPackage('version'), read('version'));
    assert.ok(JSON.parse(inPackage('inject.json')).includes('_LOCAL_CONNID'));
    const weight = scripts.reduce((sum, name) => sum + statSync(path.join(folder, name)).size, 0);
    assert.ok(!hasEditor || weight > 1.5e6, `${plugin}: ${weight}`);
  }
});

test('a package of another version shares no script with the site, and its zip file depends on nothing else', { skip }, () => {
  const out = mkdtempSync(path.join(os.tmpdir(), 'pack-test-'));
  try {
    const pack = (...options) => execFileSync(process.execPath, [packScript, '--site', site, '--plugins', 'quillword', ...options]);
    pack('--out', path.join(out, 'other'), '--version', '9.9.9', '--zip', out);
    pack('--out', path.join(out, 'same'), '--zip', out);
    const scripts = (version) => readdirSync(path.join(out, version, 'quillword', 'weboffice-static', 'js')).filter((name) => name.endsWith('.js'));
    assert.ok(scripts('other').length > 3 && scripts('other').length === scripts('same').length);
    assert.deepEqual(scripts('other').filter((name) => scripts('same').includes(name)), []);
    const page = readFileSync(path.join(out, 'other/quillword/dist_langs/zh-CN/index-w.html'), 'utf8');
    assert.match(page, /<html[^>]* data-front-version="9\.9\.9"/);
    for (const name of scripts('other')) assert.ok(readFileSync(path.join(out, 'other/quillword/weboffice-static/js', name), 'utf8').includes('"9.9.9"'), name);
    const zip = `quillword-${read('version').trim()}.zip`;
    assert.ok(readFileSync(path.join(out, zip)).equals(readFileSync(path.join(process.env.WEBAPP_PACKAGE_ZIPS, zip))));
    assert.throws(() => pack('--out', out, '--version', '../x'), /is not a version/);
  } finally {
    rmSync(out, { recursive: true });
  }
});

test('styles fetch nothing from elsewhere', { skip }, () => {
  const names = readdirSync(path.join(site, 'weboffice-static', 'js')).filter((name) => name.endsWith('.css'));
  const linked = names.map((name) => read('weboffice-static', 'js', name));
  const inPages = pages.flatMap((page) => [...read(...page).matchAll(/<style>([^<]*)<\/style>/g)].map((match) => match[1]));
  assert.ok(linked.length > 0 && inPages.length > 2);
  for (const style of [...linked, ...inPages]) assert.doesNotMatch(style, /@import|url\(["']?(?:https?:)?\/\//);
});

test('the service worker keeps the pages and what they name, each under a revision', { skip }, () => {
  const list = [...read('sw.js').matchAll(/\{url:"([^"]+)",revision:(null|"[0-9a-f]{16}")\}/g)];
  for (const [, url, revision] of list) {
    assert.ok(existsSync(siteFile(url)), url);
    assert.equal(revision === 'null', /\.[0-9a-f]{16}\.\w+$/.test(url), url);
  }
  const kept = list.map(([, url]) => url);
  const urls = [...read('dist_langs', 'zh-CN', 'index-w.html').matchAll(/data-scripts='([^']+)'/g)].flatMap((match) => JSON.parse(match[1]));
  assert.equal(urls.length, 2);
  for (const url of [...urls, '/dist_langs/zh-CN/index-w.html']) assert.ok(kept.includes(url), url);
});
