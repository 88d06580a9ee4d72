// The page as a player, in headless Chromium as in show_test.js: the control
// bar comes with the mouse and goes, its timeline jumps to the frames a show
// started at that part draws, the address names the part and opens there,
// and Space pauses picture and sound (screens_test.js: taps, phones).
'use strict';

const assert = require('node:assert/strict');
const fs = require('node:fs');
const path = require('node:path');
const { after, before, describe, test } = require('node:test');

const { launchBrowser, openPage, serveSite } = require('./browser.js');
const { ENDS } = require('./frames.js');

const ROOT = path.resolve(__dirname, '../..');
const SITE = path.resolve(process.env.KASKADE_SITE || path.join(ROOT, 'build-web/web'));
const SCREENS = path.join(path.dirname(SITE), 'web-test');
const FPS = 4;

// The fixed-step clock's frame that starts `part` at FPS 4 (frame n shows demo
// time 2.5 n): one after the first frame above the end time of the part before.
const firstFrameOf = (part) => (part === 1 ? 0 : Math.floor((ENDS[part - 1] * FPS) / 10) + 2);

const playerState = (page) => page.evaluate(() => ({
  paused: Module._kaskade_player_state(0) === 1,
  muted: Module._kaskade_player_state(1) === 1,
  volume: Module._kaskade_player_state(2),
  part: Module._kaskade_player_state(3),
  demoTime: Module._kaskade_player_state(4),
}));
const waitForState = (page, states, timeout) =>
  page.waitForFunction((wanted) => wanted.includes(window.kaskade.state), states, { timeout, polling: 50 });
const barShown = (page) => page.evaluate(() => getComputedStyle(document.getElementById('bar')).opacity === '1');

let browser;
let site;
before(async () => {
  assert.ok(fs.existsSync(path.join(SITE, 'kaskade.wasm')), `no site at ${SITE}: run scripts/web first`);
  browser = await launchBrowser();
  site = await serveSite(SITE);
});
after(async () => {
  await browser.close();
  site.close();
});

// A page of its own for `use`, closed whatever happens.
async function withPage(use) {
  const errors = [];
  const page = await openPage(browser, errors);
  try {
    await use(page, errors);
  } finally {
    await page.close().catch(() => {});
  }
}

// Starts the live show from its cover with a key and waits until it plays.
async function startLive(page, address = '') {
  await page.goto(`${site.url}${address}`);
  await page.waitForFunction(() => window.kaskade.state === 'ready', null, { timeout: 120000 });
  await page.keyboard.press('Enter');
  await waitForState(page, ['playing', 'failed'], 20000);
  assert.equal(await page.evaluate(() => window.kaskade.state), 'playing');
}

describe('the control bar', () => {
  // Its clicks and taps: screens_test.js.
  test('shows on mouse movement and hides two seconds after it', async () => {
    await withPage(async (page, errors) => {
      await startLive(page);
      assert.equal(await barShown(page), false, 'hidden at the start');
      await page.mouse.move(300, 200);
      await page.mouse.move(320, 220);
      await page.waitForTimeout(400);
      assert.equal(await barShown(page), true, 'shown after the mouse moved');
      await page.waitForTimeout(2600);
      assert.equal(await barShown(page), false, 'hidden after two seconds without');
      assert.deepEqual(errors, []);
    });
  });

  test("part 7's place on the timeline starts part 7 with the frames of a show started there, under an address that says so", async () => {
    const first = firstFrameOf(7);
    const grabbed = [first, first + 3];
    const frames = {};
    let historyLength = 0;
    for (const how of ['jumped', 'started']) {
      await withPage(async (page, errors) => {
        // Jumped: paused by the test hook early in part 1, the mark clicked, then on.
        const address = how === 'jumped' ? `?fps=${FPS}&stop=20,${first + 3}` : `?fps=${FPS}&part=7&stop=${first + 3}`;
        await page.goto(`${site.url}${address}&grab=${grabbed.join(',')}`);
        if (how === 'jumped') {
          await waitForState(page, ['paused', 'failed'], 120000);
          await page.mouse.move(300, 200);
          await page.mouse.move(320, 230);
          const timeline = await page.locator('#timeline').boundingBox();
          await page.mouse.click(timeline.x + (timeline.width * (ENDS[6] + ENDS[7])) / 2 / ENDS[13], timeline.y + 20);
          historyLength = await page.evaluate(() => history.length);
          await page.evaluate(() => window.kaskade.resume());
        }
        await page.waitForFunction((last) => window.kaskade.pausedAt === last, first + 3, { timeout: 120000 });
        // Each grabbed frame's size and a hash of its bytes (FNV-1a).
        frames[how] = await page.evaluate((indices) => indices.map((i) => {
          const frame = window.kaskade.frames[i];
          if (!frame) {
            return null;
          }
          let hash = 0x811c9dc5;
          for (const byte of frame.rgba) {
            hash = Math.imul(hash ^ byte, 0x01000193) >>> 0;
          }
          return `${frame.width}x${frame.height} ${hash.toString(16)}`;
        }), grabbed);
        if (how === 'jumped') {
          assert.equal(await page.evaluate(() => location.hash), '#part=7', 'the address follows the part');
          assert.equal(await page.evaluate(() => history.length), historyLength, 'replaced, not pushed');
          assert.equal((await playerState(page)).part, 7);
          await page.mouse.move(310, 240);
          await page.mouse.move(330, 250);
          await page.waitForTimeout(400);
          fs.mkdirSync(SCREENS, { recursive: true });
          const file = path.join(SCREENS, 'player-part7.png');
          await page.screenshot({ path: file });
          console.log(`screenshot of the control bar over part 7: ${file}`);
        }
        assert.deepEqual(errors, []);
      });
    }
    assert.ok(frames.jumped.every((hash) => hash !== null), 'every frame grabbed');
    assert.deepEqual(frames.jumped, frames.started, `frames ${grabbed.join(' and ')}`);
  });
});

