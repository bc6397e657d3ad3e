import assert from 'node:assert/strict';
import test from 'node:test';
import { fileNameOf, newConnectionId, readInjected } from '../../demo/webapp/src/document/inject.js';
import { documentUrl, parseLocation } from '../../demo/webapp/src/document/location.js';
import { readPreopenReply } from '../../demo/webapp/src/document/preopenReply.js';
import { linkTarget } from '../../demo/webapp/src/text/linkTarget.js';

test('a page URL says which document to open', () => {
  const cases = [
    ['/p/100001?officeType=w', { kind: 'document', fileId: '100001', officeType: 'w' }],
    ['/l/abc/', { kind: 'document', fileId: 'abc', officeType: null }],
    ['/p/team/42?x=1&officeType=s', { kind: 'document', fileId: '42', officeType: 's' }],
    ['/p/a%2Fb', { kind: 'document', fileId: 'a/b', officeType: null }],
    ['/p/%E0%A4%A', { kind: 'document', fileId: '%E0%A4%A', officeType: null }],
    ['/office/new/s', { kind: 'new', officeType: 's' }],
    ['/p/', { kind: 'none' }],
    ['/office/new/', { kind: 'none' }],
    ['/', { kind: 'none' }],
  ];
  for (const [url, expected] of cases) {
    const { pathname, search } = new URL(url, 'https://docs.skyleaf.test');
    assert.deepEqual(parseLocation({ pathname, search }), expected, url);
  }
  const { pathname, search } = new URL(documentUrl('a/b', 'w'), 'https://docs.skyleaf.test');
  assert.deepEqual(parseLocation({ pathname, search }), { kind: 'document', fileId: 'a/b', officeType: 'w' });
});

test('injected values count only in their right shape', () => {
  const absent = {
    connId: null, content: null, contentVersion: null, cachedHtml: null, offlineEditing: false, fileName: null,
  };
  const nothing = { _LOCAL_CONNID: 'null', _LOCAL_INJECT_DATA: { content: null }, _LOCAL_INJECT_CACHE: null };
  for (const inject of [undefined, null, 'text', [], nothing, { _LOCAL_CONNID: 7, _LOCAL_INJECT_DATA: 'x' }]) {
    assert.deepEqual(readInjected(inject), absent);
  }
  const injected = readInjected({
    _LOCAL_CONNID: 'abc',
    _LOCAL_INJECT_DATA: { content: { type: 'doc' } },
    _LOCAL_INJECT_CACHE: { csr: '<h1>Title<\\/h1><p>a<\\/p>' },
    _LOCAL_INJECT_DATA_FILEINFO: { name: 'Plan.docx' },
  });
  assert.equal(injected.connId, 'abc');
  assert.deepEqual(injected.content, { type: 'doc' });
  assert.equal(injected.cachedHtml, '<h1>Title</h1><p>a</p>');
  assert.equal(injected.fileName, 'Plan.docx');
  const versioned = readInjected({ _LOCAL_INJECT_DATA: { content: '{"file_version":"7","content":{"type":"doc"}}' } });
  assert.deepEqual([versioned.content, versioned.contentVersion], [{ type: 'doc' }, 7]);
  for (const ssr of ['<p>s</p>', { ssr: { html: '<p>s</p>' } }, '{"ssr":{"html":"<p>s</p>"}}']) {
    assert.equal(readInjected({ _LOCAL_INJECT_DATA_SSRCONTENT: ssr }).cachedHtml, '<p>s</p>');
  }
});

test('the file name is found at the top and one level down', () => {
  assert.equal(fileNameOf('{"data": {"fname": "A.docx"}}'), 'A.docx');
  assert.equal(fileNameOf({ file_info: { name: 'B.docx' } }), 'B.docx');
  assert.equal(fileNameOf({ name: 5, data: null }), null);
  assert.equal(fileNameOf('no json'), null);
});

test('a connection id has 32 hexadecimal digits', () => {
  assert.equal(newConnectionId((bytes) => bytes.fill(10)), '0a'.repeat(16));
  assert.notEqual(newConnectionId(), newConnectionId());
});

test('a pre-open reply is taken only when it is complete and of the page\'s type', () => {
  const environment = { file_id: '1', file_version: '3', file_name: 'A.docx', office_type: 'w' };
  const reply = (changes, members = {}) => ({
    result: 'ok', 'window.__VLTENV__': { ...environment, ...changes }, content: { type: 'doc' }, ...members,
  });
  const opened = readPreopenReply(reply({}), 'w');
  assert.equal(opened.version, 3);
  assert.equal(opened.fileName, 'A.docx');
  const refused = [
    [null, /not an object/],
    [reply({}, { result: 'NotFound', msg: 'gone' }), /gone/],
    [reply({}, { 'window.__VLTENV__': null }), /nothing about the file/],
    [reply({ office_type: 's' }), /type "s"/],
    [reply({ file_version: '' }), /no file version/],
    [reply({ file_version: 'x' }), /no file version/],
    [reply({}, { content: [] }), /no document content/],
  ];
  for (const [value, message] of refused) {
    const answer = readPreopenReply(value, 'w');
    assert.equal(answer.ok, false);
    assert.match(answer.message, message);
  }
});

test('only links that may be followed are made', () => {
  assert.equal(linkTarget(' example.org/a '), 'https://example.org/a');
  assert.equal(linkTarget('localhost:8080/a'), 'https://localhost:8080/a');
  assert.equal(linkTarget('mailto:a@example.org'), 'mailto:a@example.org');
  for (const bad of ['', '  ', 'javascript:alert(1)', 'JavaScript:alert(1)', 'data:text/html,x', 'file:///etc']) {
    assert.equal(linkTarget(bad), null, bad);
  }
});
