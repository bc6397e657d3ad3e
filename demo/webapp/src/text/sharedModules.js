/**
 * The modules whose objects the code editor and the languages, which are a script of their own, must have in common.
 * The build leads the languages' imports here; the names stand in `siteBuilder.mjs` too.
 */
import * as language from '@codemirror/language';
import * as state from '@codemirror/state';
import * as view from '@codemirror/view';
import * as common from '@lezer/common';
import * as highlight from '@lezer/highlight';

window.skyleafShared = {
  '@codemirror/language': language,
  '@codemirror/state': state,
  '@codemirror/view': view,
  '@lezer/common': common,
  '@lezer/highlight': highlight,
};
