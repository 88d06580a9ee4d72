// The show in a real browser on the fixed-step clock (?fps=4): Debian's
// Chromium, headless, WebGL 2 through SwiftShader, the site that scripts/web
// builds (KASKADE_SITE, by default build-web/web). The middle of every part
// against the desktop's reference frames, and seeks to those frames against
// the frames of the run from the start, byte for byte. Run with `node --test`.
'use strict';

const assert = require('node:assert/strict');
const fs = require('node:fs');
const path = require('node:path');
const { test } = require('node:test');

const { SCREENS, sharedSite, waitFor, waitForState } = require('./browser.js');
const { ENDS, compareInPage, frameHashesInPage, middleFrame } = require('./frames.js');

const FPS = 4;  // the reference frames' clock
const PARTS = Array.from({ length: 13 }, (_, i) => i + 1);
const MIDDLES = PARTS.map((part) => middleFrame(part, FPS));
// The largest shiftedError (frames.js) a part may show: the show is 0.01 to
// 0.34 from the desktop's frames, 0.72 to 0.89 in the wireframe parts 3, 4 and
// 12 (WebGL's lines); deliberate mistakes (bench/web/faults.js) 1.03 to 21.9.
const MAX_SHIFTED_ERROR = 1.0;
const MINUTE = 60000;

const shared = sharedSite();
let fromTheStart = null;  // the middles' hashes in the run from the start

test('the show draws the middle of every part as the desktop does and plays to the end of part 13',
     { timeout: 10 * MINUTE }, () => shared.page(async (page, errors) => {
  await page.goto(`${shared.url}?fps=${FPS}&grab=${MIDDLES.join(',')}`);
  await waitForState(page, ['ended'], 8 * MINUTE);
  const ended = await page.evaluate(() => [document.getElementById('status').textContent,
    window.kaskade.partCounts().reduce((sum, part) => sum + part.frames, 0)]);
  assert.match(ended[0], /^fps: \d+\.\d\d$/, 'the end line on the page');
  assert.equal(ended[1], Math.floor((ENDS[13] * FPS) / 10) + 2, 'every frame up to the first past part 13');
  fromTheStart = await page.evaluate(frameHashesInPage, MIDDLES);

  fs.mkdirSync(SCREENS, { recursive: true });
  const far = [];
  console.log('part  frame  meanError  shiftedError');
  for (const part of PARTS) {
    const name = `part${String(part).padStart(2, '0')}.png`;
    const reference = fs.readFileSync(path.join(__dirname, '../data/frames', name)).toString('base64');
    const result = await page.evaluate(compareInPage, [MIDDLES[part - 1], `data:image/png;base64,${reference}`]);
    assert.equal(result.error, undefined);
    const file = path.join(SCREENS, name);
    fs.writeFileSync(file, Buffer.from(result.png.split(',')[1], 'base64'));
    console.log(`${String(part).padStart(4)}  ${String(MIDDLES[part - 1]).padStart(5)}  ` +
                `${result.meanError.toFixed(2).padStart(9)}  ${result.shiftedError.toFixed(2).padStart(12)}  ${file}`);
    if (result.shiftedError > MAX_SHIFTED_ERROR) {
      far.push(`part ${part}: ${result.shiftedError.toFixed(2)} (${file})`);
    }
  }
  assert.deepEqual(far, [], `frames further than ${MAX_SHIFTED_ERROR} from the desktop's`);
  assert.deepEqual(errors, []);
}));

test('a seek while paused draws the frame the run from the start draws, in every part, back and forth; ' +
     'also after a lost WebGL context is given back', { timeout: 5 * MINUTE }, () => shared.page(async (page, errors) => {
  assert.ok(fromTheStart, 'the run from the start gave no frames');
  await page.goto(`${shared.url}?fps=${FPS}&stop=2&grab=${MIDDLES.join(',')}`);
  await waitForState(page, ['paused'], 3 * MINUTE);
  await page.evaluate(() => {
    Module._kaskade_toggle_pause();
    window.kaskade.resume();
  });
  const seek = async (tick) => {
    await page.evaluate((t) => {
      delete window.kaskade.frames[t];
      Module._kaskade_seek_to(t / 4);
    }, tick);
    await waitFor(page, `frame ${tick}`, (t) => window.kaskade.frames[t], tick, 2 * MINUTE);
  };
  // Far back and forth: 13, 1, 12, 2, ...
  const order = PARTS.map((_, i) => (i % 2 ? (i + 1) / 2 : 13 - i / 2));
  for (const part of order) {
    await seek(MIDDLES[part - 1]);
  }
  assert.deepEqual(await page.evaluate(frameHashesInPage, MIDDLES), fromTheStart);
  assert.equal(await page.evaluate(() => Module._kaskade_player_state(0)), 1, 'still paused');

  // The seventh part set up (its images made) while the context is gone, drawn once it is back.
  const status = (text) => waitFor(page, `"${text}"`, (t) => document.getElementById('status').textContent.includes(t), text);
  await seek(MIDDLES[5]);
  await page.evaluate(() => {
    window.contextLoss = document.getElementById('canvas').getContext('webgl2').getExtension('WEBGL_lose_context');
    window.contextLoss.loseContext();
  });
  await status("took the show's WebGL context away");
  const drawn = await page.evaluate(() => window.kaskade.partCounts()[6].frames);
  await page.evaluate((seconds) => Module._kaskade_seek_to(seconds), ENDS[6] / 10 + 5);
  await waitFor(page, 'a frame of part 7 unseen', (d) => window.kaskade.partCounts()[6].frames > d, drawn);
  await page.evaluate(() => window.contextLoss.restoreContext());
  await status('gave the WebGL context back');
  await seek(MIDDLES[6]);
  assert.deepEqual(await page.evaluate(frameHashesInPage, [MIDDLES[6]]), [fromTheStart[6]]);
  assert.deepEqual(errors.filter((line) => !/CONTEXT_LOST_WEBGL/.test(line)), []);
}));
