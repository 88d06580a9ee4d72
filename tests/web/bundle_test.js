// The web bundle as someone would put it on a host: the newest
// dist/kaskade-web-*.tar.gz (or KASKADE_BUNDLE) unpacked into an empty
// directory and served from there by `python3 -m http.server`. Its files
// come with .gz and .br copies of the same bytes; the page counts every file
// in to 100 % (the start button offered once all but the rest of the music
// is in), then starts on that button and plays until Escape. Run with `node --test`.
'use strict';

const assert = require('node:assert/strict');
const { spawn, execFileSync } = require('node:child_process');
const fs = require('node:fs');
const os = require('node:os');
const path = require('node:path');
const zlib = require('node:zlib');
const { after, before, describe, test } = require('node:test');

const { launchBrowser, openPage } = require('./browser.js');

const ROOT = path.resolve(__dirname, '../..');
const SCREENS = path.join(ROOT, 'build-web/web-test');
const SERVED = ['index.html', 'kaskade.css', 'kaskade_address.js', 'kaskade_controls.js', 'kaskade_loading.js',
                'kaskade_mp3_frames.js', 'kaskade_page.js', 'kaskade_resolution.js', 'kaskade_soundtrack.js', 'kaskade.js',
                'kaskade.wasm', '3d', 'harbour.mp3', 'files.json'];
const LOADED = ['kaskade.js', 'kaskade.wasm', '3d', 'harbour.mp3'];
// Slow enough that the page is seen while it loads (the bundle is about 8 MB).
const THROTTLED_BYTES_PER_SECOND = 3 * 1024 * 1024;

function newestBundle() {
  if (process.env.KASKADE_BUNDLE) {
    return path.resolve(process.env.KASKADE_BUNDLE);
  }
  const dist = path.join(ROOT, 'dist');
  const bundles = fs.existsSync(dist) ? fs.readdirSync(dist).filter((name) => /^kaskade-web-.*\.tar\.gz$/.test(name)) : [];
  assert.ok(bundles.length > 0, `no web bundle in ${dist}: run scripts/package web first`);
  bundles.sort((a, b) => fs.statSync(path.join(dist, b)).mtimeMs - fs.statSync(path.join(dist, a)).mtimeMs);
  return path.join(dist, bundles[0]);
}

// python3 -m http.server on a port the system picks; resolves to {url, stop()}.
function servePython(directory) {
  const server = spawn('python3', ['-u', '-m', 'http.server', '0', '--bind', '127.0.0.1', '--directory', directory],
                       { stdio: ['ignore', 'pipe', 'pipe'] });
  const stop = () => {
    if (server.exitCode === null && server.signalCode === null) {
      server.kill('SIGTERM');
    }
  };
  return new Promise((resolve, reject) => {
    let said = '';
    const timer = setTimeout(() => {
      stop();
      reject(new Error(`python3 -m http.server did not say its port: ${said}`));
    }, 20000);
    server.stdout.on('data', (chunk) => {
      said += chunk;
      const port = /port (\d+)/.exec(said);
      if (port) {
        clearTimeout(timer);
        resolve({ url: `http://127.0.0.1:${port[1]}/`, stop });
      }
    });
    server.stderr.on('data', () => {});  // one line per request
    server.on('exit', (code) => {
      clearTimeout(timer);
      reject(new Error(`python3 -m http.server ended (${code}): ${said}`));
    });
  });
}

let browser;
let server;
let unpacked;  // the empty directory the bundle went into
let site;      // the bundle's own folder in it
let version;

before(async () => {
  const bundle = newestBundle();
  unpacked = fs.mkdtempSync(path.join(os.tmpdir(), 'kaskade-bundle-'));
  execFileSync('tar', ['-xzf', bundle, '-C', unpacked]);
  const folders = fs.readdirSync(unpacked);
  assert.equal(folders.length, 1, `one folder in the bundle: ${folders}`);
  site = path.join(unpacked, folders[0]);
  version = /^kaskade-web-(.+)$/.exec(folders[0])[1];
  server = await servePython(site);
  browser = await launchBrowser();
});

after(async () => {
  if (browser) {
    await browser.close();
  }
  if (server) {
    server.stop();
  }
  if (unpacked) {
    fs.rmSync(unpacked, { recursive: true, force: true });
  }
});

