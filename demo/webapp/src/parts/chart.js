import * as echarts from 'echarts';
import { frontVersion } from '../frontVersion.js';
import { providePart } from '../ui/parts.js';

providePart('chart', { frontVersion, init: echarts.init });
