// The soundtrack's player (app/web/page/kaskade_soundtrack.js) without a
// browser: the show's clock, what the output plays, never runs ahead of what
// the AudioContext rendered, not even when the output's timestamp goes stale
// (an audio thread that stalls while the page goes on).
'use strict';

const assert = require('node:assert/strict');
const path = require('node:path');
const { test } = require('node:test');

globalThis.window = {};
require(path.resolve(__dirname, '../../app/web/page/kaskade_soundtrack.js'));

test('the clock waits at what the context rendered while the output timestamp is 100 ms old', () => {
  const player = window.kaskadeSoundtrack.makePlayer({});
  const stamp = { contextTime: 0.99, performanceTime: performance.now() - 100 };
  player.context = { currentTime: 1, outputLatency: 0.03, baseLatency: 0.01, state: 'running', getOutputTimestamp: () => stamp };
  assert.equal(player.heardContextMillis(), 1000);
  stamp.performanceTime = performance.now();
  assert.ok(Math.abs(player.heardContextMillis() - 1000) < 1e-6, 'and never goes back');
});
