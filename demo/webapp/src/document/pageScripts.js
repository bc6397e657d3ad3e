const longestPaintMs = 250;

/** The page's address at the server: a local package that lost its scripts answers for URLs that name the kind. */
export function addressAtServer(href) {
  const url = new URL(href);
  if (!url.searchParams.has('officeType')) return null;
  for (const name of ['officeType', 'openEnv', 'localId']) url.searchParams.delete(name);
  url.searchParams.set('from', 'scripts-missing');
  return url.href;
}

/** Calls `then` when what stands in the page was painted; after a while also in a page that paints nothing. */
function afterPaint(owner, then) {
  let called = false;
  const once = () => {
    if (called) return;
    called = true;
    then();
  };
  owner.requestAnimationFrame(() => owner.requestAnimationFrame(() => owner.setTimeout(once)));
  owner.setTimeout(once, longestPaintMs);
}

/**
 * The page's scripts. They are fetched at once, unless something of the document stands in the page already: that is
 * painted first, and the scripts get the processor afterwards.
 */
export class PageScripts {
  #owner;
  #urls;

  constructor(owner, urls, { wait }) {
    this.#owner = owner;
    this.#urls = urls;
    if (!wait) urls.forEach((url) => this.#add('link', { rel: 'preload', as: 'script', href: url }));
  }

  /** Called when the page's elements are there. */
  load({ afterPainting }) {
    if (afterPainting) afterPaint(this.#owner, () => this.#run());
    else this.#run();
  }

  #run() {
    let open = this.#urls.length;
    const ended = () => {
      open -= 1;
      if (open > 0) return;
      if (this.#owner.skyleafDocs) this.#owner.skyleafDocs.scriptsRead?.(); // missing in a script of an older build
      else this.#goToServer();
    };
    for (const src of this.#urls) this.#add('script', { src, async: false, onload: ended, onerror: ended });
  }

  #goToServer() {
    const { document, location } = this.#owner;
    const address = addressAtServer(location.href);
    if (address) location.replace(address);
    else document.getElementById('problem').hidden = false;
  }

  #add(name, members) {
    const element = Object.assign(this.#owner.document.createElement(name), members);
    this.#owner.document.head.append(element);
  }
}
