import crelt from 'crelt';
import { contentPreview, renderingPreview, storedPreview } from '../preview/preview.js';
import { ConflictSettler } from '../offline/ConflictSettler.js';
import { copyToOpen, unsentCopy } from '../offline/localCopy.js';
import { OfflineEditing } from '../offline/OfflineEditing.js';
import { sessionSaveText } from '../offline/saveText.js';
import { saveText } from '../ui/saveText.js';
import { confirmedDocument } from './confirmation.js';
import { renderingOf } from './DocumentsApi.js';
import { EditingSession } from './EditingSession.js';
import { askForFile } from './fileRequests.js';
import { connectionFor, Injection, newConnectionId } from './inject.js';
import { documentUrl, parseLocation } from './location.js';
import { officeType } from './officeTypes.js';
import { openedFrom, sourceOf } from './openedReply.js';
import { OpenProblem } from './OpenProblem.js';
import { OpenProgress } from './OpenProgress.js';
import { reconciliation } from './reconciliation.js';
import { isSignedOut } from './requestJson.js';

/**
 * The page of one document type. It opens what the page's URL names: shows at once what the desktop side left in the
 * page, asks for the document, and puts it into the editor. A later opening replaces an earlier one.
 */
export class DocumentScreen {
  #window;
  #typeCode;
  #api;
  #frame;
  #editors;
  #native;
  #progress;
  #frontVersion;
  #early;
  #injection;
  #offline;
  #session = null;
  #opening = null;
  #askAgain = null;
  #conflicts;
  #reportedUnsaved = false;

