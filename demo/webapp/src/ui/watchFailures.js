/** Errors that say nothing about the page: the browser reports them when a layout takes more than one round. */
const harmless = /^ResizeObserver loop/;

function missingFile(element) {
  const url = element.src || element.href || '';
  return `the file "${url.replace(/^https?:\/\/[^/]+/, '')}" could not be loaded`;
}

/**
 * Reports scripts and styles that cannot be loaded, uncaught errors and unhandled rejections.
 * @param {Window} owner
 * @param {(text: string) => void} report
 */
export function watchFailures(owner, report) {
  const onError = (event) => {
    const tag = event.target && event.target.tagName;
    if (tag === 'SCRIPT' || tag === 'LINK') report(missingFile(event.target));
    else if (event.message && !harmless.test(event.message)) report(event.message);
  };
  owner.addEventListener('error', onError, { capture: true });
  owner.addEventListener('unhandledrejection', ({ reason }) => {
    report(reason instanceof Error ? reason.message : String(reason));
  });
}
