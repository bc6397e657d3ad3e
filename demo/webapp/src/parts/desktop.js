import { frontVersion } from '../frontVersion.js';
import { linkEditor } from '../editing/linkEditor.js';
import '../styles/desktop.css';
import { providePart } from '../ui/parts.js';

providePart('desktop', { frontVersion, linkEditor });
