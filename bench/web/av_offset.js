// How far the show's clock is from what is heard, in headless Chromium: at
// every animation frame for a few seconds of the live show (part 7, with the
// soundtrack playing), the demo time the frame was drawn at against the song
// position the AudioContext's output plays at that moment, worked out from its
// output timestamp and the pieces of the song the page scheduled. Also what the clock would
// be off by had it followed the context's own time (what is handed to the
// audio system), and the latencies the context reports. A report, not a test.
// What no page can see is left out: the frame reaches the screen at the next
// display refresh, up to one frame (16.7 ms at 60 Hz) after it was drawn.
//   node bench/web/av_offset.js [SECONDS]   (default 5; KASKADE_SITE as for the tests)
'use strict';

const path = require('node:path');
const { launchBrowser, openPage, serveSite } = require('../../tests/web/browser.js');

const SITE = path.resolve(process.env.KASKADE_SITE || path.join(__dirname, '../../build-web/web'));
const SECONDS = Number(process.argv[2] || 5);

// Runs in the page: one sample per animation frame, taken right after the
// show's own frame (its callback was asked for first).
function sampleInPage(seconds) {
  return new Promise((resolve) => {
    const audio = Module.kaskadeAudio;
    const context = audio.context;
    const samples = [];
    const end = performance.now() + seconds * 1000;
    const sample = () => {
      const stamp = context.getOutputTimestamp();
      const now = performance.now();
      const heard = stamp.contextTime * 1000 + (now - stamp.performanceTime);
      const position = (contextMillis) => audio.songMillisAt(contextMillis);
      const demoMillis = Module._kaskade_player_state(4) * 100;
      samples.push({
        heard: demoMillis - position(heard),
        rendered: demoMillis - position(context.currentTime * 1000),
      });
      if (now < end) {
        requestAnimationFrame(sample);
      } else {
        resolve({ samples, outputLatency: context.outputLatency, baseLatency: context.baseLatency,
                  aheadOfHeard: context.currentTime * 1000 - heard });
      }
    };
    requestAnimationFrame(sample);
  });
}

function summary(values) {
  const sorted = [...values].sort((a, b) => a - b);
  const mean = values.reduce((a, b) => a + b, 0) / values.length;
  const at = (q) => sorted[Math.min(sorted.length - 1, Math.floor(q * sorted.length))];
  return `mean ${mean.toFixed(1)}, median ${at(0.5).toFixed(1)}, 5 % ${at(0.05).toFixed(1)}, ` +
         `95 % ${at(0.95).toFixed(1)} ms`;
}

(async () => {
  const site = await serveSite(SITE);
  const browser = await launchBrowser();
  try {
    const page = await openPage(browser, []);
    await page.goto(`${site.url}#part=7`);
    await page.waitForFunction(() => window.kaskade.state === 'ready', null, { timeout: 120000 });
    await page.keyboard.press('Enter');
    await page.waitForFunction(() => window.kaskade.state === 'playing', null, { timeout: 20000 });
    await page.waitForTimeout(1000);
    const result = await page.evaluate(sampleInPage, SECONDS);
    const { samples } = result;
    console.log(`${samples.length} frames of part 7 in headless Chromium; the demo time less the song position:`);
    console.log(`  heard (output timestamp), what the clock follows:  ${summary(samples.map((s) => s.heard))}`);
    console.log(`  handed over (context time), had it followed that:  ${summary(samples.map((s) => s.rendered))}`);
    console.log(`the context reports outputLatency ${(result.outputLatency * 1000).toFixed(1)} ms, baseLatency ` +
                `${(result.baseLatency * 1000).toFixed(1)} ms; its time runs ${result.aheadOfHeard.toFixed(1)} ms ` +
                'ahead of its output timestamp');
    await page.close();
  } finally {
    await browser.close();
    site.close();
  }
})();
