import crelt from 'crelt';
import { renderHtmlPreview } from '../preview/htmlPreview.js';
import { renderTablePreview } from '../preview/tablePreview.js';
import { renderTextPreview } from '../preview/textPreview.js';
import { saveText } from '../ui/saveText.js';
import { EditingSession } from './EditingSession.js';
import { newConnectionId, readInjected } from './inject.js';
import { documentUrl, parseLocation } from './location.js';
import { officeType } from './officeTypes.js';
import { OpenProgress } from './OpenProgress.js';
import { readPreopenReply } from './preopenReply.js';

/** Ends an opening with a text for the user; a retry opens again, or reloads the page when scripts are missing. */
class OpenProblem extends Error {
  constructor(title, detail, { reloads = false } = {}) {
    super(detail);
    this.title = title;
    this.reloads = reloads;
  }
}

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
  #session = null;
  #opening = null;

  /**
   * @param {object} parts
   * @param {Window} parts.window
   * @param {string} parts.typeCode the document type whose editor this page carries
   * @param {import('./DocumentsApi.js').DocumentsApi} parts.api
   * @param {import('../ui/PageFrame.js').PageFrame} parts.frame
   * @param {import('./EditorRegistry.js').EditorRegistry} parts.editors
   * @param {import('./NativeSide.js').NativeSide} parts.native
   */
  constructor({ window, typeCode, api, frame, editors, native }) {
    this.#window = window;
    this.#typeCode = typeCode;
    this.#api = api;
    this.#frame = frame;
    this.#editors = editors;
    this.#native = native;
    this.#progress = new OpenProgress(window);
  }

  get isEditing() {
    return this.#session !== null;
  }

  /** Whether leaving the page now would lose what was typed. Starts to save what can still be saved. */
  leavingLosesChanges() {
    return this.#session !== null && this.#session.leavingLosesChanges();
  }

  save() {
    return this.#session ? this.#session.save() : Promise.resolve();
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
      this.#showProblem(error.title || 'This document could not be shown', error.message, retry);
    }
  }

  /** Reports a failure outside an opening: beside the document while one is open, in its place otherwise. */
  reportFailure(text) {
    if (this.#session) this.#frame.showNotice({ id: 'failure', text: `Something in this page failed: ${text}` });
    else this.#showProblem('Something in this page failed', text, () => this.#window.location.reload());
  }

  #showProblem(title, detail, retry) {
    if (this.#progress.state) this.#progress.set({ error: detail });
    this.#frame.setSaveState('');
    this.#frame.showProblem({ title, detail, retry });
  }

  /** Saves and takes down the open document. @returns {Promise<boolean>} whether the place is free */
  async #leave(signal, mayReload) {
    if (!this.#session) return true;
    await this.#session.save();
    if (signal.aborted) return false;
    if (this.#session && this.#session.hasUnsavedChanges) {
      this.#offerToStay(mayReload);
      return false;
    }
    this.#drop();
    return true;
  }

  #drop() {
    if (this.#session) this.#session.discard();
    this.#session = null;
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
    this.#progress.begin({ fileId: location.fileId || null, officeType: this.#typeCode });
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
    const fileId = location.kind === 'new' ? await this.#create(signal) : location.fileId;
    if (!signal.aborted) await this.#openFile(fileId, signal);
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
    const injected = readInjected(this.#window.__INJECT__);
    const connId = injected.connId || newConnectionId();
    this.#frame.setTitle(injected.fileName || 'Document');
    this.#frame.showBusy('Opening…');
    const hasPreview = this.#showInjected(injected);

    const preopen = this.#api.preopen(fileId, this.#typeCode, connId, { signal });
    this.#followEnvConfig(this.#api.envConfig(fileId, connId, { signal }), signal);
    // A connection id from the desktop side means that it may hold the server's rendering already.
    if (injected.connId && !hasPreview) this.#followRendering(this.#api.rendered(fileId, connId, { signal }), signal);

    const opened = this.#readOpened(await preopen, fileId);
    if (signal.aborted) return;
    this.#frame.setTitle(opened.fileName);
    if (!this.#editors.has(this.#typeCode)) this.#preview(this.#render(opened.content));
    const mount = await this.#editor();
    if (!signal.aborted) this.#edit(opened, mount);
  }

  #readOpened(reply, fileId) {
    if (!reply.ok && reply.status === 404) {
      throw new OpenProblem('There is no such document', `The server knows no document "${fileId}" of this type.`);
    }
    if (!reply.ok) throw new OpenProblem('The document could not be opened', `Document ${fileId}: ${reply.message}.`);
    this.#progress.setSource('preopen', reply.source);
    const opened = readPreopenReply(reply.value, this.#typeCode);
    if (!opened.ok) throw new OpenProblem('The document could not be opened', `Document ${fileId}: ${opened.message}.`);
    return { ...opened, fileId: opened.fileId || fileId };
  }

  async #editor() {
    try {
      return await this.#editors.editor(this.#typeCode);
    } catch (error) {
      throw new OpenProblem('The editor is missing', `${error.message}.`, { reloads: true });
    }
  }

  #edit(opened, mount) {
    const host = crelt('div', { class: `editor editor-${this.#typeCode}` });
    const onSaveState = (state) => this.#showSaveState(state);
    this.#frame.show(host);
    try {
      this.#session = new EditingSession({ opened, mount, host, api: this.#api, onSaveState });
    } catch (error) {
      this.#preview(this.#render(opened.content));
      throw new OpenProblem('The editor cannot read this document', error.message);
    }
    this.#progress.textShown();
    this.#showSaveState({ kind: 'saved' });
    this.#session.focus();
    this.#progress.editable();
    this.#reportReady(opened);
  }

  async #reportReady({ fileId, fileName }) {
    const session = this.#session;
    const fileType = officeType(this.#typeCode).packageName;
    if ((await this.#native.whenPresent()) && this.#session === session) {
      this.#native.reportReady({ fileId, fileName, fileType });
    }
  }

  #showSaveState(state) {
    const { text, tone } = saveText(state);
    this.#frame.setSaveState(text, tone);
    this.#progress.set({ saved: state.kind === 'saved', error: tone === 'bad' ? text : null });
    if (state.kind !== 'conflict') {
      this.#frame.hideNotice('conflict');
      return;
    }
    const actions = [
      { label: 'Load the newer version', run: () => this.#reloadDiscarding() },
      { label: 'Overwrite it', run: () => this.#session.overwrite() },
    ];
    const notice = 'This document was changed elsewhere since it was opened here. Your changes are kept in this page.';
    this.#frame.showNotice({ id: 'conflict', text: notice, actions, closable: false });
  }

  #reloadDiscarding() {
    this.#drop();
    this.open();
  }

  #render(content) {
    return this.#typeCode === 'w' ? renderTextPreview(content) : renderTablePreview(content);
  }

  #preview(node) {
    this.#frame.show(crelt('div', { class: 'preview', 'aria-readonly': 'true' }, node));
    this.#progress.textShown();
  }

  #showInjected({ content, cachedHtml }) {
    if (content) this.#preview(this.#render(content));
    else if (cachedHtml) this.#preview(renderHtmlPreview(cachedHtml, this.#typeCode));
    return Boolean(content || cachedHtml);
  }

  async #followRendering(rendered, signal) {
    const reply = await rendered;
    const html = reply.ok && reply.value && reply.value.ssr && reply.value.ssr.html;
    if (signal.aborted || this.#session || this.#progress.state.error || typeof html !== 'string') return;
    this.#preview(renderHtmlPreview(html, this.#typeCode));
  }

  async #followEnvConfig(envConfig, signal) {
    const reply = await envConfig;
    if (signal.aborted) return;
    if (reply.ok) this.#progress.setSource('envConfig', reply.source);
    const version = reply.ok && reply.value && reply.value.config && reply.value.config.front_ver;
    this.#frame.setStatus('front-version', version ? `Front end ${version}` : '');
    if (reply.ok) return;
    const text = `The document's configuration is missing (${reply.message}); editing works without it.`;
    this.#frame.showNotice({ id: 'configuration', text });
  }
}
