// The web bundle as someone would put it on a host: the newest
// dist/kaskade-web-*.tar.gz (or KASKADE_BUNDLE) unpacked into an empty
// directory and served from there by `python3 -m http.server` (no byte
// ranges, no compression). Its files come with .gz and .br copies of the
// same bytes; on a slow line the page counts every file in to 100 %, never
// going back (the start button offered once all but the rest of the music is
// in), then starts on that button and plays until Escape.
'use strict';

const assert = require('node:assert/strict');
const { spawn, execFileSync } = require('node:child_process');
const fs = require('node:fs');
const os = require('node:os');
const path = require('node:path');
const zlib = require('node:zlib');
const { after, before, test } = require('node:test');

const { SCREENS, launchBrowser, openPage, waitFor, waitForState } = require('./browser.js');

const DIST = path.resolve(__dirname, '../../dist');
const LOADED = ['kaskade.js', 'kaskade.wasm', '3d', 'harbour.mp3'];

let [browser, server, unpacked, site, version, url] = [];  // unpacked: where the bundle went; site: its folder there
before(async () => {
  const bundles = fs.existsSync(DIST) ? fs.readdirSync(DIST).filter((name) => /^kaskade-web-.*\.tar\.gz$/.test(name))
    .map((name) => path.join(DIST, name)).sort((a, b) => fs.statSync(b).mtimeMs - fs.statSync(a).mtimeMs) : [];
  const bundle = process.env.KASKADE_BUNDLE || bundles[0];
  assert.ok(bundle, `no web bundle in ${DIST}: run scripts/package web first`);
  unpacked = fs.mkdtempSync(path.join(os.tmpdir(), 'kaskade-bundle-'));
  execFileSync('tar', ['-xzf', bundle, '-C', unpacked]);
  const folders = fs.readdirSync(unpacked);
  assert.equal(folders.length, 1, `one folder in the bundle: ${folders}`);
  site = path.join(unpacked, folders[0]);
  version = /^kaskade-web-(.+)$/.exec(folders[0])[1];
  server = spawn('python3', ['-u', '-m', 'http.server', '0', '--bind', '127.0.0.1', '--directory', site],
                 { stdio: ['ignore', 'pipe', 'ignore'] });
  let said = '';
  url = await new Promise((resolve, reject) => {
    server.stdout.on('data', (chunk) => /port (\d+)/.test(said += chunk) && resolve(`http://127.0.0.1:${/port (\d+)/.exec(said)[1]}/`));
    server.on('exit', (code) => reject(new Error(`python3 -m http.server ended (${code}): ${said}`)));
  });
  browser = await launchBrowser();
});
after(async () => {
  await browser?.close();
  server?.kill();
  unpacked && fs.rmSync(unpacked, { recursive: true, force: true });
});

test('the bundle holds each file with .gz and .br copies of the same bytes where they save 5 %, its sizes and a note', () => {
  const saves = (copy, plain) => copy.length * 100 <= plain.length * 95;
  // gzip -9, and brotli's mid quality: its best takes half a minute on the soundtrack here.
  const packs = { '.gz': (bytes) => zlib.gzipSync(bytes, { level: 9 }), '.br': (bytes) => zlib.brotliCompressSync(bytes,
    { params: { [zlib.constants.BROTLI_PARAM_QUALITY]: 5 } }) };
  const unpacks = { '.gz': zlib.gunzipSync, '.br': zlib.brotliDecompressSync };
  const note = fs.readFileSync(path.join(site, 'README.txt'), 'utf8');
  for (const name of fs.readdirSync(site).filter((file) => !/\.(gz|br)$|^README\.txt$/.test(file))) {
    const plain = fs.readFileSync(path.join(site, name));
    assert.ok(note.includes(`  ${name} `), `README.txt names ${name}`);
    for (const suffix of ['.gz', '.br']) {
      const copy = path.join(site, name + suffix);
      if (fs.existsSync(copy)) {
        assert.ok(unpacks[suffix](fs.readFileSync(copy)).equals(plain), `${name}${suffix} unpacks to ${name}`);
        assert.ok(saves(fs.readFileSync(copy), plain), `${name}${suffix} is worth keeping`);
      } else {
        // Below a kilobyte a compressor's framing decides; none is worth a copy.
        assert.ok(plain.length < 1000 || !saves(packs[suffix](plain), plain), `${name} has no ${suffix} though it would save 5 %`);
        assert.ok(!['kaskade.js', 'kaskade.wasm', '3d', 'index.html'].includes(name), `${name} comes compressed`);
      }
    }
  }
  const sizes = JSON.parse(fs.readFileSync(path.join(site, 'files.json'), 'utf8'));
  LOADED.forEach((name) => assert.equal(sizes[name], fs.statSync(path.join(site, name)).size, `files.json on ${name}`));
  assert.match(note, new RegExp(`kaskade ${version.replace(/[.+]/g, '\\$&')} for the browser`));
  assert.match(note, /python3 -m http\.server/);
});

