import { storedPreview } from '../preview/preview.js';
import { DocumentsApi } from './DocumentsApi.js';
import { askForFile } from './fileRequests.js';
import { connectionFor, readInjected } from './inject.js';
import { parseLocation } from './location.js';
import { officeType } from './officeTypes.js';
import { OpenProgress } from './OpenProgress.js';

/** An opening that began before the page's scripts were there; the document screen takes it over. */
export class EarlyOpening {
  #limit = new AbortController();
  #typeCode;
  #progress;

  /** Whether something of the document stands in its place. */
  showsStored = false;

  constructor({ owner, typeCode, fileId, frontVersion }) {
    this.#typeCode = typeCode;
    this.#progress = new OpenProgress(owner);
    this.#progress.begin({ fileId, officeType: typeCode, frontVersion });
    this.fileId = fileId;
    this.injected = readInjected(owner.__INJECT__, fileId);
    this.connId = connectionFor(this.injected, owner);
    const api = new DocumentsApi((url, init) => owner.fetch(url, init));
    this.replies = askForFile(api, {
      fileId, typeCode, connId: this.connId, injected: this.injected, signal: this.#limit.signal,
    });
  }

  /** Whether something of the document came with the page. */
  get hasStored() {
    return this.injected.content !== null || this.injected.cachedHtml !== null;
  }

  /** Called as soon as the document's place is there. */
  showStored(page) {
    const preview = storedPreview(this.injected, this.#typeCode);
    if (!preview) return;
    page.getElementById('document-place').replaceChildren(preview);
    if (this.injected.fileName) page.getElementById('file-name').textContent = this.injected.fileName;
    this.showsStored = true;
    this.#progress.textShown('injected');
  }

  giveUp() {
    this.#limit.abort();
  }
}

/** @returns {EarlyOpening | null} null when the page's URL names no document that this page can open */
export function startEarly({ owner, typeCode, frontVersion }) {
  const location = parseLocation(owner.location);
  const type = officeType(typeCode);
  if (location.kind !== 'document' || !type || !type.hasEditor) return null;
  if (location.officeType && location.officeType !== typeCode) return null;
  return new EarlyOpening({ owner, typeCode, fileId: location.fileId, frontVersion });
}
