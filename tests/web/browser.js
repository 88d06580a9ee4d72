// What the browser tests share: the site served on 127.0.0.1 from a port the
// system picks, and Debian's Chromium, headless, drawing WebGL 2 through
// SwiftShader, with everything that would reach for the network turned off.
'use strict';

const fs = require('fs');
const http = require('http');
const path = require('path');
const { chromium } = require('playwright-core');

const TYPES = {
  '.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css', '.wasm': 'application/wasm',
  '.mp3': 'audio/mpeg', '.png': 'image/png', '.json': 'application/json',
};

// Serves the files of `root`, a byte range where one is asked for; resolves
// to {url, close()}, close() resolving once the server and every connection
// to it are closed. `replaced` maps a file name to the bytes served in its
// place ({type, body} for another Content-Type), or to null for a missing
// file. With `precompressed`, a file's .br or .gz copy goes to a browser that
// asks for it, as caddy's `precompressed br gzip` sends them.
function serveSite(root, replaced = {}, precompressed = false) {
  const server = http.createServer((request, response) => {
    const name = decodeURIComponent(new URL(request.url, 'http://localhost').pathname).replace(/^\//, '') ||
      'index.html';
    let file = path.join(root, name);
    const given = replaced[name];
    const headers = { 'Content-Type': (given && given.type) || TYPES[path.extname(name)] || 'application/octet-stream' };
    if (name in replaced) {
      given === null ? response.writeHead(404).end() : response.writeHead(200, headers).end(given.body || given);
      return;
    }
    if (!file.startsWith(root) || !fs.existsSync(file) || !fs.statSync(file).isFile()) {
      response.writeHead(404).end();
      return;
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
  return new Promise((resolve) => {
    server.listen(0, '127.0.0.1', () => {
      const close = () => new Promise((closed) => {
        server.close(() => closed());
        server.closeAllConnections();
      });
      resolve({ url: `http://127.0.0.1:${server.address().port}/`, close });
    });
  });
}

// extraArgs: e.g. the flags that let animation frames run faster than the display.
// Playwright gives every launch a fresh, empty profile of its own.
async function launchBrowser(extraArgs = []) {
  return chromium.launch({
    executablePath: process.env.KASKADE_CHROMIUM || '/usr/bin/chromium',
    headless: true,
    args: [
      '--headless=new', '--no-sandbox', '--use-angle=swiftshader', '--enable-unsafe-swiftshader',
      '--disable-background-networking', '--disable-component-update', '--disable-sync', '--no-first-run',
      '--disable-quic', '--autoplay-policy=no-user-gesture-required', ...extraArgs,
    ],
  });
}

// A page of `browser` whose console errors and page errors land in `errors`.
async function openPage(browser, errors) {
  const page = await browser.newPage({ viewport: { width: 760, height: 600 } });
  // Two cores shared with builds: loading the page can take longer than Playwright's 30 s.
  page.setDefaultNavigationTimeout(120000);
  page.on('console', (message) => {
    if (message.type() === 'error') {
      errors.push(message.text());
    }
  });
  page.on('pageerror', (error) => errors.push(String(error)));
  return page;
}

// Runs `body(page, url, errors)` with a page of `browser` on a server of its
// own for `root` (`replaced` as for serveSite); the page and the server are
// closed however `body` ends, so a failing test leaves nothing running.
async function onServedPage(browser, root, replaced, body) {
  const site = await serveSite(root, replaced);
  const errors = [];
  let page = null;
  try {
    page = await openPage(browser, errors);
    return await body(page, site.url, errors);
  } finally {
    if (page !== null) {
      await page.close().catch(() => {});
    }
    await site.close();
  }
}

// Waits until window.kaskade.state is one of `states`; a wait that times out
// fails with the state the page is in and what its status line says.
async function waitForState(page, states, timeout) {
  try {
    await page.waitForFunction((wanted) => wanted.includes(window.kaskade.state), states, { timeout, polling: 100 });
  } catch (error) {
    const seen = await page.evaluate(() => ({ state: window.kaskade && window.kaskade.state,
                                             status: document.getElementById('status').textContent }))
      .catch(() => ({ state: 'unknown', status: String(error.message).split('\n')[0] }));
    throw new Error(`the page did not reach ${states.join(' or ')} within ${timeout / 1000} s: ` +
                    `state ${seen.state}, status "${seen.status}"`);
  }
}

module.exports = { serveSite, launchBrowser, openPage, onServedPage, waitForState };
