import './editorStart.js';
import { frontVersion } from './frontVersion.js';
import { mountTableEditor } from './table/TableEditor.js';

window.skyleafDocs.registerEditor('s', mountTableEditor, frontVersion);
