// The page as a player, live, in headless Chromium as in show_test.js: a
// link to a moment, the address that follows the show, the desktop's keys, a
// clip of picture and sound; and on the screens people open it on (a phone
// upright and sideways, by touch, and a 1920 x 1080 window, by mouse) the
// picture fills the screen, every control is in reach, at least 44 x 44 CSS
// pixels, and works, and the timeline scrubs.
'use strict';

const assert = require('node:assert/strict');
const { execFileSync } = require('node:child_process');
const fs = require('node:fs');
const path = require('node:path');
const { test } = require('node:test');

const { SCREENS, sharedSite, waitFor, waitForState } = require('./browser.js');
const { ENDS } = require('./frames.js');

const MINUTE = 60000;
const shared = sharedSite();
const field = (page, i) => page.evaluate((f) => Module._kaskade_player_state(f), i);

// Opens the show at `address`, starts it with `start` once offered, and waits until it plays.
async function startLive(page, address, start) {
  await page.goto(`${shared.url}${address}`);
  await waitForState(page, ['ready'], 2 * MINUTE);
  await start();
  await waitForState(page, ['playing']);
}

test('#t=93.5 opens there, the address follows to the second, the keys seek and step, c saves a clip, ' +
     'f fills the screen and a mouse press ends the show', { timeout: 5 * MINUTE }, () => shared.page(async (page, errors) => {
  await page.addInitScript(() => {
    const replace = history.replaceState.bind(history);
    history.replaceState = (...args) => (window.addressWrites ||= []).push(performance.now()) && replace(...args);
  });
  await startLive(page, '#t=93.5', () => page.keyboard.press('Enter'));
  const opened = [await field(page, 3), await field(page, 5)];
  assert.ok(opened[0] === 7 && opened[1] >= 93.5 && opened[1] < 97, `part ${opened[0]} at ${opened[1]} s`);
  assert.deepEqual(await page.evaluate(() => window.kaskade.partCounts().slice(0, 6).map((part) => part.frames)),
                   [0, 0, 0, 0, 0, 0], 'nothing of parts 1 to 6 shown');
  await waitFor(page, 'three addresses', () => window.addressWrites?.length >= 3, null, 20000);
  const writes = await page.evaluate(() => window.addressWrites);
  assert.ok(writes.every((at, i) => i === 0 || at - writes[i - 1] >= 995), `written at ${writes.map(Math.round)} ms`);
  assert.match(await page.evaluate(() => location.hash), /^#t=(9[3-9]|1\d\d)$/);

  // Paused: the clock and the AudioContext stand, the keys seek and step.
  await page.keyboard.press('Space');
  await waitFor(page, 'the pause', () => Module.kaskadeAudio.context.state === 'suspended');
  const audioAtPause = await page.evaluate(() => Module.kaskadeAudio.context.currentTime);
  for (const [key, low, high] of [['Shift+ArrowRight', 5, 5], ['ArrowUp', 30, 30], ['ArrowDown', -30, -30],
    ['Shift+ArrowLeft', -5, -5], ['.', 0, 1 / 60], [',', -1 / 60, 0]]) {
    const before = await field(page, 5);
    await page.keyboard.press(key);
    await waitFor(page, `the seek of ${key}`, (b) => Module._kaskade_player_state(5) !== b, before);
    const moved = (await field(page, 5)) - before;
    assert.ok(moved >= low - 1e-3 && moved <= high + 1e-3 && moved !== 0, `${key} moved ${moved} s`);
  }
  await waitFor(page, 'the time on view in the address', () => location.hash === `#t=${+Module._kaskade_player_state(5).toFixed(3)}`);
  const part = await field(page, 3);
  for (const [key, i, value] of [['ArrowRight', 3, part + 1], ['PageDown', 3, part + 2], ['ArrowLeft', 3, part + 1],
    ['Home', 3, 1], ['m', 1, 1], ['-', 2, 90], ['-', 2, 80], ['m', 1, 0]]) {
    await page.keyboard.press(key);
    await waitFor(page, `${key}'s effect`, ([f, v]) => Module._kaskade_player_state(f) === v, [i, value]);
  }
  assert.ok(Math.abs(await page.evaluate(() => Module.kaskadeAudio.gain.gain.value) - 0.64) < 1e-6, 'gain: volume squared');
  assert.equal(await page.evaluate(() => Module.kaskadeAudio.context.currentTime), audioAtPause, 'the sound stood');
  // Going on, the clock follows the sound.
  const demoAtPause = await field(page, 4);
  await page.keyboard.press('Space');
  await waitFor(page, 'a second of sound', (at) => Module.kaskadeAudio.context.currentTime > at + 1, audioAtPause);
  const played = (await field(page, 4)) - demoAtPause;
  assert.ok(played > 2 && played < 15, `${played} tenths of show in a second of sound (a slow page draws seldom)`);

  // A clip of about three seconds of the show.
  const download = page.waitForEvent('download', { timeout: 2 * MINUTE });
  const fromDemoTime = await field(page, 4);
  const started = Date.now();
  await page.keyboard.press('c');
  await waitFor(page, 'three seconds of show', (from) => Module._kaskade_player_state(4) > from + 30, fromDemoTime);
  await page.keyboard.press('c');
  const recorded = (Date.now() - started) / 1000;
  const clip = await download;
  assert.match(clip.suggestedFilename(), /^kaskade-part1-\d+\.\ds\.webm$/);
  const file = await clip.path();
  // Each track's type and the time of its last packet.
  const probed = execFileSync('ffprobe', ['-v', 'error', '-show_entries', 'stream=index,codec_type:packet=stream_index,pts_time',
                                          '-of', 'csv=p=0', file], { encoding: 'utf8' }).trim().split('\n').map((line) => line.split(','));
  const tracks = probed.filter(([, type]) => /^[a-z]+$/.test(type)).map(([index, type]) => ({ type, end: Math.max(
    ...probed.filter(([stream, time]) => stream === index && /^[\d.]+$/.test(time)).map(([, time]) => Number(time))) }));
  assert.deepEqual(tracks.map((track) => track.type).sort(), ['audio', 'video'], file);
  // The sound is recorded as it plays, the picture as fast as the browser encodes it: on a loaded
  // machine the encoders lag, and what they hold when the clip ends is lost (half a second seen here).
  const longest = Math.max(...tracks.map((track) => track.end));
  assert.ok(longest > recorded - 1.5 && longest < recorded + 0.5 && tracks.every((track) => track.end > 0),
            `${JSON.stringify(tracks)}: ${recorded} s recorded`);

  // A moment typed into the open page's address is gone to.
  await page.evaluate(() => { location.hash = '#t=150'; });
  await waitFor(page, 'the seek to 150 s', () => Math.abs(Module._kaskade_player_state(5) - 150) < 2);

  await page.keyboard.press('f');
  await waitFor(page, 'fullscreen', () => document.fullscreenElement !== null);
  await page.mouse.click(320, 240);
  await waitForState(page, ['ended']);
  assert.match(await page.locator('#status').textContent(), /^fps: \d+\.\d\d$/);
  assert.deepEqual(errors, []);
}));

const CONTROLS = ['#play', '#timeline', '#mute', '#volume', '#clip', '#bar-fullscreen', '#fullscreen'];
for (const screen of [{ name: 'phone-upright', width: 390, height: 844, touch: true },
  { name: 'phone-sideways', width: 844, height: 390, touch: true, part: 5 },
  { name: 'window-1920x1080', width: 1920, height: 1080, touch: false }]) {
  test(`${screen.name}: the picture fills it, every control is in reach and works, the timeline scrubs`,
       { timeout: 5 * MINUTE }, () => shared.page(async (page, errors) => {
    const touch = await page.context().newCDPSession(page);
    // A finger (or the mouse) put down at x, y, moved, and lifted.
    const finger = (type, x, y) => touch.send('Input.dispatchTouchEvent', { type, touchPoints: type === 'touchEnd' ? [] : [{ x, y }] });
    const down = (x, y) => (screen.touch ? finger('touchStart', x, y) : page.mouse.move(x, y).then(() => page.mouse.down()));
    const move = (x, y) => (screen.touch ? finger('touchMove', x, y) : page.mouse.move(x, y, { steps: 3 }));
    const up = () => (screen.touch ? finger('touchEnd') : page.mouse.up());
    const press = (selector, options) => (screen.touch ? page.tap(selector, options) : page.click(selector, options));
    let moves = 0;
    const showBar = async () => {
      const [x, y] = [screen.width / 2, screen.height / 3 + (++moves % 2)];
      // The mouse then rests on the bar, which stays while it does.
      await (screen.touch ? page.touchscreen.tap(x, y) : page.mouse.move(x, y).then(() => page.hover('#time')));
      await waitFor(page, 'the bar', () => getComputedStyle(document.getElementById('bar')).opacity === '1');
    };
    // A control of the bar pressed, the bar shown again when it hid first (2 s after a tap: a loaded machine is slower).
    const use = async (selector, options, tries = 3) => {
      await showBar();
      await press(selector, { ...options, timeout: 10000 }).catch((error) => (tries > 1 ? use(selector, options, tries - 1) : Promise.reject(error)));
    };

    await startLive(page, screen.part ? `#part=${screen.part}` : '', () => press('#start'));
    assert.equal(await field(page, 3), screen.part || 1, 'the part of the link');
    const box = await page.locator('#canvas').boundingBox();
    assert.ok(Math.abs(box.width * 3 - box.height * 4) < 4 && (Math.abs(box.width - screen.width) < 1 ||
              Math.abs(box.height - screen.height) < 1), `${box.width} x ${box.height}: 4:3, filling ${screen.width} x ${screen.height}`);
    await waitFor(page, 'frames', () => window.kaskade.partCounts().some((part) => part.frames > 2));
    const drawn = await page.evaluate(() => window.kaskade.resolution);
    assert.ok(drawn.width >= 640 && drawn.width <= drawn.fullWidth && drawn.fullWidth ===
              Math.max(640, Math.round((box.width * (screen.touch ? 3 : 1)) / 4) * 4), JSON.stringify(drawn));

    await showBar();
    fs.mkdirSync(SCREENS, { recursive: true });
    await page.screenshot({ path: path.join(SCREENS, `${screen.name}.png`) });
    for (const selector of CONTROLS) {
      const { x, y, width, height } = await page.locator(selector).boundingBox();
      assert.ok(x >= 0 && y >= 0 && x + width <= screen.width && y + height <= screen.height && width >= 44 &&
                height >= 44, `${selector}: ${width} x ${height} at ${x}, ${y}, in reach`);
    }
    const fullscreen = 'document.fullscreenElement !== null';
    for (const [selector, effect, position] of [['#play', 'state(0) === 1'], ['#play', 'state(0) === 0'],
      ['#mute', 'state(1) === 1'], ['#clip', 'clip.className === "recording"'], ['#clip', 'clip.className === ""'],
      ['#volume', 'state(2) === 30', { x: 24, y: 22 }],  // three tenths along
      ['#bar-fullscreen', fullscreen], ['#bar-fullscreen', `!(${fullscreen})`], ['#fullscreen', fullscreen],
      ['#play', 'state(0) === 1']]) {
      await use(selector, { position });
      await waitFor(page, `${selector}: ${effect}`, `(() => { const state = Module._kaskade_player_state; ` +
                    `const clip = document.getElementById('clip'); return ${effect}; })()`);
    }

    // Paused, held on part 13, dragged to a place in each part: its number and time shown, and let go, sought.
    const timeline = await page.locator('#timeline').boundingBox();
    const y = timeline.y + timeline.height / 2;
    const placeOf = (tenths) => timeline.x + (timeline.width * tenths) / ENDS[13];
    for (let part = 1; part <= 13; ++part) {
      const tenths = ENDS[part - 1] + (ENDS[part] - ENDS[part - 1]) / 3;
      await showBar();
      await down(placeOf(ENDS[13] - 50), y);
      await move(placeOf(tenths), y);
      const held = /^part (\d+) · (\d):(\d\d)$/.exec(await page.locator('#held-part').textContent());
      assert.ok(held && Number(held[1]) === part && Math.abs(held[2] * 60 + Number(held[3]) - tenths / 10) < 2, held?.[0]);
      await up();
      await waitFor(page, `the seek to ${tenths / 10} s`, (s) => Math.abs(Module._kaskade_player_state(5) - s) < 0.2, tenths / 10);
      assert.equal(await field(page, 3), part);
    }
    // A part asked for in the open page's address is jumped to; the controls gave the keys back (Right: the next part).
    await page.evaluate(() => { location.hash = '#part=9'; });
    await waitFor(page, 'part 9', () => Module._kaskade_player_state(3) === 9);
    if (!screen.touch) {
      await page.keyboard.press('ArrowRight');
      await waitFor(page, 'part 10', () => Module._kaskade_player_state(3) === 10 && Module._kaskade_player_state(2) === 30);
    }
    screen.touch || await page.mouse.move(5, 5);  // off the bar
    await waitFor(page, 'the bar hidden', () => getComputedStyle(document.getElementById('bar')).opacity === '0', null, 10000);
    assert.deepEqual([await page.evaluate(() => window.kaskade.state), await field(page, 0)], ['playing', 1], 'nothing ended the show');
    assert.deepEqual(errors, []);
  }, { viewport: { width: screen.width, height: screen.height }, isMobile: screen.touch, hasTouch: screen.touch,
       deviceScaleFactor: screen.touch ? 3 : 1 }));
}
