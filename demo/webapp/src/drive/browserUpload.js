import { Sha1 } from './Sha1.js';

/** Uploads with the browser's own means. */
const singleRequestLimit = 1024 * 1024;
const readSize = 4 * 1024 * 1024;
const partSize = 8 * 1024 * 1024;
const attempts = 4;

async function piece(file, from, size) {
  return new Uint8Array(await file.slice(from, from + size).arrayBuffer());
}

async function sha1Of(file) {
  const hash = new Sha1();
  for (let at = 0; at < file.size; at += readSize) hash.add(await piece(file, at, readSize));
  return hash.hex();
}

function must(reply) {
  if (!reply.ok) throw Object.assign(new Error(reply.message), { reply });
  return reply.value;
}

/** Faults that may be over with the next request; a full disk (507) is not one of them. */
function mayPass({ reason, status }) {
  return reason === 'network' || reason === 'timeout' || (status >= 500 && status !== 507);
}

/** The answer to `ask`, which is asked again after faults of the line or the server. */
async function insistent(ask, timers) {
  for (let attempt = 1; ; ++attempt) {
    const reply = await ask();
    if (reply.ok || attempt === attempts || !mayPass(reply)) return reply;
    await new Promise((resolve) => timers.setTimeout(resolve, 500 * 2 ** attempt));
  }
}

async function sendParts(api, file, session, onProgress, timers) {
  let { offset } = session;
  let corrections = 0;
  while (offset < file.size) {
    onProgress(offset);
    const reply = await insistent(() => api.uploadPart(session.uploadid, offset, file.slice(offset, offset + partSize)), timers);
    // What a cut connection left behind counts: the server says from where to go on.
    const known = reply.status === 409 && reply.value && Number.isInteger(reply.value.offset);
    if (!known || ++corrections > attempts) offset = must(reply).offset;
    else offset = reply.value.offset;
  }
}

/**
 * Uploads one file; an unfinished upload of the same file goes on where it stopped.
 * @param {import('./DriveApi.js').DriveApi} api
 * @param {{file: File, place: {group: string, folder: string}, fileId?: string, onProgress?: (done: number) => void}} what
 *   fileId: the file of which this is a new version
 * @returns {Promise<import('./driveItems.js').DriveItem>} rejects with what the server said
 */
export async function uploadFile(api, { file, place, fileId = '0', onProgress = () => {}, timers = globalThis }) {
  const about = { name: file.name, fileId, size: file.size, sha1: await sha1Of(file) };
  if (file.size <= singleRequestLimit) return must(await insistent(() => api.putFile(place, about, file), timers));
  const session = must(await insistent(() => api.beginUpload(place, about), timers));
  await sendParts(api, file, session, onProgress, timers);
  return must(await insistent(() => api.finishUpload(session.uploadid), timers));
}

/**
 * Makes the folders of what was chosen, breadth first.
 * @param {{folders: string[]}[]} chosen see dropped.js
 * @returns {Promise<Map<string, object>>} the places by the folders' names, joined with "/"
 */
export async function makeFolders(api, place, chosen) {
  const places = new Map([['', place]]);
  const paths = chosen.flatMap(({ folders }) => folders.map((_, depth) => folders.slice(0, depth + 1)));
  for (const path of paths.sort((a, b) => a.length - b.length)) {
    const key = path.join('/');
    if (places.has(key)) continue;
    const above = places.get(path.slice(0, -1).join('/'));
    const folder = must(await api.makeFolder(above, path[path.length - 1]));
    places.set(key, { group: place.group, folder: folder.id });
  }
  return places;
}
