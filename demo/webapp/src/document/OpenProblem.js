/** Ends an opening with a text for the user; a retry opens again, or reloads the page when scripts are missing. */
export class OpenProblem extends Error {
  constructor(title, detail, { reloads = false } = {}) {
    super(detail);
    this.title = title;
    this.reloads = reloads;
  }
}
