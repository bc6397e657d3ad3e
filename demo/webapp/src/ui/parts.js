/* global PART_URLS */
import crelt from 'crelt';

/**
 * What an editor needs only now and then lies in scripts of its own, read when it is asked for the first time. They
 * share no module with the editor but those that the build leads to it, so nothing else that is compared by identity
 * may pass between the two.
 */
const loading = new Map();

/** Called by a part's script. */
export function providePart(name, members) {
  window.skyleafParts = { ...window.skyleafParts, [name]: members };
}

function readScript(name) {
  const style = PART_URLS[`${name}.css`];
  if (style) document.head.append(crelt('link', { rel: 'stylesheet', href: style }));
  return new Promise((resolve, reject) => {
    const script = document.createElement('script');
    script.onload = () => resolve(window.skyleafParts[name]);
    script.onerror = () => {
      script.remove();
      reject(new Error(`the front end's part "${name}" could not be loaded`));
    };
    script.src = PART_URLS[`${name}.js`];
    document.head.append(script);
  });
}

/** @returns {Promise<object>} what the part offers; rejects when its script is missing, and may be asked again then */
export function loadPart(name) {
  if (!loading.has(name)) {
    const part = readScript(name);
    part.catch(() => loading.delete(name));
    loading.set(name, part);
  }
  return loading.get(name);
}
