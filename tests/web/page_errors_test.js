// The page says what went wrong where the viewer looks: a fatal report over
// the stage, out of fullscreen; an address the show does not take, named with
// what it accepts, and nothing started; a host that sends a file cut short,
// a web page or nothing in a file's place, named before the show starts.
// Headless Chromium as in show_test.js.
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
    const sizes = { ...JSON.parse(fs.readFileSync(path.join(SITE, 'files.json'))), '3d': archive.length };
    await withPage(browser, { '3d': archive, 'files.json': JSON.stringify(sizes) }, async (page, url) => {
      // Paused in part 1, so that the fullscreen button is pressed before part 2's set-up fails.
      await page.goto(`${url}?fps=4&stop=8`);
      await page.waitForFunction(() => ['paused', 'failed'].includes(window.kaskade.state), null, { timeout: 120000 });
      await page.mouse.move(300, 200);
      await page.mouse.move(320, 220);
      await page.locator('#bar-fullscreen').click();
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

describe('a damaged host', () => {
  const archive = fs.existsSync(path.join(SITE, '3d')) ? fs.readFileSync(path.join(SITE, '3d')) : Buffer.alloc(0);
  const megabytes = (bytes) => (bytes / 1e6).toFixed(2);
  const webPage = { type: 'text/html', body: '<!doctype html><title>kaskade</title>' };
  for (const [what, replaced, said, plays] of [
    ['a 3d cut to half', { '3d': archive.subarray(0, archive.length / 2) },
     `3d: ${megabytes(archive.length / 2)} MB arrived, ${megabytes(archive.length)} MB expected — the host cut the file`],
    ['a web page in place of 3d', { '3d': webPage }, '3d: the host sent a web page (text/html) instead of the archive'],
    ['no 3d', { '3d': null }, '3d: the host has no such file (HTTP 404)'],
    ['a web page in place of kaskade.wasm', { 'kaskade.wasm': webPage },
     "kaskade.wasm: the host sent a web page (text/html) instead of the show's WebAssembly code"],
    ['no harbour.mp3', { 'harbour.mp3': null }, 'harbour.mp3: the host has no such file (HTTP 404): the show runs without sound.',
     true],
    ['a text in place of harbour.mp3', { 'harbour.mp3': Buffer.from('this is not an MP3 file\n'.repeat(64)) },
     /^harbour\.mp3: the host sent something else than an MP3 soundtrack \(it begins "this is not an/, true],
  ]) {
    test(`${what} is named${plays ? ', and the show plays without sound' : ', and nothing starts'}`, async () => {
      await withPage(browser, replaced, async (page, url, errors) => {
        await page.goto(url);
        await page.waitForFunction(() => ['ready', 'failed'].includes(window.kaskade.state), null, { timeout: 60000 });
        const seen = await page.evaluate(() => ({ state: window.kaskade.state, status: document.getElementById('status').textContent,
          startOff: document.getElementById('start').disabled, loading: window.kaskade.loading }));
        assert.match(seen.status, typeof said === 'string' ? new RegExp(`^${said.replace(/[.()]/g, '\\$&')}$`) : said);
        assert.deepEqual([seen.state, seen.startOff], plays ? ['ready', false] : ['failed', true]);
        if (plays) {
          assert.deepEqual([seen.loading.loaded, seen.loading.percent], [seen.loading.total, 100], 'what came, in full');
          await page.locator('#start').click();
          await page.waitForFunction(() => window.kaskade.partCounts()[0].frames > 3, null, { timeout: 30000 });
          await page.keyboard.press('Escape');
          await page.waitForFunction(() => window.kaskade.state === 'ended', null, { timeout: 10000 });
        }
        // The browser's own line for a 404 is no error of the page's.
        assert.deepEqual(errors.filter((line) => !/status of 404/.test(line)), []);
      });
    });
  }
});
