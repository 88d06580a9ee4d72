// How long a jump between parts takes in headless Chromium (SwiftShader) on
// this machine: from the request (as a key or the bar's mark makes it) to the
// end of the next animation frame, whose drawing is waited for on the GPU side
// (a one-pixel read-back), on the live clock with the soundtrack playing.
// Every pair of parts (from, to), after every part was loaded once; the best
// of RUNS runs counts for each pair, as other work on the machine only ever
// slows a run down. Then, in fresh pages, the first jump from part 1 to each
// part, which reads the parts before it from the archive. A report, not a test.
//   node bench/web/jump_bench.js [RUNS]   (default 3; KASKADE_SITE as for the tests)
// With `seek`, seeks instead: to every whole second of the show, each from
// half the show away, with all of the soundtrack decoded (so that no seek
// waits for music still to come), from the request to the end of the first
// frame at the new time, the best of RUNS for each: worst, median, and the
// part of the worst.
//   node bench/web/jump_bench.js seek [RUNS]
'use strict';

const os = require('node:os');
const path = require('node:path');
const { launchBrowser, openPage, serveSite } = require('../../tests/web/browser.js');
const { ENDS } = require('../../tests/web/frames.js');

const SITE = path.resolve(process.env.KASKADE_SITE || path.join(__dirname, '../../build-web/web'));
const SEEKS = process.argv[2] === 'seek';
const RUNS = Number(process.argv[SEEKS ? 3 : 2] || 3);
const PARTS = 13;

// Runs in the page: the milliseconds until the end of the next frame of
// `part` (0: of any part) drawn, its drawing finished; with `jump`, from
// asking for `part`; with `seconds`, from a seek there (with neither, the
// floor: the rest of the display's frame and an ordinary frame, which plays).
async function timeFrameInPage([part, jump, seconds]) {
  const shown = () => window.kaskade.partCounts().reduce((sum, counts, i) =>
    sum + (part === 0 || i === part - 1 ? counts.frames : 0), 0);
  const before = shown();
  const gl = document.getElementById('canvas').getContext('webgl2');
  const pixel = new Uint8Array(4);
  const asked = performance.now();
  if (seconds !== undefined) {
    Module._kaskade_seek_to(seconds);
  } else if (jump) {
    Module._kaskade_jump_to(part);
  }
  return new Promise((resolve) => {
    const check = () => {
      if (shown() > before) {
        gl.readPixels(0, 0, 1, 1, gl.RGBA, gl.UNSIGNED_BYTE, pixel);
        resolve(performance.now() - asked);
      } else {
        requestAnimationFrame(check);
      }
    };
    requestAnimationFrame(check);
  });
}

// Runs in the page: `count` animation frames go by.
function framesInPage(count) {
  return new Promise((resolve) => {
    const next = (left) => (left === 0 ? resolve() : requestAnimationFrame(() => next(left - 1)));
    next(count);
  });
}

async function openShow(browser, siteUrl) {
  const page = await openPage(browser, []);
  await page.goto(siteUrl);
  await page.waitForFunction(() => window.kaskade.state === 'ready', null, { timeout: 120000 });
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => window.kaskade.state === 'playing', null, { timeout: 20000 });
  await page.evaluate(framesInPage, 3);
  return page;
}

async function jump(page, from, to) {
  await page.evaluate(timeFrameInPage, [from, true]);
  await page.evaluate(framesInPage, 3);
  return page.evaluate(timeFrameInPage, [to, true]);
}

function report(best) {
  console.log('distance  pairs  median ms  longest ms  (longest pair)');
  for (let distance = -(PARTS - 1); distance <= PARTS - 1; ++distance) {
    const pairs = [];
    for (let from = 1; from <= PARTS; ++from) {
      const to = from + distance;
      if (to >= 1 && to <= PARTS) {
        pairs.push({ from, to, ms: best[from][to] });
      }
    }
    const sorted = pairs.map((pair) => pair.ms).sort((a, b) => a - b);
    const longest = pairs.reduce((a, b) => (b.ms > a.ms ? b : a));
    console.log(`${String(distance).padStart(8)}  ${String(pairs.length).padStart(5)}  ` +
                `${sorted[Math.floor((sorted.length - 1) / 2)].toFixed(1).padStart(9)}  ` +
                `${longest.ms.toFixed(1).padStart(10)}  (${longest.from} to ${longest.to})`);
  }
}

