import { LanguageDescription } from '@codemirror/language';
import { languages } from '@codemirror/language-data';
import { frontVersion } from '../frontVersion.js';
import { providePart } from '../ui/parts.js';

/** @returns {LanguageDescription | null} the language that a code block's text names */
function languageNamed(name) {
  return LanguageDescription.matchLanguageName(languages, name, true);
}

providePart('codeLanguages', { frontVersion, languageNames: languages.map(({ name }) => name), languageNamed });
