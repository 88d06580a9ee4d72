// The page on the screens people open it on, in headless Chromium as in
// show_test.js: a phone upright and sideways (touch, 3 device pixels to the
// CSS pixel) and a 1920 x 1080 window (mouse and keys). The picture takes the
// largest 4:3 area; every control lies inside the window, at least 44 x 44 CSS
// pixels, and works by a tap or a click; a finger or the mouse held on each
// part's place on the timeline shows that part's number and, let go, plays
// that part. Screenshots with the bar showing go to build-web/web-test.
'use strict';

const assert = require('node:assert/strict');
const fs = require('node:fs');
const path = require('node:path');
const { after, before, test } = require('node:test');

const { launchBrowser, serveSite, waitForState } = require('./browser.js');
const { ENDS } = require('./frames.js');

const ROOT = path.resolve(__dirname, '../..');
const SITE = path.resolve(process.env.KASKADE_SITE || path.join(ROOT, 'build-web/web'));
const SCREENS = path.join(path.dirname(SITE), 'web-test');
const SCREENS_PEOPLE_HAVE = [
  { name: 'phone-upright', width: 390, height: 844, touch: true },
  { name: 'phone-sideways', width: 844, height: 390, touch: true },
  { name: 'window-1920x1080', width: 1920, height: 1080, touch: false },
];
const CONTROLS = ['#play', '#timeline', '#mute', '#volume', '#bar-fullscreen', '#fullscreen'];

let browser;
let site;
before(async () => {
  assert.ok(fs.existsSync(path.join(SITE, 'kaskade.wasm')), `no site at ${SITE}: run scripts/web first`);
  browser = await launchBrowser();
  site = await serveSite(SITE);
});
after(async () => {
  await browser.close();
  await site.close();
});

const partPlayed = (page, part) =>
  page.waitForFunction((wanted) => Module._kaskade_player_state(3) === wanted, part, { timeout: 10000 })
    .catch(async () => assert.fail(`part ${part} not played within 10 s: ` +
                                   `part ${await page.evaluate(() => Module._kaskade_player_state(3))} plays`));

for (const screen of SCREENS_PEOPLE_HAVE) {
  test(`${screen.name}: the picture fills it, every control is in reach and works, the timeline picks each part`,
       { timeout: 300000 }, async () => {
    const context = await browser.newContext({ viewport: { width: screen.width, height: screen.height },
      isMobile: screen.touch, hasTouch: screen.touch, deviceScaleFactor: screen.touch ? 3 : 1 });
    try {
      const page = await context.newPage();
      const errors = [];
      page.on('pageerror', (error) => errors.push(String(error)));
      const touch = await context.newCDPSession(page);
      // A finger (or the mouse) put down at x, y, and lifted.
      const down = (x, y) => (screen.touch
        ? touch.send('Input.dispatchTouchEvent', { type: 'touchStart', touchPoints: [{ x, y }] })
        : page.mouse.move(x, y).then(() => page.mouse.down()));
      const up = () => (screen.touch ? touch.send('Input.dispatchTouchEvent', { type: 'touchEnd', touchPoints: [] })
                                     : page.mouse.up());
      const press = (selector, options) => (screen.touch ? page.tap(selector, options) : page.click(selector, options));
      const state = (field) => page.evaluate((f) => Module._kaskade_player_state(f), field);
      const picture = async () => page.locator('#canvas').boundingBox();
      let moves = 0;
      const showBar = async () => {
        const box = await picture();
        const [x, y] = [box.x + box.width / 2, box.y + box.height / 3 + (++moves % 2)];
        await (screen.touch ? page.touchscreen.tap(x, y) : page.mouse.move(x, y));
        await page.waitForFunction(() => getComputedStyle(document.getElementById('bar')).opacity === '1');
      };

      await page.goto(site.url);
      await waitForState(page, ['ready'], 120000);
      await press('#start');
      await waitForState(page, ['playing'], 20000);

      const box = await picture();
      assert.ok(Math.abs(box.width * 3 - box.height * 4) < 4, `${box.width} x ${box.height} is 4:3`);
      assert.ok(Math.abs(box.width - screen.width) < 1 || Math.abs(box.height - screen.height) < 1,
                `${box.width} x ${box.height} fills ${screen.width} x ${screen.height}`);
      await page.waitForFunction(() => window.kaskade.partCounts()[0].frames > 2);
      const drawn = await page.evaluate(() => window.kaskade.resolution);
      assert.ok(drawn.width >= 640 && drawn.width <= drawn.fullWidth && drawn.fullWidth ===
                Math.max(640, Math.round((box.width * (screen.touch ? 3 : 1)) / 4) * 4), JSON.stringify(drawn));

      await showBar();
      fs.mkdirSync(SCREENS, { recursive: true });
      const shot = path.join(SCREENS, `${screen.name}.png`);
      await page.screenshot({ path: shot });
      console.log(`the bar over the picture, ${screen.name}: ${shot}`);
      for (const selector of CONTROLS) {
        const { x, y, width, height } = await page.locator(selector).boundingBox();
        assert.ok(x >= 0 && y >= 0 && x + width <= screen.width && y + height <= screen.height && width >= 44 &&
                  height >= 44, `${selector}: ${width} x ${height} at ${x}, ${y}, in reach`);
      }

      for (const [selector, field, value] of [['#play', 0, 1], ['#play', 0, 0], ['#mute', 1, 1]]) {
        await showBar();
        await press(selector);
        await page.waitForFunction(([f, v]) => Module._kaskade_player_state(f) === v, [field, value]);
      }
      await showBar();
      await press('#volume', { position: { x: 24, y: 22 } });  // three tenths along
      await page.waitForFunction(() => Module._kaskade_player_state(2) === 30);
      if (!screen.touch) {
        // The slider gave the keys back: Right is the next part, not louder.
        const part = await state(3);
        await page.keyboard.press('ArrowRight');
        await partPlayed(page, part + 1);
        assert.equal(await state(2), 30);
      }

      const timeline = await page.locator('#timeline').boundingBox();
      for (let part = 13; part >= 1; --part) {
        await showBar();
        const x = timeline.x + (timeline.width * (ENDS[part - 1] + ENDS[part])) / 2 / ENDS[13];
        await down(x, timeline.y + timeline.height / 2);
        assert.equal(await page.locator('#held-part').textContent(), `part ${part}`);
        await up();
        await partPlayed(page, part);
      }

      // A part asked for in the open page's address is jumped to.
      await page.evaluate(() => { location.hash = '#part=9'; });
      await partPlayed(page, 9);
      for (const button of ['#bar-fullscreen', '#bar-fullscreen', '#fullscreen']) {
        const on = await page.evaluate(() => document.fullscreenElement !== null);
        await showBar();
        await press(button);
        await page.waitForFunction((wanted) => (document.fullscreenElement !== null) === wanted, !on);
      }
      assert.equal(await page.evaluate(() => window.kaskade.state), 'playing', 'nothing ended the show');
      assert.deepEqual(errors, []);
    } finally {
      await context.close();
    }
  });
}