// Every whole second of the show, sought from half the show away.
async function seekGrid(browser, siteUrl) {
  const page = await openShow(browser, siteUrl);
  await page.waitForFunction(() => window.kaskade.soundtrack === 'decoded', null, { timeout: 120000 });
  await jump(page, 1, PARTS);  // every part loaded once
  const seconds = Math.floor(ENDS[PARTS] / 10);
  const best = new Array(seconds).fill(Infinity);
  for (let run = 0; run < RUNS; ++run) {
    for (let t = 0; t < seconds; ++t) {
      await page.evaluate(timeFrameInPage, [0, false, (t + seconds / 2) % seconds]);
      await page.evaluate(framesInPage, 2);
      best[t] = Math.min(best[t], await page.evaluate(timeFrameInPage, [0, false, t]));
    }
  }
  await page.close();
  const worst = best.reduce((at, ms, t) => (ms > best[at] ? t : at), 0);
  const part = ENDS.findIndex((end) => worst * 10 < end);
  const sorted = [...best].sort((a, b) => a - b);
  console.log(`headless Chromium, live clock, a seek to each of ${seconds} whole seconds from half the show away, ` +
              `best of ${RUNS} runs, from the request to the first frame at the new time drawn:`);
  console.log(`  median ${sorted[sorted.length >> 1].toFixed(1)} ms, worst ${best[worst].toFixed(1)} ms ` +
              `(at ${worst} s, part ${part})`);
}

(async () => {
  const site = await serveSite(SITE);
  const browser = await launchBrowser();
  const load = os.loadavg()[0];
  try {
    if (SEEKS) {
      await seekGrid(browser, site.url);
      console.log(`load average ${load.toFixed(1)} before, ${os.loadavg()[0].toFixed(1)} after (2 cores)`);
      return;
    }
    const page = await openShow(browser, site.url);
    await jump(page, 1, PARTS);  // every part loaded once
    const best = Array.from({ length: PARTS + 1 }, () => new Array(PARTS + 1).fill(Infinity));
    for (let run = 0; run < RUNS; ++run) {
      for (let from = 1; from <= PARTS; ++from) {
        for (let to = 1; to <= PARTS; ++to) {
          best[from][to] = Math.min(best[from][to], await jump(page, from, to));
        }
      }
    }
    const ordinary = [];
    for (let part = 1; part <= PARTS; ++part) {
      await page.evaluate(timeFrameInPage, [part, true]);
      for (let i = 0; i < 10; ++i) {
        ordinary.push(await page.evaluate(timeFrameInPage, [part, false]));
      }
    }
    await page.close();
    console.log(`headless Chromium, every pair of parts, best of ${RUNS} runs, from the request to the frame drawn:`);
    report(best);
    ordinary.sort((a, b) => a - b);
    console.log(`without a jump, the same wait for an ordinary frame: median ${ordinary[ordinary.length >> 1].toFixed(1)} ` +
                `ms, longest ${ordinary[ordinary.length - 1].toFixed(1)} ms (10 in each part)`);

    console.log('first jump from part 1 in a fresh page (the parts before read from the archive):');
    const cold = [];
    for (let to = 2; to <= PARTS; ++to) {
      const fresh = await openShow(browser, site.url);
      cold.push(`${to}: ${(await fresh.evaluate(timeFrameInPage, [to, true])).toFixed(1)}`);
      await fresh.close();
    }
    console.log(`  to part ${cold.join(', ')} ms`);
    console.log(`load average ${load.toFixed(1)} before, ${os.loadavg()[0].toFixed(1)} after (2 cores)`);
  } finally {
    await browser.close();
    site.close();
  }
})();