test('served by python on a slow line, the page counts its files in to 100 %, starts on the button and plays until Escape',
     { timeout: 300000 }, async () => {
  const errors = [];
  const page = await openPage(browser, errors);
  try {
    const network = await page.context().newCDPSession(page);
    const line = (bytesPerSecond) => network.send('Network.emulateNetworkConditions',
                                                  { offline: false, latency: 0, downloadThroughput: bytesPerSecond, uploadThroughput: -1 });
    await network.send('Network.enable');
    await line(3 * 1024 * 1024);  // slow enough to see the page load: the bundle is about 8 MB
    // The progress and the start button at every animation frame while the page loads.
    await page.addInitScript(() => {
      window.seen = [];
      const look = () => {
        const { kaskade } = window;
        kaskade?.loading && window.seen.push([kaskade.loading.percent, kaskade.state, document.getElementById('start').disabled]);
        kaskade?.loading?.percent === 100 || requestAnimationFrame(look);
      };
      requestAnimationFrame(look);
    });
    await page.goto(url);
    await waitFor(page, '25 %', () => window.kaskade?.loading?.percent >= 25);
    fs.mkdirSync(SCREENS, { recursive: true });
    await page.locator('#stage').screenshot({ path: path.join(SCREENS, 'loading.png') });
    const lines = await page.locator('#loading li').allTextContents();
    LOADED.forEach((name, i) => assert.match(lines[i], new RegExp(`^${name}: [\\d.]+ of ${
      (fs.statSync(path.join(site, name)).size / 1e6).toFixed(2)} MB`)));
    await waitFor(page, '100 %', () => window.kaskade.loading.percent === 100, null, 120000);
    await line(-1);
    const seen = await page.evaluate(() => window.seen);
    assert.deepEqual(seen.map(([percent]) => percent), seen.map(([percent]) => percent).sort((a, b) => a - b), 'never back');
    assert.deepEqual(seen.filter(([, state, off]) => off !== (state === 'loading')), [], 'the button waits for the show');

    await waitFor(page, 'the whole soundtrack', () => window.kaskade.soundtrack === 'decoded');
    const loaded = await page.evaluate(() => ({ state: window.kaskade.state, loading: window.kaskade.loading,
      bar: document.querySelector('#loading progress').value / document.querySelector('#loading progress').max,
      whole: document.querySelector('#loading div').textContent, version: document.getElementById('version').textContent,
      title: document.title }));
    assert.deepEqual([loaded.state, loaded.loading.loaded, loaded.bar], ['ready', loaded.loading.total, 1]);
    for (const name of LOADED) {
      const file = loaded.loading.files.find((entry) => entry.name === name);
      const size = fs.statSync(path.join(site, name)).size;
      assert.deepEqual([file.done, file.loaded, file.total], [true, size, size], name);
    }
    assert.match(loaded.whole, /^([\d.]+) of \1 MB, 100 %$/);
    assert.deepEqual([loaded.version, loaded.title], [`version ${version}`, `kaskade ${version}`]);

    await page.locator('#start').click();
    await waitFor(page, 'frames', () => window.kaskade.partCounts()[0].frames > 10);
    await page.keyboard.press('Escape');
    await waitForState(page, ['ended']);
    assert.match(await page.locator('#status').textContent(), /^fps: \d+\.\d\d$/);
    assert.deepEqual(errors, []);
  } finally {
    await page.close();
  }
});