  /**
   * @param {object} parts
   * @param {Window} parts.window
   * @param {string} parts.typeCode the document type whose editor this page carries
   * @param {import('./DocumentsApi.js').DocumentsApi} parts.api
   * @param {import('../ui/PageFrame.js').PageFrame} parts.frame
   * @param {import('./EditorRegistry.js').EditorRegistry} parts.editors
   * @param {import('./NativeSide.js').NativeSide} parts.native
   * @param {string} [parts.frontVersion] the version of the page
   * @param {import('./EarlyOpening.js').EarlyOpening | null} [parts.early] what the page began by itself
   */
  constructor({ window, typeCode, api, frame, editors, native, frontVersion = null, early = null }) {
    this.#window = window;
    this.#typeCode = typeCode;
    this.#api = api;
    this.#frame = frame;
    this.#editors = editors;
    this.#native = native;
    this.#frontVersion = frontVersion;
    this.#early = early;
    this.#injection = new Injection(window);
    this.#progress = new OpenProgress(window);
    const ifCurrent = (then) => (session) => this.#session === session && then(session);
    this.#offline = new OfflineEditing({
      owner: window,
      native,
      api,
      typeCode,
      onChange: ifCurrent((session) => this.#showSaveState(session.state, session)),
      onLateCopy: ifCurrent(() => this.open()),
    });
    this.#conflicts = new ConflictSettler({
      offline: this.#offline,
      frame,
      ask: ({ fileId }) => this.#serverDocument(fileId),
      show: async (server) => this.#showNewer(server, await this.#editor(), 'network'),
      openDocument: (id) => window.location.assign(documentUrl(id, typeCode)),
    });
  }

  get isEditing() {
    return this.#session !== null;
  }

  /** Whether leaving the page now would lose what was typed. Starts to save what can still be saved. */
  leavingLosesChanges() {
    return this.#session !== null && this.#session.leavingLosesChanges();
  }

  /** Whether the page's end would lose something now. */
  get holdsUnsaved() {
    return this.#session !== null && this.#session.holdsUnsaved;
  }

  /** Saves and keeps what can be. @returns {Promise<boolean>} whether the page's end then loses nothing */
  prepareToLeave() {
    return this.#session ? this.#session.prepareToLeave() : Promise.resolve(true);
  }

  save() {
    return this.#session ? this.#session.save() : Promise.resolve();
  }

  /** The server may be there again, or take the user again: what waits for it goes on at once. */
  reconnect() {
    if (this.#askAgain) this.#askAgain();
    if (!this.#session || !this.#session.hasUnsavedChanges) return;
    if (this.#session.state.kind === 'failed') this.save();
    this.#conflicts.settleIfOffline(this.#session);
  }

  /**
   * Opens the document that the page's URL names; failures end in the problem panel, never in a rejection.
   * @param {{mayReload?: boolean}} [options] mayReload: a document of another type is opened by loading its page
   */
  async open({ mayReload = false } = {}) {
    if (this.#opening) this.#opening.abort();
    const opening = new AbortController();
    this.#opening = opening;
    if (!(await this.#leave(opening.signal, mayReload))) return;
    try {
      await this.#openLocation(opening.signal, mayReload);
    } catch (error) {
      if (opening.signal.aborted) return;
      const retry = () => (error.reloads ? this.#window.location.reload() : this.open());
      this.#showProblem(error.title || 'This document could not be shown', error.message, retry, error.isSignedOut);
    }
  }

  /** Reports a failure outside an opening: beside the document while one is open, in its place otherwise. */
  reportFailure(text) {
    if (this.#session) this.#frame.showNotice({ id: 'failure', text: `Something in this page failed: ${text}` });
    else this.#showProblem('Something in this page failed', text, () => this.#window.location.reload());
  }

  #showProblem(title, detail, retry, isSignedOut = false) {
    if (this.#progress.state) this.#progress.set({ error: detail });
    this.#frame.setSaveState('');
    this.#frame.showProblem({ title, detail, retry, actions: isSignedOut ? this.#signInActions() : [] });
  }

  /** Without the desktop side there is nobody to sign in at. */
  #signInActions() {
    return this.#native.present ? [{ label: 'Sign in', run: () => this.#native.tell('tavaLogin') }] : [];
  }

  /** The session ended while the document was open; the desktop side reloads the page once somebody signed in. */
  #showSignedOut(session) {
    this.#frame.showNotice({
      id: 'session',
      text: 'You are not signed in any more, so changes cannot be saved. They are kept in this page.',
      actions: [...this.#signInActions(), { label: 'Try again', run: () => this.#session === session && session.save() }],
      closable: false,
    });
  }

  /** Saves and takes down the open document. @returns {Promise<boolean>} whether the place is free */
  async #leave(signal, mayReload) {
    if (!this.#session) return true;
    await this.#session.save();
    if (signal.aborted) return false;
    if (this.#session && this.#session.hasUnsavedChanges && !(await this.#session.keep())) {
      this.#offerToStay(mayReload);
      return false;
    }
    this.#drop();
    return true;
  }

  #drop() {
    if (this.#session) this.#session.discard();
    this.#session = null;
    this.#reportUnsaved();
  }

  #offerToStay(mayReload) {
    const text = `"${this.#session.fileName}" could not be saved; the other document was not opened.`;
    const drop = () => {
      this.#drop();
      this.open({ mayReload });
    };
    const actions = [{ label: 'Try again', run: () => this.open({ mayReload }) }, { label: 'Discard and open', run: drop }];
    this.#frame.showNotice({ id: 'leaving', text, actions, closable: false });
  }

  async #openLocation(signal, mayReload) {
    const location = parseLocation(this.#window.location);
    const isEarly = this.#early !== null && this.#early.fileId === location.fileId;
    if (!isEarly) this.#begin(location.fileId || null);
    this.#frame.hideAllNotices();
    this.#frame.setSaveState('');
    if (location.kind === 'none') {
      this.#showReady();
      return;
    }
    if (location.officeType && location.officeType !== this.#typeCode) {
      this.#goToOtherType(location.officeType, mayReload);
      return;
    }
    const { hasEditor, label } = officeType(this.#typeCode);
    if (!hasEditor) {
      const detail = `Documents of type "${this.#typeCode}" (${label}) cannot be shown by this front end so far.`;
      throw new OpenProblem('No editor for this kind yet', detail);
    }
    const fileId = location.kind === 'new' ? await this.#create(signal) : location.fileId;
    if (!signal.aborted) await this.#openFile(fileId, signal);
  }

  #begin(fileId) {
    this.#progress.begin({ fileId, officeType: this.#typeCode, frontVersion: this.#frontVersion });
  }

  #showReady() {
    this.#frame.setTitle('Ready');
    const text = 'Ready: a document opens here as soon as one is chosen.';
    this.#frame.show(crelt('div', { class: 'ready', role: 'status' }, text));
  }

  #goToOtherType(code, mayReload) {
    if (!officeType(code)) throw new OpenProblem('No editor for this document', `Documents of type "${code}" have none.`);
    if (!mayReload) {
      const detail = `This is the page for type "${this.#typeCode}", the document is of type "${code}".`;
      throw new OpenProblem('The wrong page came', detail, { reloads: true });
    }
    this.#window.location.reload();
  }

  async #create(signal) {
    this.#frame.showBusy('Making a new document…');
    const reply = await this.#api.create(this.#typeCode, { signal });
    const id = reply.ok && reply.value && reply.value.id;
    if (!reply.ok) throw new OpenProblem('The new document could not be made', reply.message);
    if (!id) throw new OpenProblem('The new document could not be made', 'The server named no document.');
    if (!signal.aborted) this.#window.history.replaceState(null, '', documentUrl(id, this.#typeCode));
    this.#progress.set({ fileId: String(id) });
    return String(id);
  }

  async #openFile(fileId, signal) {
    const early = this.#takeEarly(fileId, signal);
    const injected = early ? early.injected : this.#injection.read(fileId);
    const kept = this.#offline.ask({ fileId, injected });
    const connId = early ? early.connId : connectionFor(injected, this.#window);
    const asked = early ? early.replies
      : askForFile(this.#api, { fileId, typeCode: this.#typeCode, connId, injected, signal });
    this.#frame.setTitle(injected.fileName || 'Document');
    if (!early || !early.showsStored) this.#showStored(injected);
    this.#followEnvConfig(asked.envConfig, signal);
    if (asked.rendered) this.#followRendering(asked.rendered, signal);
    asked.preopen.then(() => signal.aborted || this.#progress.step('reply'));

    const ask = () => this.#api.preopen(fileId, this.#typeCode, connId, { signal });
    const opening = { fileId, injected, reply: asked.preopen, ask, signal };
    const copy = await copyToOpen({ injected, kept, reply: asked.preopen });
    if (copy && (await this.#openCopy(copy, opening))) return;
    const reply = await asked.preopen;
    const opened = this.#readOpened(reply, fileId);
    if (signal.aborted) return;
    this.#frame.setTitle(opened.fileName);
    const from = sourceOf(reply);
    if (!this.#editors.has(this.#typeCode)) this.#preview(contentPreview(opened.content, this.#typeCode), from);
    const mount = await this.#editor();
    const unsent = copy ? null : await unsentCopy(kept);
    if (unsent && (await this.#openCopy(unsent, opening))) return;
    if (!signal.aborted) await this.#edit(opened, mount, from);
  }

  /** What the page began before this script was there, when it is for the file that is to be opened. */
  #takeEarly(fileId, signal) {
    const early = this.#early;
    this.#early = null;
    if (early === null) return null;
    if (early.fileId !== fileId) {
      early.giveUp();
      return null;
    }
    signal.addEventListener('abort', () => early.giveUp(), { once: true });
    return early;
  }

  #showStored(injected) {
    const preview = storedPreview(injected, this.#typeCode);
    if (preview) this.#preview(preview, 'injected');
    else this.#frame.showBusy('Opening…');
  }

  /**
   * Opens a copy on this computer, which the desktop side put into the page or which was kept by an earlier one, and compares it with the server's document as soon as
   * that is there. @returns {Promise<boolean>} false when the editor cannot read the copy
   */
  async #openCopy(local, { fileId, injected, reply, ask, signal }) {
    const mount = await this.#editor();
    if (signal.aborted) return true;
    const { content, unsent, version: base } = local;
    const fileName = injected.fileName || local.fileName || 'Document';
    try {
      const copy = { fileId, fileName, version: null, base, content, unsent };
      await this.#edit(copy, mount, content === injected.content ? 'injected' : 'kept');
    } catch {
      return false;
    }
    const session = this.#session;
    this.#confirm({ local, session, mount, reply, ask, fileId, signal, offlineEditing: injected.offlineEditing });
    return true;
  }

  async #confirm({ local, session, mount, reply, ask, fileId, signal, offlineEditing }) {
    const onFailure = (message, tryAgain) => {
      this.#askAgain = tryAgain;
      session.isServerAway = true;
      this.#showSaveState(session.state, session);
      const kept = offlineEditing ? 'You can go on; changes are sent when the server answers.' : 'Changes are kept in this page only.';
      const text = `This is the copy on this computer: the server's document could not be read (${message}). ${kept}`;
      this.#frame.showNotice({ id: 'unconfirmed', text, actions: [...(isRefused ? this.#signInActions() : []), { label: 'Try again', run: tryAgain }] });
      this.#progress.set({ error: message });
    };
    let source = 'network';
    let isRefused = false;
    const read = (answer) => {
      source = sourceOf(answer);
      isRefused = isSignedOut(answer);
      return this.#readReply(answer, fileId);
    };
    const server = await confirmedDocument({ reply, ask, read, onFailure, signal });
    this.#askAgain = null;
    if (server === null || this.#session !== session) return;
    this.#frame.hideNotice('unconfirmed');
    this.#progress.set({ error: null });
    this.#frame.setTitle(server.fileName);
    session.fileName = server.fileName;
    switch (reconciliation(local, server, session.hasUnsavedChanges || local.unsent)) {
      case 'same':
        session.rebase(server.version);
        break;
      case 'send':
        session.rebase(server.version, { unsent: true });
        if (local.unsent) session.save();
        break;
      case 'conflict':
        session.refuse(server.version);
        break;
      default:
        await this.#showNewer(server, mount, source);
    }
  }

  async #showNewer(server, mount, from) {
    try {
      await this.#edit(server, mount, from);
    } catch (error) {
      this.#session.refuse(server.version);
      const text = `The server's document cannot be read by this editor (${error.message}); this is the copy on this computer.`;
      this.#frame.showNotice({ id: 'unconfirmed', text });
    }
  }

  #readReply(reply, fileId) {
    if (reply.ok) this.#progress.setSource('preopen', reply.source);
    return openedFrom(reply, fileId, this.#typeCode);
  }

  #readOpened(reply, fileId) {
    const opened = this.#readReply(reply, fileId);
    if (!opened.ok) throw new OpenProblem(opened.title, `${opened.message}.`, { isSignedOut: opened.isSignedOut });
    return opened;
  }

  async #editor() {
    try {
      return await this.#editors.editor(this.#typeCode);
    } catch (error) {
      throw new OpenProblem('The editor is missing', `${error.message}.`, { reloads: true });
    }
  }

  /**
   * Puts a document into the editor, in the place of an earlier one if there is one. What was shown stays until the
   * editor stands. Rejects, with everything as it was, when the editor cannot read the content.
   */
  async #edit(opened, mount, from) {
    const host = crelt('div', { class: `editor editor-${this.#typeCode}` });
    const earlier = this.#session;
    let session = null;
    const onSaveState = (state) => (session === null || this.#session === session) && this.#showSaveState(state, session);
    const onChange = () => this.#reportUnsaved();
    this.#frame.insert(host);
    this.#progress.step('mount');
    try {
      session = new EditingSession({ opened, mount, host, api: this.#api, onSaveState, onChange });
      this.#session = session;
      session.isServerAway = opened.unsent === true;
      if (session.ready) await session.ready;
    } catch (error) {
      host.remove();
      this.#session = earlier;
      if (earlier === null) this.#previewUnlessShown(opened.content, from);
      throw new OpenProblem('The editor cannot read this document', error.message);
    }
    if (this.#session !== session) return;
    if (earlier && earlier.hasUnsavedChanges) {
      this.#keep(earlier, { instead: session, host, version: opened.version });
      return;
    }
    this.#frame.reveal(host);
    this.#injection.used();
    this.#progress.textShown(from);
    if (earlier) earlier.discard();
    session.focus();
    if (!earlier) this.#reportReady(opened);
    this.#progress.editable(from);
    this.#offline.follow(session, { opened });
  }

  /** Something was typed while the newer document was being built: that is not thrown away. */
  #keep(earlier, { instead, host, version }) {
    instead.discard();
    host.remove();
    this.#session = earlier;
    earlier.refuse(version);
  }

  #previewUnlessShown(content, from) {
    if (!this.#progress.state.visible) this.#preview(contentPreview(content, this.#typeCode), from);
  }

  async #reportReady({ fileId, fileName }) {
    const session = this.#session;
    const fileType = this.#typeCode;
    if ((await this.#native.whenPresent()) && this.#session === session) {
      this.#native.reportReady({ fileId, fileName, fileType });
    }
  }

  /** The desktop side knows at any time whether the page may go without a question. */
  #reportUnsaved() {
    const unsaved = this.holdsUnsaved;
    if (unsaved !== this.#reportedUnsaved && this.#native.reportUnsaved(unsaved)) this.#reportedUnsaved = unsaved;
  }

  #showSaveState(state, session) {
    this.#reportUnsaved();
    const { text, tone } = session ? sessionSaveText(session) : saveText(state);
    this.#frame.setSaveState(text, tone);
    this.#progress.set({ saved: state.kind === 'saved', error: tone === 'bad' ? text : null });
    if (state.kind === 'failed' && state.isSignedOut) this.#showSignedOut(session);
    else if (state.kind === 'saved') this.#frame.hideNotice('session');
    if (state.kind !== 'conflict') {
      this.#frame.hideNotice('conflict');
      return;
    }
    if (session) this.#conflicts.settleIfOffline(session);
    const isKept = session && session.keeper;
    const actions = [
      { label: 'Load the newer version', run: () => (isKept ? this.#conflicts.settle(session) : this.#reloadDiscarding()) },
      { label: 'Overwrite it', run: () => this.#session.overwrite() },
    ];
    const notice = 'This document was changed elsewhere since it was opened here. Your changes are kept in this page.';
    this.#frame.showNotice({ id: 'conflict', text: notice, actions, closable: false });
  }

  async #serverDocument(fileId) {
    return this.#readOpened(await this.#api.preopen(fileId, this.#typeCode, newConnectionId()), fileId);
  }

  #reloadDiscarding() {
    this.#drop();
    this.open();
  }

  #preview(node, from) {
    this.#frame.show(node);
    this.#progress.textShown(from);
  }

  async #followRendering(rendered, signal) {
    const reply = await rendered;
    const html = reply.ok ? renderingOf(reply.value) : null;
    if (html === null || signal.aborted || this.#session || this.#progress.state.error) return;
    this.#preview(renderingPreview(html, this.#typeCode), sourceOf(reply));
  }

  #showFrontVersion(wanted) {
    const own = this.#frontVersion || 'of unknown version';
    const other = wanted && wanted !== this.#frontVersion ? ` (the server names ${wanted})` : '';
    this.#frame.setStatus('front-version', `Front end ${own}${other}`);
  }

  async #followEnvConfig(envConfig, signal) {
    const reply = await envConfig;
    if (signal.aborted) return;
    if (reply.ok) this.#progress.setSource('envConfig', reply.source);
    const version = reply.ok && reply.value && reply.value.config && reply.value.config.front_ver;
    this.#showFrontVersion(version);
    if (reply.ok || isSignedOut(reply)) return;
    const text = `The document's configuration is missing (${reply.message}); editing works without it.`;
    this.#frame.showNotice({ id: 'configuration', text });
  }
}
