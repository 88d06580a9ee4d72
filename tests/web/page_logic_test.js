// The page's logic without a browser (app/web/page): the address read as the
// desktop reads its command line; the drawing size over five minutes of 60 Hz
// frames on made-up devices whose frames take a time proportional to their
// pixels; the soundtrack's clock, never ahead of what the context rendered.
'use strict';

const assert = require('node:assert/strict');
const path = require('node:path');
const { test } = require('node:test');

let now = 0;
globalThis.window = { devicePixelRatio: 1 };
globalThis.document = { timeline: { get currentTime() { return now; } } };
globalThis.requestAnimationFrame = () => {};
globalThis.ResizeObserver = class { observe() {} };
const page = (file) => require(path.resolve(__dirname, '../../app/web/page', file));
const { readAddress } = page('kaskade_address.js');
const { partAtPlace, PART_ENDS } = page('kaskade_controls.js');
page('kaskade_resolution.js');
page('kaskade_soundtrack.js');

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

const REFRESH = 1000 / 60;
const picture = { getBoundingClientRect: () => ({ width: 1600, height: 1200 }) };

for (const [device, nanosPerPixel, settles] of [['quick', 5, 1600], ['slow', 14, 1156], ['slowest', 90, 640]]) {
  // The largest size drawn within a refresh, never below 640 x 480, a larger one tried again ever more rarely.
  test(`a ${device} device settles at ${settles} pixels wide`, () => {
    const { sizeForFrame } = window.kaskadeResolution.makeResolution(picture, false, null);
    const changes = [];
    let width = 1600;
    for (now = 0; now < 300000;) {
      const size = sizeForFrame();
      assert.ok(size.width >= 640 && size.width * 3 === size.height * 4, `${size.width} x ${size.height}`);
      if (size.width !== width) {
        changes.push(now);
        width = size.width;
      }
      now += Math.ceil((size.width * size.height * nanosPerPixel) / 1e6 / REFRESH) * REFRESH;
    }
    assert.equal(width, settles);
    assert.ok(changes.filter((at) => at > 120000).length <= 4, `sizes changed at ${changes.map(Math.round)} ms`);
  });
}

// An audio thread that stalls while the page goes on: the output's timestamp goes stale.
test('the clock waits at what the context rendered while the output timestamp is as old as the process', () => {
  const player = window.kaskadeSoundtrack.makePlayer({});
  const stamp = { contextTime: 0.999, performanceTime: 1e-9 };
  player.context = { currentTime: 1, outputLatency: 0.03, baseLatency: 0.01, state: 'running', getOutputTimestamp: () => stamp };
  assert.equal(player.heardContextMillis(), 1000);
  stamp.performanceTime = performance.now();
  assert.ok(Math.abs(player.heardContextMillis() - 1000) < 1e-6, 'and never goes back');
});

test("a place on the timeline's mark of a part is that part's start", () => {
  const marks = [0, ...PART_ENDS.slice(0, -1)].map((tenths) => partAtPlace(tenths / PART_ENDS[12]));
  assert.deepEqual(marks, [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13]);
});
