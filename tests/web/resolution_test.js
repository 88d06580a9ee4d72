// The size the picture is drawn at (app/web/page/kaskade_resolution.js),
// without a browser: five minutes of frames on a 60 Hz display, drawn by
// made-up devices whose frames take a time proportional to their pixels. The
// size settles on the largest the device draws within a refresh, is never
// below 640 x 480, and tries a larger size again ever more rarely.
'use strict';

const assert = require('node:assert/strict');
const path = require('node:path');
const { test } = require('node:test');

let now = 0;
globalThis.window = { devicePixelRatio: 1 };
globalThis.document = { timeline: { get currentTime() { return now; } } };
globalThis.requestAnimationFrame = () => {};
globalThis.ResizeObserver = class { observe() {} };
require(path.resolve(__dirname, '../../app/web/page/kaskade_resolution.js'));

const REFRESH = 1000 / 60;
const picture = { getBoundingClientRect: () => ({ width: 1600, height: 1200 }) };

for (const [device, nanosPerPixel, settles] of [['quick', 5, 1600], ['slow', 14, 1156], ['slowest', 90, 640]]) {
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
