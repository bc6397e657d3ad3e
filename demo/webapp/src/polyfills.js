/** What the editors' packages use and the oldest supported browser (Chromium 87) lacks. */
import 'core-js/actual/array/at';
import 'core-js/actual/array/find-last';
import 'core-js/actual/array/find-last-index';
import 'core-js/actual/object/has-own';
import 'core-js/actual/string/at';
