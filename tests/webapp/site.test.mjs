import assert from 'node:assert/strict';
import { existsSync, readdirSync, readFileSync } from 'node:fs';
import path from 'node:path';
import test from 'node:test';

const site = process.env.WEBAPP_SITE;
const skip = site ? false : 'WEBAPP_SITE names no built site';
const read = (...names) => readFileSync(path.join(site, ...names), 'utf8');
const pages = [['home.html'], ['dist_langs', 'zh-CN', 'index-w.html'], ['dist_langs', 'zh-CN', 'index-s.html']];

/** Where a URL of a page lies in the site. */
function siteFile(url) {
  return path.join(site, url.replace(/^\/hybrid\//, '/'));
}

test('every file that a page names is in the site, without query', { skip }, () => {
  for (const page of pages) {
    const urls = [...read(...page).matchAll(/<(?:script|link|img)[^>]*(?:src|href)="([^"]+)"/g)].map((match) => match[1]);
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

test('the package lists exactly its files to read ahead', { skip }, () => {
  const { pc } = JSON.parse(read('preload-file.json'));
  const files = readdirSync(path.join(site, 'weboffice-static', 'js')).map((name) => `/weboffice-static/js/${name}`);
  assert.deepEqual([...pc].sort(), files.sort());
  assert.ok(JSON.parse(read('inject.json')).includes('_LOCAL_CONNID'));
  assert.match(read('version'), /^\d+\.\d+\.\d+\n$/);
});

test('styles fetch nothing from elsewhere', { skip }, () => {
  const styles = JSON.parse(read('preload-file.json')).pc.filter((name) => name.endsWith('.css'));
  assert.ok(styles.length > 0);
  for (const name of styles) assert.doesNotMatch(read(name), /@import|url\(["']?(?:https?:)?\/\//);
});
