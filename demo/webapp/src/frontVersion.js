/* global FRONT_VERSION */
/** The version that this script was built as; the build writes it in. */
export const frontVersion = typeof FRONT_VERSION === 'undefined' ? 'unbuilt' : FRONT_VERSION;
