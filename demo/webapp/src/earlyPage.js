/**
 * Stands in the page itself, before every other script: asks for the document and shows what the desktop side left in
 * the page while the scripts are still on their way.
 */
import { startEarly } from './document/EarlyOpening.js';

const { officeType, frontVersion } = document.documentElement.dataset;
window.skyleafEarly = startEarly({ owner: window, typeCode: officeType, frontVersion });