describe('the web bundle', () => {
  test('holds each file with .gz and .br copies of the same bytes where they save 5 %, its sizes and a note', () => {
    const saves = (copy, plain) => copy.length * 100 <= plain.length * 95;
    // Brotli's mid quality: its best takes half a minute on the soundtrack here.
    const gzipHard = (bytes) => zlib.gzipSync(bytes, { level: 9 });
    const brotliQuick = (bytes) => zlib.brotliCompressSync(bytes, { params: { [zlib.constants.BROTLI_PARAM_QUALITY]: 5 } });
    const withoutCopies = [];
    for (const name of SERVED) {
      const plain = fs.readFileSync(path.join(site, name));
      assert.ok(plain.length > 0, name);
      for (const [suffix, unpack, pack] of [['.gz', zlib.gunzipSync, gzipHard],
                                            ['.br', zlib.brotliDecompressSync, brotliQuick]]) {
        const copy = path.join(site, name + suffix);
        if (fs.existsSync(copy)) {
          assert.ok(unpack(fs.readFileSync(copy)).equals(plain), `${name}${suffix} unpacks to ${name}`);
          assert.ok(saves(fs.readFileSync(copy), plain), `${name}${suffix} is worth keeping`);
        } else {
          // Below a kilobyte a compressor's framing decides; none is worth a copy.
          assert.ok(plain.length < 1000 || !saves(pack(plain), plain), `${name} has no ${suffix} though it would save 5 %`);
          withoutCopies.push(name + suffix);
        }
      }
    }
    for (const name of ['kaskade.js', 'kaskade.wasm', '3d', 'index.html']) {
      assert.ok(!withoutCopies.some((copy) => copy.startsWith(`${name}.`)), `${name} comes compressed`);
    }
    const sizes = JSON.parse(fs.readFileSync(path.join(site, 'files.json'), 'utf8'));
    for (const name of LOADED) {
      assert.equal(sizes[name], fs.statSync(path.join(site, name)).size, `files.json on ${name}`);
    }
    const note = fs.readFileSync(path.join(site, 'README.txt'), 'utf8');
    assert.match(note, new RegExp(`kaskade ${version.replace(/[.+]/g, '\\$&')} for the browser`));
    assert.match(note, /python3 -m http\.server/);
    const listed = fs.readdirSync(site).filter((name) => !/\.(gz|br)$|^README\.txt$/.test(name));
    assert.deepEqual(listed.filter((name) => !note.includes(`  ${name} `)), [], 'README.txt names every file');
  });

  test('served by python, loads with its progress to 100 %, starts on the button and plays until Escape',
       async () => {
    const errors = [];
    const page = await openPage(browser, errors);
    const network = await page.context().newCDPSession(page);
    await network.send('Network.enable');
    await network.send('Network.emulateNetworkConditions',
                       { offline: false, latency: 0, downloadThroughput: THROTTLED_BYTES_PER_SECOND, uploadThroughput: -1 });
    await page.goto(server.url);

    // While it loads: the bar moves on, each file counts against its size, the button waits for the show's files.
    const seen = [];
    let screenshot = null;
    for (;;) {
      const now = await page.evaluate(() => ({
        state: window.kaskade.state,
        loading: window.kaskade.loading && JSON.parse(JSON.stringify(window.kaskade.loading)),
        startDisabled: document.getElementById('start').disabled,
      }));
      if (now.state !== 'loading' && now.state !== 'ready') {
        assert.fail(`the page is ${now.state} while it loads: ${await page.locator('#status').textContent()}`);
      }
      if (now.loading && now.loading.percent === 100) {
        break;
      }
      assert.equal(now.startDisabled, now.state === 'loading', 'the start button waits for the show');
      if (now.loading) {
        seen.push(now.loading.percent);
        if (!screenshot && now.loading.percent >= 25 && now.loading.percent <= 75) {
          fs.mkdirSync(SCREENS, { recursive: true });
          screenshot = path.join(SCREENS, 'loading.png');
          await page.locator('#stage').screenshot({ path: screenshot });
          console.log(`the page while it loads (${now.loading.percent} %): ${screenshot}`);
          const lines = await page.locator('#loading li').allTextContents();
          assert.deepEqual(lines.map((line) => line.split(':')[0]), LOADED);
          LOADED.forEach((name, i) => {
            const megabytes = (fs.statSync(path.join(site, name)).size / 1e6).toFixed(2);
            assert.match(lines[i], new RegExp(`: [\\d.]+ of ${megabytes} MB`), name);
          });
        }
      }
      await page.waitForTimeout(100);
    }
    await network.send('Network.emulateNetworkConditions',
                       { offline: false, latency: 0, downloadThroughput: -1, uploadThroughput: -1 });
    assert.ok(screenshot, `the loading was seen between 25 and 75 %: ${seen}`);
    assert.deepEqual(seen, [...seen].sort((a, b) => a - b), 'the progress never goes back');

    await page.waitForFunction(() => window.kaskade.soundtrack !== 'streaming', null, { timeout: 60000 });
    const loaded = await page.evaluate(() => ({
      state: window.kaskade.state,
      loading: window.kaskade.loading,
      bar: { value: document.querySelector('#loading progress').value, max: document.querySelector('#loading progress').max },
      whole: document.querySelector('#loading div').textContent,
      version: document.getElementById('version').textContent,
      title: document.title,
    }));
    assert.equal(loaded.state, 'ready');
    assert.equal(loaded.loading.percent, 100);
    assert.equal(loaded.loading.loaded, loaded.loading.total);
    for (const name of LOADED) {
      const file = loaded.loading.files.find((entry) => entry.name === name);
      const size = fs.statSync(path.join(site, name)).size;
      assert.deepEqual([file.done, file.loaded, file.total], [true, size, size], name);
    }
    assert.equal(loaded.bar.value, loaded.bar.max, 'the bar is full');
    assert.match(loaded.whole, /^([\d.]+) of \1 MB, 100 %$/);
    assert.equal(loaded.version, `version ${version}`);
    assert.equal(loaded.title, `kaskade ${version}`);
    assert.equal(await page.evaluate(() => window.kaskade.soundtrack), 'decoded');

    await page.locator('#start').click();
    await page.waitForFunction(() => window.kaskade.state !== 'starting', null, { timeout: 10000 });
    await page.waitForFunction(() => window.kaskade.partCounts()[0].frames > 10, null, { timeout: 30000 });
    assert.equal(await page.evaluate(() => window.kaskade.state), 'playing');
    await page.keyboard.press('Escape');
    await page.waitForFunction(() => ['ended', 'failed'].includes(window.kaskade.state), null, { timeout: 10000 });
    assert.equal(await page.evaluate(() => window.kaskade.state), 'ended');
    assert.match(await page.locator('#status').textContent(), /^fps: \d+\.\d\d$/);
    assert.deepEqual(errors, []);
    await page.close();
  });
});
