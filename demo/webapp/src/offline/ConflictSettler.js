import { sameJson } from '../document/sameJson.js';

/**
 * What was typed here meets a newer version at the server: the server's is shown, the other one becomes a document of
 * its own.
 */
export class ConflictSettler {
  #offline;
  #frame;
  #ask;
  #show;
  #openDocument;
  #isSettling = false;

  /**
   * @param {object} options
   * @param {import('./OfflineEditing.js').OfflineEditing} options.offline
   * @param {import('../ui/PageFrame.js').PageFrame} options.frame
   * @param {(session: object) => Promise<{content: object, version: number}>} options.ask for the server's document;
   *   may reject
   * @param {(server: object) => Promise<void>} options.show puts the server's document in the session's place
   * @param {(id: string) => void} options.openDocument
   */
  constructor({ offline, frame, ask, show, openDocument }) {
    this.#offline = offline;
    this.#frame = frame;
    this.#ask = ask;
    this.#show = show;
    this.#openDocument = openDocument;
  }

  /** A conflict with what was typed without the server needs nobody to decide. */
  settleIfOffline(session) {
    if (session.state.kind === 'conflict' && session.keeper && session.isServerAway) this.settle(session);
  }

  /** Never rejects; when the server does not take it, everything is as it was. */
  async settle(session) {
    if (this.#isSettling) return;
    this.#isSettling = true;
    try {
      await this.#settle(session);
      this.#frame.hideNotice('settling');
    } catch (error) {
      const text = `Your version could not be kept as a document yet (${error.message}).`;
      const actions = [{ label: 'Try again', run: () => this.settle(session) }];
      this.#frame.showNotice({ id: 'settling', text, actions });
    } finally {
      this.#isSettling = false;
    }
  }

  async #settle(session) {
    const server = await this.#ask(session);
    if (session.isDiscarded) return;
    if (session.lastSent !== null && sameJson(server.content, session.lastSent)) {
      // The answer to the save was lost, not the save.
      session.rebase(server.version, { unsent: !sameJson(server.content, session.content()) });
      return;
    }
    const { id, name } = await this.#offline.keepBoth(session);
    session.isServerAway = false;
    await this.#show(server);
    const text = `The document was changed elsewhere. Your offline version was kept as "${name}".`;
    const actions = [{ label: 'Open it', run: () => this.#openDocument(id) }];
    this.#frame.showNotice({ id: 'kept', text, actions });
  }
}
