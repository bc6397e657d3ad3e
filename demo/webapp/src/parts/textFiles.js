import mammoth from 'mammoth';
import { frontVersion } from '../frontVersion.js';
import { providePart } from '../ui/parts.js';
import { docxBlob } from '../text/docxExport.js';

/** @param {ArrayBuffer} arrayBuffer a word-processor file @returns {Promise<string>} its text as HTML */
async function docxToHtml(arrayBuffer) {
  return (await mammoth.convertToHtml({ arrayBuffer })).value;
}

providePart('textFiles', { frontVersion, docxBlob, docxToHtml });
