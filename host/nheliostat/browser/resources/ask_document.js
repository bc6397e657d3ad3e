// The body of an async function, evaluated before a document ends: whether nothing is lost with it. The document saves
// first what it can, when it has the hook for it; one without is asked as the browser would.
const { skyleafDocs } = window;
if (skyleafDocs && typeof skyleafDocs.prepareToLeave === 'function') {
  return (await skyleafDocs.prepareToLeave()) !== false;
}
// A page that nobody touched holds nobody up.
if (!navigator.userActivation || !navigator.userActivation.hasBeenActive) {
  return true;
}
const question = document.createEvent('BeforeUnloadEvent');
question.initEvent('beforeunload', false, true);
window.dispatchEvent(question);
return !question.defaultPrevented && !question.returnValue;
