/**
 * A worker that keeps the front end in the browser: pages and scripts come from its cache, everything else from the
 * network. It is there for comparison with front-end packages, and runs only for pages that ask for it.
 */
import { clientsClaim } from 'workbox-core';
import { createHandlerBoundToURL, precacheAndRoute } from 'workbox-precaching';
import { NavigationRoute, registerRoute } from 'workbox-routing';

const pageOf = (code) => `/dist_langs/zh-CN/index-${code}.html`;

self.skipWaiting();
clientsClaim();
precacheAndRoute(PRECACHED);

for (const code of EDITOR_CODES) {
  const page = new NavigationRoute(createHandlerBoundToURL(pageOf(code)), {
    allowlist: [new RegExp(`^/[pl]/.*[?&]officeType=${code}(&|$)`)],
  });
  registerRoute(page);
}
