import { saveText } from '../ui/saveText.js';

const offline = { text: 'Offline: changes are kept on this computer', tone: 'quiet' };
const conflict = { text: 'Conflict: the document was changed elsewhere', tone: 'bad' };

/**
 * How the save state of a session reads, where its changes are kept on this computer.
 * @param {import('../document/EditingSession.js').EditingSession} session
 */
export function sessionSaveText(session) {
  const { state, keeper, isServerAway } = session;
  if (keeper === null) return saveText(state);
  if (state.kind === 'conflict') return conflict;
  const isWaiting = isServerAway && ['failed', 'held', 'changed'].includes(state.kind);
  if (!isWaiting) return state.kind === 'saving' && isServerAway ? { text: 'Sending changes…', tone: 'busy' } : saveText(state);
  if (keeper.isKept) return offline;
  if (keeper.error === null) return { text: 'Saving…', tone: 'busy' };
  return { text: `Neither saved nor kept on this computer: ${keeper.error}`, tone: 'bad' };
}
