// The page's address read as the desktop reads its command line
// (app/web/page/kaskade_address.js), without a browser. Run with `node --test`.
'use strict';

const assert = require('node:assert/strict');
const path = require('node:path');
const { test } = require('node:test');

const { readAddress } = require(path.resolve(__dirname, '../../app/web/page/kaskade_address.js'));

const PLAIN = { part: 1, t: -1, fps: 0, stats: false, grab: [], stop: [], errors: [] };
const FPS = 'fps needs a whole number of frames per second from 1 to 240';

test('the address takes what the show takes, names each value refused with what it accepts, and ignores the rest', () => {
  for (const [search, hash, wanted] of [
    ['', '', {}],
    ['?part=13&fps=240&grab=0,17,54457&stop=9', '', { part: 13, fps: 240, grab: [0, 17, 54457], stop: [9] }],
    ['?fps=1&part=01', '', { fps: 1 }],
    ['?fps', '', { stats: true }],  // the live clock with its statistics shown
    ['?utm_source=x&fault=fov', '', {}],  // as unknown options are no error
    // The player's address; a parameter wins over it.
    ['', '#part=9', { part: 9 }], ['?part=4', '#part=9', { part: 4 }], ['', '#top', {}],
    ['', '#t=93.5', { t: 93.5 }], ['?t=0', '#t=5', { t: 0 }], ['', '#part=3&t=226.9', { part: 3, t: 226.9 }],
    ['?fps=abc', '', { errors: [`fps=abc: ${FPS}`] }],
    ['?fps=500', '', { errors: [`fps=500: ${FPS}`] }],
    ['?part=0', '', { errors: ['part=0: part needs a part number from 1 to 13'] }],
    ['', '#part=14', { errors: ['part=14: part needs a part number from 1 to 13'] }],
    ['', '#t=227', { errors: ['t=227: t needs seconds from 0 to 226.9, e.g. 93.5'] }],
    // 2^32 would wrap to frame 0 in the show's 32-bit frame numbers.
    ['?grab=4294967296', '', { errors: ['grab=4294967296: grab needs frame numbers from 0 to 999999, separated by commas'] }],
    ['?fps=abc&part=99', '', { errors: ['part=99: part needs a part number from 1 to 13', `fps=abc: ${FPS}`] }],
    ['?part=2&part=3', '', { errors: ['part is given 2 times: give it once'] }],
    [`?part=${'9'.repeat(200)}`, '', { errors: [`part=${'9'.repeat(40)}…: part needs a part number from 1 to 13`] }],
  ]) {
    assert.deepEqual(readAddress(search, hash), { ...PLAIN, ...wanted }, `${search}${hash}`);
  }
  // Number() would take each of these.
  for (const [name, value] of [['fps', '0x1e'], ['fps', '1e1'], ['fps', '+5'], ['fps', ' 5'], ['fps', '5.0'], ['fps', '0b11'],
    ['stop', '5,,6'], ['stop', '5,-6'], ['t', '1e2'], ['t', '.5'], ['t', '5.'], ['t', '-0'], ['t', '5.1234']]) {
    assert.equal(readAddress(`?${name}=${encodeURIComponent(value)}`, '').errors.length, 1, `${name}=${value}`);
  }
});
