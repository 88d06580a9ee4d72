// Frames per second and draw calls per frame, part by part, of the show in
// headless Chromium (SwiftShader) on this machine: the whole show on the
// fixed-step clock with animation frames as fast as the browser can draw
// them. A report, not a test.
//   node tests/web/bench.js [FPS]   (the fixed-step rate, default 60; KASKADE_SITE as for the tests)
'use strict';

const os = require('node:os');
const path = require('node:path');
const { launchBrowser, openPage, serveSite } = require('./browser.js');

const SITE = path.resolve(process.env.KASKADE_SITE || path.join(__dirname, '../../build-web/web'));
const fps = Number(process.argv[2] || 60);

(async () => {
  const site = await serveSite(SITE);
  // Animation frames unbound from the display's 60 Hz.
  const browser = await launchBrowser(['--disable-frame-rate-limit', '--disable-gpu-vsync']);
  const errors = [];
  const page = await openPage(browser, errors);
  const load = os.loadavg()[0];
  const started = Date.now();
  await page.goto(`${site.url}?fps=${fps}`);
  await page.waitForFunction(() => ['ended', 'failed'].includes(window.kaskade.state), null,
                             { timeout: 3600000, polling: 1000 });
  const parts = await page.evaluate(() => window.kaskade.partCounts());
  console.log(`the show at --fps ${fps}: ${((Date.now() - started) / 1000).toFixed(1)} s, ` +
              `${await page.evaluate(() => window.kaskade.endLine)}, load average ${load.toFixed(1)} before, ` +
              `${os.loadavg()[0].toFixed(1)} after`);
  console.log('part  frames  frames/s  glBegin/frame  draw calls/frame  vertices/frame  KB sent/frame');
  for (const p of parts) {
    const perFrame = (value) => (value / p.frames).toFixed(0);
    console.log(`${String(p.part).padStart(4)}  ${String(p.frames).padStart(6)}  ` +
                `${(((p.frames - 1) * 1000) / p.millis).toFixed(1).padStart(8)}  ${perFrame(p.primitives).padStart(13)}  ` +
                `${(p.drawCalls / p.frames).toFixed(1).padStart(16)}  ${perFrame(p.vertices).padStart(14)}  ` +
                `${(p.streamedBytes / p.frames / 1024).toFixed(1).padStart(13)}`);
  }
  if (errors.length > 0) {
    console.log('console errors:', errors);
  }
  await browser.close();
  site.close();
})();
