/** Ends an opening with a text for the user; a retry opens again, or reloads the page when scripts are missing. Who is signed out is offered to sign in. */
export class OpenProblem extends Error {
  constructor(title, detail, { reloads = false, isSignedOut = false } = {}) {
    super(detail);
    this.title = title;
    this.reloads = reloads;
    this.isSignedOut = isSignedOut;
  }
}
