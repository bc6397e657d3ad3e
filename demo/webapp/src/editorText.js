import { mountTextEditor } from './text/TextEditor.js';

window.skyleafDocs.registerEditor('w', mountTextEditor);
