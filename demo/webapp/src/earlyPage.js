/**
 * Stands in the page itself, before every other script: asks for the document and shows what the desktop side left in
 * the page while the scripts are still on their way.
 */
import { startEarly } from './document/EarlyOpening.js';
import { PageScripts } from './document/pageScripts.js';

const { officeType, frontVersion, scripts } = document.documentElement.dataset;
const early = startEarly({ owner: window, typeCode: officeType, frontVersion });
const pageScripts = new PageScripts(window, JSON.parse(scripts), { wait: early !== null && early.hasStored });

window.skyleafEarly = early;
window.skyleafPage = {
  /** Called as soon as the document's place is there. */
  begin(page) {
    if (early) early.showStored(page);
    pageScripts.load({ afterPainting: early !== null && early.showsStored });
  },
};
