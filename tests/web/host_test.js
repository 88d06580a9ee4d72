// The page says what went wrong where the viewer looks: an address the show
// does not take, named with what it accepts, and nothing loaded; a host that
// sends a file cut short, a web page or nothing in a file's place, named
// before the show starts (a soundtrack lost: the show plays without sound);
// a fatal report over the stage, out of fullscreen. Headless Chromium as in show_test.js.
'use strict';

const assert = require('node:assert/strict');
const fs = require('node:fs');
const path = require('node:path');
const { test } = require('node:test');

const { SITE, SCREENS, sharedSite, waitFor, waitForState } = require('./browser.js');

const shared = sharedSite();
const archive = fs.existsSync(path.join(SITE, '3d')) ? fs.readFileSync(path.join(SITE, '3d')) : Buffer.alloc(0);
const webPage = { type: 'text/html', body: '<!doctype html><title>kaskade</title>' };
const refused = 'This address asks for what the show does not take:\n';

for (const [what, address, replaced, said, plays] of [
  ['?fps=abc', '?fps=abc', {}, `${refused}fps=abc: fps needs a whole number of frames per second from 1 to 240`],
  ['?part=99', '?part=99', {}, `${refused}part=99: part needs a part number from 1 to 13`],
  ['#t=300', '#t=300', {}, `${refused}t=300: t needs seconds from 0 to 226.9, e.g. 93.5`],
  ['?grab=4294967296', '?fps=4&grab=4294967296', {},
   `${refused}grab=4294967296: grab needs frame numbers from 0 to 999999, separated by commas`],
  ['?fault= on the shipped site', '?fps=4&fault=ambient', {},
   '?fault= exists only in the site built for tests (scripts/web --faults).'],
  ['a 3d cut to half', '', { '3d': archive.subarray(0, archive.length / 2) },
   `3d: ${(archive.length / 2e6).toFixed(2)} MB arrived, ${(archive.length / 1e6).toFixed(2)} MB expected — the host cut the file`],
  ['a web page in place of 3d', '', { '3d': webPage }, '3d: the host sent a web page (text/html) instead of the archive'],
  ['no 3d', '', { '3d': null }, '3d: the host has no such file (HTTP 404)'],
  ['a web page in place of kaskade.wasm', '', { 'kaskade.wasm': webPage },
   "kaskade.wasm: the host sent a web page (text/html) instead of the show's WebAssembly code"],
  ['no harbour.mp3', '', { 'harbour.mp3': null },
   'harbour.mp3: the host has no such file (HTTP 404): the show runs without sound.', true],
  ['a text in place of harbour.mp3', '', { 'harbour.mp3': Buffer.from('this is not an MP3 file\n'.repeat(64)) },
   /^harbour\.mp3: the host sent something else than an MP3 soundtrack \(it begins "this is not an/, true],
]) {
  test(`${what} is named${plays ? ', and the show plays without sound' : ', and nothing starts'}`, { timeout: 180000 },
       () => shared.page(async (page, errors) => {
    await page.goto(`${shared.url}${address}`);
    await waitForState(page, ['ready', 'failed']);
    const seen = await page.evaluate(() => ({ state: window.kaskade.state, status: document.getElementById('status').textContent,
      startOff: document.getElementById('start').disabled, loading: window.kaskade.loading }));
    assert.match(seen.status, typeof said === 'string' ? new RegExp(`^${said.replace(/[.()?]/g, '\\$&')}$`) : said);
    assert.deepEqual([seen.state, seen.startOff], plays ? ['ready', false] : ['failed', true]);
    if (address) {
      assert.equal(await page.locator('#failure pre').textContent(), seen.status, 'said over the stage');
      assert.ok(said.startsWith(refused) === (seen.loading === null), 'nothing loaded for an address refused');
    }
    if (plays) {
      assert.deepEqual([seen.loading.loaded, seen.loading.percent], [seen.loading.total, 100], 'what came, in full');
      await page.locator('#start').click();
      await waitFor(page, 'frames', () => window.kaskade.partCounts()[0].frames > 3);
      await page.keyboard.press('Escape');
      await waitForState(page, ['ended']);
    }
    // The browser's own line for a 404 is no error of the page's.
    assert.deepEqual(errors.filter((line) => !/status of 404/.test(line)), []);
  }, {}, replaced));
}

// An archive without "stil.3ds", which part 2 sets up: its name's first letter changed.
const damaged = Buffer.from(archive);
damaged.write('X', Math.max(0, damaged.indexOf('stil.3ds\0')));
test('a fatal report in fullscreen leaves fullscreen and stands over the stage', { timeout: 180000 },
     () => shared.page(async (page) => {
  // Paused in part 1, so that fullscreen is asked for before part 2's set-up fails.
  await page.goto(`${shared.url}?fps=4&stop=8`);
  await waitForState(page, ['paused']);
  await page.mouse.move(300, 200);
  await page.mouse.move(320, 220);
  await page.locator('#bar-fullscreen').click();
  await waitFor(page, 'fullscreen', () => document.fullscreenElement !== null);
  await page.evaluate(() => window.kaskade.resume());
  await waitForState(page, ['failed']);
  await waitFor(page, 'the end of fullscreen', () => document.fullscreenElement === null);
  assert.match(await page.locator('#failure').textContent(), /KOBALT LIBRARY ERROR: File not found : stil\.3ds/);
  const box = await page.locator('#failure').boundingBox();
  assert.deepEqual(box, await page.locator('#stage').boundingBox(), 'the report covers the stage');
  assert.ok(await page.evaluate(([x, y]) => document.elementFromPoint(x, y).closest('#failure') !== null,
                                [box.x + box.width / 2, box.y + box.height / 2]), 'nothing lies over the report');
  fs.mkdirSync(SCREENS, { recursive: true });
  await page.screenshot({ path: path.join(SCREENS, 'fatal-report.png') });
}, {}, { '3d': damaged }));
