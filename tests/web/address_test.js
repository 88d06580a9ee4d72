// The page's address read as the desktop reads its command line
// (app/web/page/kaskade_address.js), without a browser. Run with `node --test`.
'use strict';

const assert = require('node:assert/strict');
const path = require('node:path');
const { describe, test } = require('node:test');

const { readAddress } = require(path.resolve(__dirname, '../../app/web/page/kaskade_address.js'));

describe('the page address', () => {
  test('takes what the show takes and leaves the rest as a plain start', () => {
    assert.deepEqual(readAddress('', ''), { part: 1, fps: 0, stats: false, grab: [], stop: [], errors: [] });
    assert.deepEqual(readAddress('?part=13&fps=240&grab=0,17,54457&stop=9', ''),
                     { part: 13, fps: 240, stats: false, grab: [0, 17, 54457], stop: [9], errors: [] });
    // A bare fps: the live clock with its statistics shown.
    assert.deepEqual([readAddress('?fps', '').fps, readAddress('?fps', '').stats], [0, true]);
    assert.deepEqual(readAddress('?fps=1&part=01', '').errors, []);
    assert.equal(readAddress('?fps=1&part=01', '').part, 1);
    // Parameters the show does not know are no error, as unknown options are not.
    assert.deepEqual(readAddress('?utm_source=x&fault=fov', '').errors, []);
  });

  test('refuses a value out of range or not written in decimal digits, naming it and what it accepts', () => {
    const refused = (search) => readAddress(search, '').errors;
    assert.deepEqual(refused('?fps=abc'), ['fps=abc: fps needs a whole number of frames per second from 1 to 240']);
    assert.deepEqual(refused('?fps=500'), ['fps=500: fps needs a whole number of frames per second from 1 to 240']);
    assert.deepEqual(refused('?part=99'), ['part=99: part needs a part number from 1 to 13']);
    assert.deepEqual(refused('?part=0'), ['part=0: part needs a part number from 1 to 13']);
    // Number() would take each of these.
    for (const value of ['0x1e', '1e1', '+5', ' 5', '5.0', '0b11']) {
      assert.equal(refused(`?fps=${encodeURIComponent(value)}`).length, 1, `fps=${value}`);
    }
    // 2^32 would wrap to frame 0 in the show's 32-bit frame numbers.
    assert.deepEqual(refused('?grab=4294967296'),
                     ['grab=4294967296: grab needs frame numbers from 0 to 999999, separated by commas']);
    assert.equal(refused('?stop=5,,6').length, 1);
    assert.equal(refused('?stop=5,-6').length, 1);
  });

  test('names every refused parameter and a parameter given twice', () => {
    assert.deepEqual(readAddress('?fps=abc&part=99', '').errors, [
      'part=99: part needs a part number from 1 to 13',
      'fps=abc: fps needs a whole number of frames per second from 1 to 240',
    ]);
    assert.deepEqual(readAddress('?part=2&part=3', '').errors, ['part is given 2 times: give it once']);
  });

  test("reads the player's #part=N, refused as the parameter is, and a parameter wins over it", () => {
    assert.equal(readAddress('', '#part=9').part, 9);
    assert.equal(readAddress('?part=4', '#part=9').part, 4);
    assert.deepEqual(readAddress('', '#part=14').errors, ['part=14: part needs a part number from 1 to 13']);
    assert.deepEqual(readAddress('', '#top').errors, []);
  });

  test('shortens a long refused value', () => {
    const [error] = readAddress(`?part=${'9'.repeat(200)}`, '').errors;
    assert.ok(error.length < 120, error);
    assert.match(error, /^part=9{40}…: part needs a part number from 1 to 13$/);
  });
});
