import './editorStart.js';
import { frontVersion } from './frontVersion.js';
import './text/sharedModules.js';
import { mountTextEditor } from './text/TextEditor.js';

window.skyleafDocs.registerEditor('w', mountTextEditor, frontVersion);
