// What browsers have and older Node.js releases keep in modules.
import { File } from 'node:buffer';
import { webcrypto } from 'node:crypto';

globalThis.crypto ??= webcrypto;
globalThis.File ??= File;
