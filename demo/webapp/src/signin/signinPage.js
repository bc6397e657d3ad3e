import { NativeSide } from '../document/NativeSide.js';

/** Stands in for a document until somebody is signed in; the desktop side then loads the document in its place. */
const native = new NativeSide(window);
const button = document.getElementById('sign-in');

button.addEventListener('click', () => native.tell('tavaLogin', {}, {
  onFailure: (text) => { document.getElementById('state').textContent = `You could not be signed in: ${text}.`; },
}));
document.getElementById('retry').addEventListener('click', () => window.location.reload());
native.whenPresent().then((present) => { button.hidden = !present; });
