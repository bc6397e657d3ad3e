// Evaluated in a page that has opened its document: waits until the text is painted, and tells the times of the opening.
const limit = Date.now() + 15000;
const state = () => window.__DOCS_STATE__;
while (!(state() && state().times.visible && state().times.editable) && Date.now() < limit) {
  await new Promise((resolve) => setTimeout(resolve, 20));
}
const { times, visibleFrom, contentFrom, source, error } = state();
const [navigation] = performance.getEntriesByType('navigation');
const scripts = performance.getEntriesByType('resource').filter(({ name }) => /\/js\/(document|editor-\w+)\.[0-9a-f]+\.js$/.test(name));
return {
  times, visibleFrom, contentFrom, source, error,
  origin: performance.timeOrigin,
  clockSkew: Date.now() - performance.timeOrigin - performance.now(),
  worker: Boolean(navigator.serviceWorker && navigator.serviceWorker.controller),
  requestStart: navigation.requestStart,
  pageReceived: navigation.responseEnd,
  scripts: scripts.map(({ name, responseEnd, transferSize, encodedBodySize, workerStart }) => ({
    name, responseEnd, workerStart, bodyFetched: transferSize > encodedBodySize,
  })),
  marks: Object.fromEntries(performance.getEntriesByType('mark').map(({ name, startTime }) => [name, startTime])),
  paints: Object.fromEntries(performance.getEntriesByType('paint').map(({ name, startTime }) => [name, startTime])),
};
