import assert from 'node:assert/strict';
import test from 'node:test';

import { addressAtServer, PageScripts } from '../../demo/webapp/src/document/pageScripts.js';

function fakePage(href = 'https://d.test/p/1?officeType=w') {
  const added = [];
  const frames = [];
  const replaced = [];
  const problem = { hidden: true };
  const document = {
    createElement: (name) => ({ name }),
    head: { append: (element) => added.push(element) },
    getElementById: () => problem,
  };
  const owner = {
    document, location: { href, replace: (url) => replaced.push(url) },
    requestAnimationFrame: (fn) => frames.push(fn), setTimeout: (fn, ms) => ms || fn(),
  };
  const nextFrame = () => frames.splice(0).forEach((fn) => fn());
  return { owner, added, nextFrame, replaced, problem };
}

const named = (added, name) => added.filter((element) => element.name === name);

test('scripts are fetched at once, or run once what is stored was painted', () => {
  const plain = fakePage();
  new PageScripts(plain.owner, ['a.js', 'b.js'], { wait: false }).load({ afterPainting: false });
  assert.deepEqual(named(plain.added, 'link').map(({ href }) => href), ['a.js', 'b.js']);
  assert.deepEqual(named(plain.added, 'script').map(({ src, async }) => [src, async]), [['a.js', false], ['b.js', false]]);

  const stored = fakePage();
  new PageScripts(stored.owner, ['a.js'], { wait: true }).load({ afterPainting: true });
  assert.deepEqual(stored.added, []);
  stored.nextFrame();
  assert.deepEqual(stored.added, []);
  stored.nextFrame();
  assert.equal(named(stored.added, 'script').length, 1);
});

test('a page whose scripts are gone goes to the server once', () => {
  const gone = fakePage('https://d.test/p/1?officeType=w&openEnv=hybrid&localId=3&x=1');
  new PageScripts(gone.owner, ['a.js', 'b.js'], { wait: false }).load({ afterPainting: false });
  const [first, second] = named(gone.added, 'script');
  first.onerror();
  assert.deepEqual(gone.replaced, []);
  second.onload();
  assert.deepEqual(gone.replaced, ['https://d.test/p/1?x=1&from=scripts-missing']);

  assert.equal(addressAtServer(gone.replaced[0]), null);
  const there = fakePage(gone.replaced[0]);
  new PageScripts(there.owner, ['a.js'], { wait: false }).load({ afterPainting: false });
  named(there.added, 'script')[0].onerror();
  assert.equal(there.problem.hidden, false);
});

test('the page is told once when all its scripts ran or failed', () => {
  const page = fakePage();
  let told = 0;
  page.owner.skyleafDocs = { scriptsRead: () => { told += 1; } };
  new PageScripts(page.owner, ['a.js', 'b.js'], { wait: false }).load({ afterPainting: false });
  const [first, second] = named(page.added, 'script');
  first.onload();
  assert.equal(told, 0, 'the editor may still come');
  second.onerror();
  assert.equal(told, 1);
  assert.deepEqual(page.replaced, []);
});
