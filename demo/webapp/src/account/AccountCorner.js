import crelt from 'crelt';
import { answered } from '../native/answered.js';
import { accountState, accountText, roamingState } from './accountState.js';
import { Menu } from './Menu.js';

/** The user's corner of a title bar: who is signed in, and the services of the desktop side. */
class AccountCorner {
  #native;
  #notify;
  #onChange;
  #state = null;
  #roaming = null;
  #menu = new Menu('Account', () => this.#entries());

  constructor({ native, notify, onChange }) {
    this.#native = native;
    this.#notify = notify;
    this.#onChange = onChange;
    this.dom = crelt('div', { class: 'corner' }, this.#menu.dom);
    const changed = native.callback((report) => this.#take(accountState(report)));
    this.#tell('registerCookieUpdateHandler', { callback: changed.name });
    this.#check();
  }

  /** The page goes on with what it kept while nobody was signed in, even for the same user. */
  #take(state) {
    this.#show(state);
    if (state !== null) window.dispatchEvent(new CustomEvent('skyleaf-account', { detail: state }));
  }

  async #check() {
    try {
      this.#show(accountState(await this.#native.call('tavaCheckLogined')));
      this.#showRoaming(await this.#native.call('getRoamingMode'));
    } catch (error) {
      this.#notify(`The account is not known: ${error.message}.`);
    }
  }

  #show(state) {
    if (state === null) return;
    const before = this.#state;
    this.#state = state;
    this.#menu.setLabel(accountText(state));
    this.#menu.refresh();
    if (before !== null && before.userId !== state.userId) this.#onChange(state);
  }

  #showRoaming(reply) {
    this.#roaming = roamingState(reply);
    this.#menu.refresh();
  }

  #entries() {
    const signedIn = this.#state !== null && this.#state.signedIn;
    const service = (label, method, args) => ({ label, run: () => this.#tell(method, args) });
    return [
      signedIn ? service('Sign out', 'tavaLogout') : service('Sign in…', 'tavaLogin'),
      { label: 'Roaming', checked: this.#roaming, disabled: !signedIn, keepOpen: true, run: () => this.#switchRoaming() },
      service('Virtual cloud disk', 'openVirtualCloudDisk'),
      service('Membership…', 'upgradeVip', { pageSource: 'account' }),
      { label: 'Check the network', keepOpen: true, run: () => this.#checkNetwork() },
      service('Diagnosis…', 'showNetDetect'),
    ];
  }

  async #switchRoaming() {
    try {
      const reply = await this.#native.call('setRoamingMode');
      if (reply.callstatus === 'error') this.#menu.note(`Roaming stays as it is: ${reply.errormsg}.`);
      this.#showRoaming(await this.#native.call('getRoamingMode'));
    } catch (error) {
      this.#menu.note(`Roaming stays as it is: ${error.message}.`);
    }
  }

  async #checkNetwork() {
    this.#menu.note('Checking…');
    try {
      const { status } = await answered(this.#native, 'checkNetwork', {});
      this.#menu.note(status === 'true' ? 'The network can be reached.' : 'The network cannot be reached.');
    } catch (error) {
      this.#menu.note(`The network was not checked: ${error.message}.`);
    }
  }

  #tell(method, args) {
    this.#native.tell(method, args, { onFailure: (text) => this.#notify(`The desktop side refused: ${text}.`) });
  }
}

/**
 * Puts the corner at the end of a title bar as soon as the desktop side is there; without it there is none.
 * @param {object} parts
 * @param {import('../document/NativeSide.js').NativeSide} parts.native
 * @param {HTMLElement} parts.header
 * @param {(text: string) => void} parts.notify
 * @param {(state: {signedIn: boolean, userId: string}) => void} [parts.onChange] another user than before
 */
export async function mountAccountCorner({ native, header, notify, onChange = () => {} }) {
  if (!(await native.whenPresent())) return;
  header.append(new AccountCorner({ native, notify, onChange }).dom);
}
