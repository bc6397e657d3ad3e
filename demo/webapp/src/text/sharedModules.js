/**
 * The modules whose objects the editor and its part "code", which is a script of its own, must have in common. The build
 * leads the part's imports here; the names stand in `siteBuilder.mjs` too.
 */
import * as commands from 'prosemirror-commands';
import * as history from 'prosemirror-history';
import * as state from 'prosemirror-state';

window.skyleafShared = {
  'prosemirror-commands': commands,
  'prosemirror-history': history,
  'prosemirror-state': state,
};
