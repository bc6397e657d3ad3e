import { fileVersion } from './fileVersion.js';
import { isSignedOut } from './requestJson.js';

/**
 * Sends a document's content to the server: after a pause in typing, one save at a time, again after a failure, and
 * never over a newer version unless told so. It keeps no copy of the content: it takes it when a save starts, so
 * nothing that was typed can be lost between two saves.
 *
 * @typedef {{ok: true, version: number}
 *   | {ok: false, reason: 'conflict', version: number}
 *   | {ok: false, reason: 'refused' | 'signedOut' | 'unreachable', message: string}} SaveOutcome
 *   only 'unreachable' is tried again without being asked
 * A queue without a version holds its saves back until it is told the version that the content rests on.
 *
 * @typedef {{kind: 'held' | 'saved' | 'changed' | 'saving' | 'conflict'} | {kind: 'failed', message: string, isSignedOut: boolean}} SaveState
 */

const firstRetryMs = 2000;
const longestRetryMs = 30000;

export class SaveQueue {
  #send;
  #takeContent;
  #onState;
  #timers;
  #idleMs;
  #baseVersion;
  #conflictVersion = 0;
  #state = { kind: 'saved' };
  #dirty = false;
  #timer = null;
  #retryMs = firstRetryMs;
  #running = null;
  #closed = false;

  /**
   * @param {object} options
   * @param {(baseVersion: number, content: object) => Promise<SaveOutcome>} options.send must not reject
   * @param {() => object} options.takeContent the content as it is now
   * @param {number | null} options.version the version that the content was loaded at; null when not yet known
   * @param {(state: SaveState) => void} options.onState
   */
  constructor({ send, takeContent, version, onState, idleMs = 1000, timers = globalThis }) {
    this.#send = send;
    this.#takeContent = takeContent;
    this.#baseVersion = version;
    this.#onState = onState;
    this.#idleMs = idleMs;
    this.#timers = timers;
    if (version === null) this.#state = { kind: 'held' };
  }

  get state() {
    return this.#state;
  }

  get hasUnsavedChanges() {
    return this.#dirty || this.#running !== null;
  }

  /** The document changed. */
  changed() {
    if (this.#closed) return;
    this.#dirty = true;
    if (this.#running || this.#state.kind === 'conflict' || this.#state.kind === 'held') return;
    this.#enter({ kind: 'changed' });
    this.#schedule(this.#idleMs);
  }

  /** Saves what is unsaved now. Resolves when nothing is being sent any more, saved or not. */
  async flush() {
    while (this.#dirty && this.#state.kind !== 'conflict' && this.#state.kind !== 'held') {
      await (this.#running || this.#start());
      if (this.#state.kind === 'failed') return;
    }
    await this.#running;
  }

  /** A held queue learns what its content rests on: what was typed since is sent. */
  rebase(version) {
    this.#baseVersion = version;
    this.#enter(this.#dirty ? { kind: 'changed' } : { kind: 'saved' });
    if (this.#dirty) this.#schedule(this.#idleMs);
  }

  /** A held queue learns that the server holds something else: nothing is sent unless told so. */
  refuse(version) {
    this.#dirty = true;
    this.#conflictVersion = version;
    this.#enter({ kind: 'conflict' });
  }

  /** After a conflict: saves over the version that the server holds. */
  overwrite() {
    if (this.#state.kind !== 'conflict') return Promise.resolve();
    this.#baseVersion = this.#conflictVersion;
    this.#enter({ kind: 'changed' });
    return this.flush();
  }

  /** What is unsaved is in safety elsewhere: nothing more is sent of what the queue holds. */
  forget() {
    this.#unschedule();
    this.#dirty = false;
    this.#enter({ kind: 'held' });
  }

  /** Ends the queue: nothing is scheduled any more, what is unsaved is the caller's to flush before. */
  close() {
    this.#closed = true;
    this.#unschedule();
  }

  #enter(state) {
    this.#state = state;
    if (!this.#closed) this.#onState(state);
  }

  #schedule(delayMs) {
    this.#unschedule();
    if (this.#closed) return;
    this.#timer = this.#timers.setTimeout(() => this.flush(), delayMs);
  }

  #unschedule() {
    if (this.#timer !== null) this.#timers.clearTimeout(this.#timer);
    this.#timer = null;
  }

  #start() {
    this.#unschedule();
    this.#dirty = false;
    this.#enter({ kind: 'saving' });
    this.#running = this.#send(this.#baseVersion, this.#takeContent()).then((outcome) => {
      this.#running = null;
      this.#finish(outcome);
    });
    return this.#running;
  }

  #finish(outcome) {
    if (outcome.ok) {
      this.#baseVersion = outcome.version;
      this.#retryMs = firstRetryMs;
      this.#enter(this.#dirty ? { kind: 'changed' } : { kind: 'saved' });
      if (this.#dirty) this.#schedule(this.#idleMs);
      return;
    }
    this.#dirty = true;
    if (outcome.reason === 'conflict') {
      this.#conflictVersion = outcome.version;
      this.#enter({ kind: 'conflict' });
      return;
    }
    this.#enter({ kind: 'failed', message: outcome.message, isSignedOut: outcome.reason === 'signedOut' });
    if (outcome.reason !== 'unreachable') return;
    this.#schedule(this.#retryMs);
    this.#retryMs = Math.min(this.#retryMs * 2, longestRetryMs);
  }
}

/** What a save reply means to the queue. @returns {SaveOutcome} */
export function saveOutcome(reply) {
  const version = fileVersion(reply.value && reply.value.file_version);
  if (reply.ok) {
    if (reply.value && reply.value.result === 'ok' && version !== null) return { ok: true, version };
    return { ok: false, reason: 'refused', message: 'the server did not confirm the save' };
  }
  if (reply.status === 409 && version !== null) return { ok: false, reason: 'conflict', version };
  if (isSignedOut(reply)) return { ok: false, reason: 'signedOut', message: 'you are not signed in' };
  const mayPass = reply.status === 0 || reply.status >= 500 || reply.status === 429;
  return { ok: false, reason: mayPass ? 'unreachable' : 'refused', message: reply.message };
}
