// The body of an async function, for a document that is still saving: whether nothing would be lost now.
const { skyleafDocs } = window;
return !(skyleafDocs && typeof skyleafDocs.losesOnLeaving === 'function' && skyleafDocs.losesOnLeaving());
