/** "Plan.docx" → "Plan (offline version).docx" */
export function offlineName(fileName) {
  const [, stem, suffix] = /^(.*?)(\.[^.]*)?$/s.exec(fileName);
  return `${stem || 'Document'} (offline version)${suffix || ''}`;
}

/**
 * Puts what a session holds into a document of its own at the server. What is typed meanwhile goes there too.
 * @param {object} options
 * @param {import('../document/DocumentsApi.js').DocumentsApi} options.api
 * @param {() => object} options.content
 * @param {{id: string, name: string, version: number} | null} options.made of an earlier, unfinished attempt
 * @param {(made: object) => void} options.onMade
 * @returns {Promise<{id: string, name: string}>} rejects, with a text for the user, when the server did not take it
 */
export async function keepAsDocument({ api, typeCode, fileName, content, made, onMade }) {
  let copy = made;
  if (!copy) {
    const reply = await api.create(typeCode, { name: offlineName(fileName) });
    if (!reply.ok || !reply.value || !reply.value.id) throw new Error(reply.message || 'the server named no document');
    copy = { id: String(reply.value.id), name: String(reply.value.name || offlineName(fileName)), version: 1 };
    onMade(copy);
  }
  for (let sent = null; sent === null || sent !== JSON.stringify(content());) {
    const now = content();
    sent = JSON.stringify(now);
    const reply = await api.save(copy.id, copy.version, now);
    const isOld = reply.status === 409 && reply.value && Number.isSafeInteger(reply.value.file_version);
    if (!reply.ok && !isOld) throw new Error(reply.message);
    copy.version = Number(reply.value.file_version);
    if (isOld) sent = null;
  }
  return copy;
}
