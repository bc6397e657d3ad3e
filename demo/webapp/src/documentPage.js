/**
 * The first script file of a document page: small, so that it can show what is there while the editor script is still
 * being read. The document was asked for before, by `earlyPage.js`.
 */
import './documentStart.js';
import './polyfills.js';
import { DocumentScreen } from './document/DocumentScreen.js';
import { DocumentsApi } from './document/DocumentsApi.js';
import { EditorRegistry } from './document/EditorRegistry.js';
import { NativeSide } from './document/NativeSide.js';
import { TakeOver } from './document/TakeOver.js';
import { wantsServiceWorker } from './document/workerWish.js';
import { frontVersion } from './frontVersion.js';
import { PageFrame } from './ui/PageFrame.js';
import { watchFailures } from './ui/watchFailures.js';

const editors = new EditorRegistry();
const native = new NativeSide(window);
const frame = new PageFrame(document);

window.skyleafDocs = {
  /** The versions of what runs in this page: they are one, unless files of different builds were mixed. */
  versions: { page: document.documentElement.dataset.frontVersion, document: frontVersion, editor: null },
  registerEditor(typeCode, mount, version) {
    window.performance.mark('docs-editor-ready');
    this.versions.editor = version;
    editors.register(typeCode, mount);
  },
  /** Called by the page once each of its scripts ran, or failed. */
  scriptsRead: () => editors.allScriptsRead(),
  notify: (notice) => frame.showNotice(notice),
  /** Asked by the desktop side before the page ends: saves what can be saved; resolves to whether nothing is lost then. */
  prepareToLeave: () => screen.prepareToLeave(),
  /** Asked while that takes long. */
  losesOnLeaving: () => screen.holdsUnsaved,
};

const screen = new DocumentScreen({
  window,
  typeCode: document.documentElement.dataset.officeType,
  api: new DocumentsApi((url, init) => window.fetch(url, init)),
  frame,
  editors,
  native,
  frontVersion,
  early: window.skyleafEarly || null,
});

async function showNativeSide() {
  const present = await native.whenPresent();
  const version = present ? await native.apiVersion() : null;
  const text = version ? `Desktop interface ${version}` : 'Desktop interface without version';
  frame.setStatus('native-side', present ? text : 'Native side not present');
}

function saveByKey(event) {
  if (!(event.ctrlKey || event.metaKey) || event.altKey || event.key.toLowerCase() !== 's') return;
  event.preventDefault();
  screen.save();
}

function warnBeforeLoss(event) {
  if (!screen.leavingLosesChanges()) return;
  event.preventDefault();
  event.returnValue = '';
}

watchFailures(window, (text) => screen.reportFailure(text));
new TakeOver(window, () => {
  // Also tells the desktop side, which was not there for a page without a document, that somebody is at home here.
  showNativeSide();
  screen.open({ mayReload: true });
});
window.addEventListener('keydown', saveByKey, { capture: true });
window.addEventListener('beforeunload', warnBeforeLoss);
window.addEventListener('pagehide', () => screen.leavingLosesChanges());
window.addEventListener('online', () => screen.reconnect());
window.addEventListener('focus', () => screen.reconnect());
window.addEventListener('skyleaf-account', ({ detail }) => detail.signedIn && screen.reconnect());

screen.open();
showNativeSide();
if (wantsServiceWorker(window.location) && window.navigator.serviceWorker) {
  window.navigator.serviceWorker.register('/sw.js').catch((error) => screen.reportFailure(error.message));
}
