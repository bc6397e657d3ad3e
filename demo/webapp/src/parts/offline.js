import { frontVersion } from '../frontVersion.js';
import { keepAsDocument } from '../offline/keepBoth.js';
import { Keeper } from '../offline/Keeper.js';
import { providePart } from '../ui/parts.js';

providePart('offline', { frontVersion, Keeper, keepAsDocument });
