/** Whether a page asks, by "sw=1" in its URL, for the service worker that keeps the front end in the browser. */
export function wantsServiceWorker({ search }) {
  return new URLSearchParams(search).get('sw') === '1';
}
