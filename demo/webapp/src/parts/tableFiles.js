import { frontVersion } from '../frontVersion.js';
import { readSpreadsheet, spreadsheetBlob } from '../table/spreadsheetFiles.js';
import { providePart } from '../ui/parts.js';

providePart('tableFiles', { frontVersion, readSpreadsheet, spreadsheetBlob });
