import { fileVersion } from './fileVersion.js';

/**
 * @typedef {{ok: true, fileId: string, fileName: string, officeType: string, version: number, content: object}} Opened
 */

function isObject(value) {
  return typeof value === 'object' && value !== null && !Array.isArray(value);
}

function refusal(message) {
  return { ok: false, message };
}

/**
 * Reads the reply to a pre-open request.
 * @returns {Opened | {ok: false, message: string}}
 */
export function readPreopenReply(reply, expectedType) {
  if (!isObject(reply)) return refusal('the reply is not an object');
  if (reply.result !== 'ok') return refusal(`the server answered "${reply.msg || reply.result || 'nothing'}"`);
  const environment = reply['window.__VLTENV__'];
  if (!isObject(environment)) return refusal('the reply says nothing about the file');
  if (environment.office_type !== undefined && environment.office_type !== expectedType) {
    return refusal(`the document is of type "${environment.office_type}", this page edits type "${expectedType}"`);
  }
  const version = fileVersion(environment.file_version);
  if (version === null) return refusal('the reply names no file version');
  if (!isObject(reply.content)) return refusal('the reply holds no document content');
  return {
    ok: true,
    fileId: String(environment.file_id === undefined ? '' : environment.file_id),
    fileName: typeof environment.file_name === 'string' && environment.file_name ? environment.file_name : 'Untitled',
    officeType: expectedType,
    version,
    content: reply.content,
  };
}
