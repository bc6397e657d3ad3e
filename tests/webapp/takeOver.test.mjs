import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import test from 'node:test';
import { TakeOver } from '../../demo/webapp/src/document/TakeOver.js';

const { JSDOM } = createRequire(new URL('../../demo/webapp/package.json', import.meta.url))('jsdom');
const framework = '/dist_langs/zh-CN/index-w.html';
const wanted = '/p/7?officeType=w&traceId=1';

/** As the desktop side does it: the address first, then the event. */
function tell(page, detail, address = detail && detail.url) {
  if (typeof address === 'string') page.history.replaceState(null, '', address);
  page.dispatchEvent(new page.CustomEvent('ON_APP_OPENFILE_READY', { detail }));
}

test('a page opens what it is told once, and nothing but documents of its site', () => {
  const cases = [
    { at: framework, tells: [{ url: wanted }], ends: wanted, opened: 1 },
    { at: framework, tells: [{ url: wanted }, { url: '/p/8?officeType=w' }], ends: wanted, opened: 1 },
    { at: '/p/6?officeType=w', tells: [{ url: wanted }], ends: '/p/6?officeType=w', opened: 0 },
    { at: framework, tells: [null, {}, { url: 7 }, { url: '' }, { url: '/drive' }], ends: framework, opened: 0 },
    { at: framework, tells: [{ url: '/office/new/w?officeType=w' }], ends: '/office/new/w?officeType=w', opened: 1 },
  ];
  for (const { at, tells, ends, opened } of cases) {
    const { window: page } = new JSDOM('', { url: `https://docs.skyleaf.test${at}` });
    let opens = 0;
    new TakeOver(page, () => { opens += 1; });
    tells.forEach((detail) => tell(page, detail));
    assert.deepEqual([page.location.pathname + page.location.search, opens], [ends, opened], JSON.stringify(tells));
  }
});

test('an event that names another site, or comes without a new address, is told apart', () => {
  const { window: page } = new JSDOM('', { url: `https://docs.skyleaf.test${framework}` });
  let opens = 0;
  new TakeOver(page, () => { opens += 1; });
  tell(page, { url: 'https://other.test/p/7' }, null);
  assert.equal(opens, 0);
  tell(page, { url: wanted }, null);
  assert.deepEqual([page.location.pathname, opens], ['/p/7', 1]);
});
