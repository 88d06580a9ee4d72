// Frames per second and draw calls per frame, part by part, of the show in
// headless Chromium (SwiftShader) on this machine. Each part is started on
// its own (?part=N) on the fixed-step clock at 60 frames/s, with animation
// frames as fast as the browser draws them, and timed over its first four
// seconds of show; the best of a few runs counts, as other work on the
// machine only ever slows a run down. A report, not a test.
//   node bench/web/bench.js [RUNS]   (default 3; KASKADE_SITE as for the tests)
'use strict';

const os = require('node:os');
const path = require('node:path');
const { launchBrowser, waitForState } = require('../../tests/web/browser.js');
const { onServedPage } = require('./served_page.js');
const { ENDS } = require('../../tests/web/frames.js');

const SITE = path.resolve(process.env.KASKADE_SITE || path.join(__dirname, '../../build-web/web'));
const RUNS = Number(process.argv[2] || 3);
const FPS = 60;
const FRAMES = 4 * FPS;

function timePart(browser, part) {
  return onServedPage(browser, SITE, {}, async (page, url) => {
    const stop = Math.floor((ENDS[part - 1] * FPS) / 10) + FRAMES;
    await page.goto(`${url}?part=${part}&fps=${FPS}&stop=${stop}`);
    await waitForState(page, ['paused', 'ended', 'failed'], 600000);
    return (await page.evaluate(() => window.kaskade.partCounts()))[part - 1];
  });
}

async function report(browser) {
  const load = os.loadavg()[0];
  console.log('part  frames/s  glBegin/frame  draw calls/frame  vertices/frame  KB sent/frame');
  for (let part = 1; part <= 13; ++part) {
    let best = null;
    for (let run = 0; run < RUNS; ++run) {
      const counts = await timePart(browser, part);
      counts.rate = ((counts.frames - 1) * 1000) / counts.millis;
      best = best === null || counts.rate > best.rate ? counts : best;
    }
    const perFrame = (value, digits) => (value / best.frames).toFixed(digits);
    console.log(`${String(part).padStart(4)}  ${best.rate.toFixed(1).padStart(8)}  ` +
                `${perFrame(best.primitives, 0).padStart(13)}  ${perFrame(best.drawCalls, 1).padStart(16)}  ` +
                `${perFrame(best.vertices, 0).padStart(14)}  ${perFrame(best.streamedBytes / 1024, 1).padStart(13)}`);
  }
  console.log(`best of ${RUNS} runs of ${FRAMES} frames each; load average ${load.toFixed(1)} before, ` +
              `${os.loadavg()[0].toFixed(1)} after (2 cores)`);
}

(async () => {
  // Animation frames unbound from the display's 60 Hz.
  const browser = await launchBrowser(['--disable-frame-rate-limit', '--disable-gpu-vsync']);
  try {
    await report(browser);
  } finally {
    await browser.close();
  }
})().catch((error) => {
  console.error(String(error.message || error));
  process.exitCode = 1;
});
