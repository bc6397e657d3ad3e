import { frontVersion } from '../frontVersion.js';
import { CodeBlockView } from '../text/CodeBlockView.js';
import { providePart } from '../ui/parts.js';

providePart('code', { frontVersion, CodeBlockView });
