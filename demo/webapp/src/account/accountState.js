/**
 * Who is signed in, from a reply of `tavaCheckLogined` or a report of a change, which says the same with numbers.
 * @returns {{signedIn: boolean, userId: string} | null} null when the text says nothing of it
 */
export function accountState(reply) {
  if (!reply || typeof reply !== 'object' || reply.logined === undefined) return null;
  const signedIn = reply.logined === true || reply.logined === 1 || reply.logined === '1' || reply.logined === 'true';
  return { signedIn, userId: signedIn ? String(reply.userid || '') : '' };
}

export function accountText(state) {
  if (state === null) return 'Account';
  if (!state.signedIn) return 'Not signed in';
  return state.userId === '' ? 'Signed in' : `Signed in as ${state.userId}`;
}

/** Whether roaming is on; null when the desktop side does not know. */
export function roamingState({ callstatus, mode } = {}) {
  if (callstatus === 'error' || mode === undefined || mode === '' || mode === 'unknown') return null;
  return !['off', '0', 'false', 'close', 'closed'].includes(String(mode).toLowerCase());
}
