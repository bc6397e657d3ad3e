import { mountTableEditor } from './table/TableEditor.js';

window.skyleafDocs.registerEditor('s', mountTableEditor);
