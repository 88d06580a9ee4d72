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
  '.mp3': 'audio/mpeg', '.png': 'image/png',
};

// Serves the files of `root`; resolves to {url, close()}. `replaced` maps a
// file name to the bytes served in its place, or to null for a missing file.
function serveSite(root, replaced = {}) {
  const server = http.createServer((request, response) => {
    const name = decodeURIComponent(new URL(request.url, 'http://localhost').pathname).replace(/^\//, '') ||
      'index.html';
    const file = path.join(root, name);
    const type = { 'Content-Type': TYPES[path.extname(name)] || 'application/octet-stream' };
    if (name in replaced) {
      replaced[name] === null ? response.writeHead(404).end() : response.writeHead(200, type).end(replaced[name]);
    } else if (file.startsWith(root) && fs.existsSync(file) && fs.statSync(file).isFile()) {
      response.writeHead(200, type);
      fs.createReadStream(file).pipe(response);
    } else {
      response.writeHead(404).end();
    }
  });
  return new Promise((resolve) => {
    server.listen(0, '127.0.0.1', () => {
      resolve({ url: `http://127.0.0.1:${server.address().port}/`, close: () => server.close() });
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

module.exports = { serveSite, launchBrowser, openPage };
