// The page says what went wrong where the viewer looks: a fatal report over
// the stage, out of fullscreen; an address the show does not take, named with
// what it accepts, and nothing started. Headless Chromium as in show_test.js.
'use strict';

const assert = require('node:assert/strict');
const fs = require('node:fs');
const path = require('node:path');
const { after, before, describe, test } = require('node:test');

const { launchBrowser, openPage, serveSite } = require('./browser.js');
const { archiveWithout } = require('./archive.js');

const ROOT = path.resolve(__dirname, '../..');
const SITE = path.resolve(process.env.KASKADE_SITE || path.join(ROOT, 'build-web/web'));
const SCREENS = path.join(path.dirname(SITE), 'web-test');

// The site served (with `replaced` files) and a page on it, both closed
// whatever `use` does.
async function withPage(browser, replaced, use) {
  const site = await serveSite(SITE, replaced);
  const errors = [];
  const page = await openPage(browser, errors);
  try {
    await use(page, site.url, errors);
  } finally {
    await page.close();
    site.close();
  }
}

// Runs in the page: of the screenshot `pngUrl`, the pixels inside `box` (CSS
// pixels, device scale 1): the share that has the report panel's colour
// (rgba(58, 18, 8, 0.94) over whatever is beneath), and the number of light
// text pixels.
async function panelPixelsInPage([pngUrl, box]) {
  const image = new Image();
  image.src = pngUrl;
  await image.decode();
  const canvas = document.createElement('canvas');
  canvas.width = image.width;
  canvas.height = image.height;
  const context = canvas.getContext('2d');
  context.drawImage(image, 0, 0);
  const x = Math.round(box.x);
  const y = Math.round(box.y);
  const { data } = context.getImageData(x, y, Math.round(box.width), Math.round(box.height));
  let panel = 0;
  let light = 0;
  for (let i = 0; i < data.length; i += 4) {
    const [r, g, b] = [data[i], data[i + 1], data[i + 2]];
    if (Math.abs(r - 58) <= 16 && Math.abs(g - 18) <= 16 && Math.abs(b - 8) <= 16) {
      ++panel;
    } else if (r > 200 && g > 180) {
      ++light;
    }
  }
  return { panelShare: panel / (data.length / 4), lightPixels: light };
}

let browser;
before(async () => {
  assert.ok(fs.existsSync(path.join(SITE, 'kaskade.wasm')), `no site at ${SITE}: run scripts/web first`);
  browser = await launchBrowser();
});
after(async () => {
  await browser.close();
});

describe('a fatal report', () => {
  test('in fullscreen leaves fullscreen and stands over the stage', async () => {
    const archive = archiveWithout(fs.readFileSync(path.join(SITE, '3d')), 'stil.3ds');
    await withPage(browser, { '3d': archive }, async (page, url) => {
      // Paused in part 1, so that the fullscreen button is pressed before part 2's set-up fails.
      await page.goto(`${url}?fps=4&stop=8`);
      await page.waitForFunction(() => ['paused', 'failed'].includes(window.kaskade.state), null, { timeout: 120000 });
      await page.locator('#fullscreen').click();
      await page.waitForFunction(() => document.fullscreenElement !== null, null, { timeout: 10000 });
      await page.evaluate(() => window.kaskade.resume());
      await page.waitForFunction(() => window.kaskade.state === 'failed', null, { timeout: 60000 });
      await page.waitForFunction(() => document.fullscreenElement === null, null, { timeout: 10000 });

      const report = page.locator('#failure');
      assert.ok(await report.isVisible(), 'the report is shown');
      assert.match(await report.textContent(), /KOBALT LIBRARY ERROR: File not found : stil\.3ds/);
      const stage = await page.locator('#stage').boundingBox();
      const box = await report.boundingBox();
      assert.deepEqual(box, stage, 'the report covers the stage');
      fs.mkdirSync(SCREENS, { recursive: true });
      const file = path.join(SCREENS, 'fatal-report.png');
      const png = await page.screenshot({ path: file });
      console.log(`screenshot of the report: ${file}`);
      const pixels = await page.evaluate(panelPixelsInPage, [`data:image/png;base64,${png.toString('base64')}`, box]);
      assert.ok(pixels.panelShare > 0.8, `${(pixels.panelShare * 100).toFixed(1)} % of the stage shows the panel`);
      assert.ok(pixels.lightPixels > 500, `${pixels.lightPixels} pixels of text`);
    });
  });
});

describe('an address the show does not take', () => {
  for (const [search, said] of [
    ['?fps=abc', 'fps=abc: fps needs a whole number of frames per second from 1 to 240'],
    ['?part=99', 'part=99: part needs a part number from 1 to 13'],
    ['?fps=4&grab=4294967296', 'grab=4294967296: grab needs frame numbers from 0 to 999999, separated by commas'],
  ]) {
    test(`${search} is named over the stage with what it accepts, and nothing starts`, async () => {
      await withPage(browser, {}, async (page, url, errors) => {
        await page.goto(`${url}${search}`);
        await page.waitForFunction(() => window.kaskade.state === 'failed', null, { timeout: 30000 });
        const report = page.locator('#failure');
        assert.ok(await report.isVisible());
        assert.equal(await report.locator('pre').textContent(),
                     `This address asks for what the show does not take:\n${said}`);
        await page.waitForTimeout(500);
        assert.equal(await page.evaluate(() => window.kaskade.state), 'failed', 'nothing started');
        assert.equal(await page.evaluate(() => typeof window.Module._kaskade_start), 'undefined',
                     'the show was not even loaded');
        assert.deepEqual(errors, []);
      });
    });
  }

  test('valid parameters start the show as before', async () => {
    await withPage(browser, {}, async (page, url, errors) => {
      // Part 1 ends on tick 85 (212.5 > 210); part 2 draws ticks 86 and 87.
      await page.goto(`${url}?part=2&fps=4&stop=87`);
      await page.waitForFunction(() => ['paused', 'failed'].includes(window.kaskade.state), null, { timeout: 120000 });
      assert.equal(await page.evaluate(() => window.kaskade.state), 'paused');
      assert.ok(await page.locator('#failure').isHidden());
      const counts = await page.evaluate(() => window.kaskade.partCounts());
      assert.equal(counts[1].frames, 2, 'part 2 drew its first two frames');
      assert.deepEqual(errors, []);
    });
  });
});
