/** How a save state reads in the title bar. @param {import('../document/SaveQueue.js').SaveState} state */
export function saveText(state) {
  switch (state.kind) {
    case 'saved':
      return { text: 'Saved', tone: 'quiet' };
    case 'held':
      return { text: 'Copy on this computer, not yet compared with the server', tone: 'quiet' };
    case 'changed':
    case 'saving':
      return { text: 'Saving…', tone: 'busy' };
    case 'conflict':
      return { text: 'Not saved: the document was changed elsewhere', tone: 'bad' };
    default:
      return { text: `Not saved: ${state.message}`, tone: 'bad' };
  }
}
