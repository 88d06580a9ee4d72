// What the frame comparison makes of deliberate drawing mistakes (the page's
// ?fault=, gl11/faults.h): the shiftedError of every part's middle frame, the
// show as it is and with each mistake. The figures behind show_test.js's
// MAX_SHIFTED_ERROR. The mistakes exist only in the site built for this:
//   scripts/web --faults && node bench/web/faults.js [FAULT...]
// (default: fov ambient colour-material flat-vertex; KASKADE_SITE overrides
// the site, by default build-web-faults/web).
'use strict';

const fs = require('node:fs');
const path = require('node:path');
const { launchBrowser, waitForState } = require('../../tests/web/browser.js');
const { onServedPage } = require('./served_page.js');
const { compareInPage, middleFrame } = require('../../tests/web/frames.js');

const SITE = path.resolve(process.env.KASKADE_SITE || path.join(__dirname, '../../build-web-faults/web'));
const REFERENCES = path.join(__dirname, '../data/frames');
const FAULTS = ['', ...(process.argv.length > 2 ? process.argv.slice(2) : ['fov', 'ambient', 'colour-material', 'flat-vertex'])];
const PARTS = Array.from({ length: 13 }, (_, i) => i + 1);

function errorsWith(browser, fault) {
  return onServedPage(browser, SITE, {}, async (page, url) => {
    const middles = PARTS.map((part) => middleFrame(part, 4));
    await page.goto(`${url}?fps=4${fault ? `&fault=${fault}` : ''}&grab=${middles.join(',')}&stop=${middles[12]}`);
    await waitForState(page, ['paused', 'failed'], 600000);
    if (await page.evaluate(() => window.kaskade.state) === 'failed') {
      throw new Error(`fault "${fault}": ${await page.locator('#status').textContent()}`);
    }
    const errors = [];
    for (const part of PARTS) {
      const file = path.join(REFERENCES, `part${String(part).padStart(2, '0')}.png`);
      const reference = `data:image/png;base64,${fs.readFileSync(file).toString('base64')}`;
      errors.push((await page.evaluate(compareInPage, [middles[part - 1], reference])).shiftedError);
    }
    return errors;
  });
}

(async () => {
  const browser = await launchBrowser();
  try {
    console.log(`part  ${FAULTS.map((fault) => (fault || 'as drawn').padStart(17)).join('')}`);
    const columns = [];
    for (const fault of FAULTS) {
      columns.push(await errorsWith(browser, fault));
    }
    for (const part of PARTS) {
      console.log(`${String(part).padStart(4)}  ${columns.map((c) => c[part - 1].toFixed(2).padStart(17)).join('')}`);
    }
  } finally {
    await browser.close();
  }
})().catch((error) => {
  console.error(String(error.message || error));
  process.exitCode = 1;
});