describe('the address', () => {
  test('#part=9 opens the show at part 9', async () => {
    await withPage(async (page, errors) => {
      await startLive(page, '#part=9');
      await page.waitForFunction(() => window.kaskade.partCounts()[8].frames > 2, null, { timeout: 30000 });
      const counts = await page.evaluate(() => window.kaskade.partCounts().map((part) => part.frames));
      assert.deepEqual(counts.slice(0, 8), [0, 0, 0, 0, 0, 0, 0, 0], 'nothing of parts 1 to 8 was shown');
      const { part, demoTime } = await playerState(page);
      assert.equal(part, 9);
      assert.ok(demoTime >= 1127 && demoTime < 1160, `demo time ${demoTime}`);
      assert.equal(await page.evaluate(() => location.hash), '#part=9');
      assert.deepEqual(errors, []);
    });
  });
});

describe('keys', () => {
  test('Space pauses: the picture and the AudioContext stand still until it is pressed again', async () => {
    await withPage(async (page, errors) => {
      await startLive(page);
      await page.waitForTimeout(800);
      await page.keyboard.press('Space');
      await page.waitForFunction(() => Module._kaskade_player_state(0) === 1, null, { timeout: 5000 });
      await page.waitForTimeout(300);
      const before = { shot: await page.locator('#stage').screenshot(), ...(await page.evaluate(() => ({
        audio: Module.kaskadeAudio.context.currentTime, demo: Module._kaskade_player_state(4) }))) };
      await page.waitForTimeout(1000);
      const later = { shot: await page.locator('#stage').screenshot(), ...(await page.evaluate(() => ({
        audio: Module.kaskadeAudio.context.currentTime, demo: Module._kaskade_player_state(4) }))) };
      assert.ok(before.shot.equals(later.shot), 'two screenshots a second apart are the same');
      assert.equal(later.audio, before.audio, "the AudioContext's time stands");
      assert.equal(later.demo, before.demo, 'the demo clock stands');

      await page.keyboard.press('Space');
      await page.waitForTimeout(1000);
      const resumed = await page.evaluate(() => ({
        audio: Module.kaskadeAudio.context.currentTime, demo: Module._kaskade_player_state(4) }));
      assert.ok(resumed.audio > later.audio + 0.5, 'the sound goes on');
      assert.ok(resumed.demo > later.demo + 5, 'so does the clock');
      assert.ok(resumed.demo < later.demo + 20, `${resumed.demo - later.demo} tenths in about a second`);
      assert.deepEqual(errors, []);
    });
  });

  test('the arrows, Home, m, + and - are the desktop keys', async () => {
    await withPage(async (page, errors) => {
      await startLive(page, '#part=5');
      await page.keyboard.press('ArrowRight');
      await page.waitForFunction(() => Module._kaskade_player_state(3) === 6, null, { timeout: 5000 });
      await page.keyboard.press('PageDown');
      await page.waitForFunction(() => Module._kaskade_player_state(3) === 7, null, { timeout: 5000 });
      // Within its first 2 s, back goes to the part before.
      await page.keyboard.press('ArrowLeft');
      await page.waitForFunction(() => Module._kaskade_player_state(3) === 6, null, { timeout: 5000 });
      await page.keyboard.press('Home');
      await page.waitForFunction(() => Module._kaskade_player_state(3) === 1, null, { timeout: 5000 });
      await page.keyboard.press('m');
      await page.keyboard.press('-');
      await page.keyboard.press('-');
      const state = await playerState(page);
      assert.equal(state.muted, true);
      assert.equal(state.volume, 80);
      assert.equal(await page.evaluate(() => Module.kaskadeAudio.gain.gain.value), 0, 'muted');
      await page.keyboard.press('m');
      await page.waitForTimeout(100);
      assert.ok(Math.abs(await page.evaluate(() => Module.kaskadeAudio.gain.gain.value) - 0.64) < 1e-6,
                'the gain is the volume squared');
      assert.equal(await page.evaluate(() => window.kaskade.state), 'playing');
      assert.deepEqual(errors, []);
    });
  });
});
