// What the browser tests share: the site served on 127.0.0.1 from a port the
// system picks, and Debian's Chromium, headless, drawing WebGL 2 through
// SwiftShader, with everything that would reach for the network turned off.
'use strict';

const assert = require('node:assert/strict');
const fs = require('node:fs');
const http = require('node:http');
const path = require('node:path');
const { after, before } = require('node:test');
const { chromium } = require('playwright-core');

const SITE = path.resolve(process.env.KASKADE_SITE || path.join(__dirname, '../../build-web/web'));
const SCREENS = path.join(path.dirname(SITE), 'web-test');  // screenshots to look at
const TYPES = { '.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.wasm': 'application/wasm',
                '.mp3': 'audio/mpeg', '.png': 'image/png', '.json': 'application/json' };

// Serves the files of `root`, byte ranges too; resolves to {url, close()}.
// `replaced` (read at each request) maps a file name to the bytes served in
// its place ({type, body} for another Content-Type), or null for none. With
// `precompressed`, a .br or .gz copy goes to a browser that asks, as caddy's
// `precompressed br gzip` sends them.
function serveSite(root, replaced = {}, precompressed = false) {
  const server = http.createServer((request, response) => {
    const name = decodeURIComponent(new URL(request.url, 'http://localhost').pathname).replace(/^\//, '') ||
      'index.html';
    let file = path.join(root, name);
    const given = replaced[name];
    const headers = { 'Content-Type': (given && given.type) || TYPES[path.extname(name)] || 'application/octet-stream' };
    if (given === null || (!(name in replaced) && !(file.startsWith(root) && fs.statSync(file, { throwIfNoEntry: false })?.isFile()))) {
      return response.writeHead(404).end();
    }
    if (given) {
      return response.writeHead(200, headers).end(given.body || given);
    }
    const copy = [['br', '.br'], ['gzip', '.gz']].find(([encoding, suffix]) =>
      precompressed && (request.headers['accept-encoding'] || '').includes(encoding) && fs.existsSync(file + suffix));
    if (copy) {
      Object.assign(headers, { 'Content-Encoding': copy[0], Vary: 'Accept-Encoding' });
      file += copy[1];
    }
    const size = fs.statSync(file).size;
    const range = /^bytes=(\d+)-(\d*)$/.exec(request.headers.range || '');
    if (range && !copy && Number(range[1]) < size) {
      const [start, end] = [Number(range[1]), range[2] ? Math.min(Number(range[2]), size - 1) : size - 1];
      response.writeHead(206, { ...headers, 'Content-Range': `bytes ${start}-${end}/${size}`,
                                'Content-Length': end - start + 1 });
      fs.createReadStream(file, { start, end }).pipe(response);
    } else {
      response.writeHead(200, { ...headers, 'Content-Length': size });
      fs.createReadStream(file).pipe(response);
    }
  });
  const close = () => new Promise((closed) => server.close(closed) && server.closeAllConnections());
  return new Promise((resolve) => server.listen(0, '127.0.0.1', () =>
    resolve({ url: `http://127.0.0.1:${server.address().port}/`, close })));
}

// Every launch has a fresh, empty profile. extraArgs: e.g. frames faster than the display.
async function launchBrowser(extraArgs = []) {
  return chromium.launch({ executablePath: process.env.KASKADE_CHROMIUM || '/usr/bin/chromium', headless: true, args: [
    '--headless=new', '--no-sandbox', '--use-angle=swiftshader', '--enable-unsafe-swiftshader', '--disable-quic',
    '--disable-background-networking', '--disable-component-update', '--disable-sync', '--no-first-run',
    '--autoplay-policy=no-user-gesture-required', ...extraArgs] });
}

// A page in a context of its own (`options`: Playwright's, e.g. a phone's)
// whose console and page errors land in `errors`.
async function openPage(browser, errors, options = {}) {
  const page = await browser.newPage({ viewport: { width: 760, height: 600 }, ...options });
  // Two cores shared with builds: loading the page can take longer than Playwright's 30 s.
  page.setDefaultNavigationTimeout(120000);
  page.setDefaultTimeout(60000);
  page.on('console', (message) => message.type() === 'error' && errors.push(message.text()));
  page.on('pageerror', (error) => errors.push(String(error)));
  return page;
}

// One browser and one server of SITE for a file's tests: `url`, and
// page(use, options, replaced), use(page, errors) on a page of its own, with
// `replaced` served (as serveSite's) until it ends, closed however it ends.
function sharedSite() {
  const shared = { replaced: {} };
  let site;
  before(async () => {
    assert.ok(fs.existsSync(path.join(SITE, 'kaskade.wasm')), `no site at ${SITE}: run scripts/web first`);
    site = await serveSite(SITE, shared.replaced);
    shared.url = site.url;
    shared.browser = await launchBrowser();
  });
  after(async () => {
    await shared.browser?.close();
    await site?.close();
  });
  shared.page = async (use, options, replaced = {}) => {
    const errors = [];
    const page = await openPage(shared.browser, errors, options);
    Object.assign(shared.replaced, replaced);
    try {
      return await use(page, errors);
    } finally {
      Object.keys(replaced).forEach((name) => delete shared.replaced[name]);
      await page.close().catch(() => {});
    }
  };
  return shared;
}

// Waits until `condition(arg)` holds in the page, or fails saying `what` did not come.
async function waitFor(page, what, condition, arg, timeout = 60000) {
  try {
    await page.waitForFunction(condition, arg, { timeout, polling: 50 });
  } catch (error) {
    const seen = await page.evaluate(() => `state ${window.kaskade.state}, status ` +
                                      `"${document.getElementById('status').textContent}"`).catch(() => '');
    throw new Error(`${what} did not come within ${timeout / 1000} s: ${seen} (${String(error.message).split('\n')[0]})`);
  }
}

// Waits until window.kaskade.state is one of `states`, failing at once when the show failed.
const waitForState = (page, states, timeout) => waitFor(page, `the state ${states.join(' or ')}`,
  (wanted) => wanted.includes(window.kaskade.state) || (window.kaskade.state === 'failed' && Promise.reject(new Error(
    document.getElementById('status').textContent))), states, timeout);

module.exports = { SITE, SCREENS, serveSite, launchBrowser, openPage, sharedSite, waitFor, waitForState };
