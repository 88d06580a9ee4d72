// How soon the page plays after its link is opened, in headless Chromium on a
// throttled line (DevTools network emulation, 40 ms latency, cache off): the
// site (KASKADE_SITE, or the directory given) copied with its precompressed
// copies (scripts/precompress) and served as caddy serves them (.br or .gz
// for a browser that asks, Vary: Accept-Encoding). For each line and address:
// the time from the link to the enabled start button, and to the first frame
// drawn (the button pressed as soon as it works), the bytes on the wire until
// that frame, and any file fetched twice. The median of RUNS runs. A report,
// not a test.
//   node bench/web/start_bench.js [SITE] [RUNS]   (default build-web/web, 3)
'use strict';

const { execFileSync } = require('node:child_process');
const fs = require('node:fs');
const os = require('node:os');
const path = require('node:path');
const { launchBrowser, serveSite } = require('../../tests/web/browser.js');

const ROOT = path.resolve(__dirname, '../..');
const SITE = path.resolve(process.argv[2] || process.env.KASKADE_SITE || path.join(ROOT, 'build-web/web'));
const RUNS = Number(process.argv[3] || 3);
const LINES = [
  { name: '20 Mbit/s', bytesPerSecond: 2.5e6, address: '' },
  { name: '5 Mbit/s', bytesPerSecond: 0.625e6, address: '' },
  { name: '20 Mbit/s', bytesPerSecond: 2.5e6, address: '#part=9' },
];
// Before the page's own scripts: notes the moment the start button works
// (and presses it then) and the moment the first frame is drawn.
function watchInPage() {
  window.startBench = {};
  const look = () => {
    const marks = window.startBench;
    const button = document.getElementById('start');
    if (marks.ready === undefined && button && !button.disabled) {
      marks.ready = performance.now();
      button.click();
    }
    const kaskade = window.kaskade;
    marks.failed = kaskade?.state === 'failed' ? document.getElementById('status').textContent : undefined;
    // Asked only once the show started: the program's exports fail before its runtime is up.
    if (kaskade && !['loading', 'ready'].includes(kaskade.state) && kaskade.partCounts().some((part) => part.frames > 0)) {
      marks.firstFrame = performance.now();
      marks.firstFrameWall = performance.timeOrigin + marks.firstFrame;
      return;
    }
    requestAnimationFrame(look);
  };
  requestAnimationFrame(look);
}

async function oneRun(browser, url, line) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 800 } });
  const page = await context.newPage();
  try {
    const cdp = await context.newCDPSession(page);
    await cdp.send('Network.enable');
    await cdp.send('Network.setCacheDisabled', { cacheDisabled: true });
    await cdp.send('Network.emulateNetworkConditions', { offline: false, latency: 40,
      downloadThroughput: line.bytesPerSecond, uploadThroughput: line.bytesPerSecond });
    const requests = new Map();  // id -> the url and the bytes asked for
    const received = [];         // {wall ms, bytes}
    let wallOffset = null;       // wall clock ms less the monotonic one
    cdp.on('Network.requestWillBeSent', (event) => {
      requests.set(event.requestId, `${new URL(event.request.url).pathname} ${event.request.headers.Range || ''}`);
      wallOffset ??= event.wallTime * 1000 - event.timestamp * 1000;
    });
    cdp.on('Network.dataReceived', (event) => received.push({ at: event.timestamp * 1000, bytes: event.encodedDataLength }));
    await page.addInitScript(watchInPage);
    await page.goto(`${url}${line.address}`);
    await page.waitForFunction(() => window.startBench.firstFrame !== undefined || window.startBench.failed,
                               null, { timeout: 120000, polling: 100 }).catch(() => {});
    const marks = await page.evaluate(() => window.startBench);
    if (marks.firstFrame === undefined) {
      throw new Error(`no first frame: ${marks.failed || `none within two minutes (${JSON.stringify(marks)})`}`);
    }
    const bytes = received.filter((chunk) => chunk.at + wallOffset <= marks.firstFrameWall)
      .reduce((sum, chunk) => sum + chunk.bytes, 0);
    const urls = [...requests.values()];
    const twice = [...new Set(urls.filter((u, i) => urls.indexOf(u) !== i))];
    return { ready: marks.ready, firstFrame: marks.firstFrame, bytes, requests: urls.length, twice };
  } finally {
    await context.close();
  }
}

const median = (values) => [...values].sort((a, b) => a - b)[Math.floor((values.length - 1) / 2)];

(async () => {
  if (!fs.existsSync(path.join(SITE, 'kaskade.wasm'))) {
    throw new Error(`no site at ${SITE}: run scripts/web first`);
  }
  const copy = fs.mkdtempSync(path.join(os.tmpdir(), 'kaskade-start-bench-'));
  let [site, browser] = [];
  try {
    execFileSync('cp', ['-r', `${SITE}/.`, copy]);
    execFileSync(path.join(ROOT, 'scripts/precompress'), [copy]);
    site = await serveSite(copy, {}, true);
    browser = await launchBrowser();
    const load = os.loadavg()[0];
    console.log(`the site of ${SITE}, precompressed, 40 ms latency, median of ${RUNS} runs:`);
    console.log('line        address   start button  first frame  MB before it  requests  fetched twice');
    for (const line of LINES) {
      const runs = [];
      for (let run = 0; run < RUNS; ++run) {
        runs.push(await oneRun(browser, site.url, line));
      }
      const twice = [...new Set(runs.flatMap((run) => run.twice))];
      console.log(`${line.name.padEnd(10)}  ${(line.address || '-').padEnd(8)}  ` +
                  `${(median(runs.map((r) => r.ready)) / 1000).toFixed(2).padStart(10)} s  ` +
                  `${(median(runs.map((r) => r.firstFrame)) / 1000).toFixed(2).padStart(9)} s  ` +
                  `${(median(runs.map((r) => r.bytes)) / 1e6).toFixed(2).padStart(12)}  ` +
                  `${String(median(runs.map((r) => r.requests))).padStart(8)}  ${twice.join(' ') || 'none'}`);
    }
    console.log(`load average ${load.toFixed(1)} before, ${os.loadavg()[0].toFixed(1)} after (${os.cpus().length} cores)`);
  } finally {
    await browser?.close();
    await site?.close();
    fs.rmSync(copy, { recursive: true, force: true });
  }
})().catch((error) => {
  console.error(`start_bench: ${error.message}`);
  process.exitCode = 1;
});
