/**
 * Installs the packages that package-lock.json names, unless exactly these are installed already: several build
 * directories share one source tree, and a build must not take the packages away from under another.
 */
import { execFileSync } from 'node:child_process';
import { createHash } from 'node:crypto';
import { existsSync, readFileSync, writeFileSync } from 'node:fs';
import path from 'node:path';
import { fileURLToPath } from 'node:url';

const here = path.dirname(fileURLToPath(import.meta.url));
const mark = path.join(here, 'node_modules', '.installed-lock');
const lock = createHash('sha256').update(readFileSync(path.join(here, 'package-lock.json'))).digest('hex');

if (!existsSync(mark) || readFileSync(mark, 'utf8') !== lock) {
  execFileSync('npm', ['ci'], { cwd: here, stdio: ['ignore', 'inherit', 'inherit'] });
  writeFileSync(mark, lock);
}
