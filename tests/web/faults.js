// What the frame comparison makes of deliberate drawing mistakes (the page's
// ?fault=): the shiftedError of every part's middle frame, the show as it is
// and with each mistake. The figures behind show_test.js's MAX_SHIFTED_ERROR.
//   node tests/web/faults.js   (KASKADE_SITE as for the tests)
'use strict';

const fs = require('node:fs');
const path = require('node:path');
const { launchBrowser, openPage, serveSite } = require('./browser.js');
const { compareInPage, middleFrame } = require('./frames.js');

const SITE = path.resolve(process.env.KASKADE_SITE || path.join(__dirname, '../../build-web/web'));
const REFERENCES = path.join(__dirname, '../data/frames');
const FAULTS = ['', 'fov', 'ambient', 'colour-material', 'flat-vertex'];
const PARTS = Array.from({ length: 13 }, (_, i) => i + 1);

async function errorsWith(browser, siteUrl, fault) {
  const page = await openPage(browser, []);
  const middles = PARTS.map((part) => middleFrame(part, 4));
  await page.goto(`${siteUrl}?fps=4&fault=${fault}&grab=${middles.join(',')}&stop=${middles[12]}`);
  await page.waitForFunction(() => window.kaskade.state === 'paused', null, { timeout: 600000, polling: 500 });
  const errors = [];
  for (const part of PARTS) {
    const file = path.join(REFERENCES, `part${String(part).padStart(2, '0')}.png`);
    const reference = `data:image/png;base64,${fs.readFileSync(file).toString('base64')}`;
    errors.push((await page.evaluate(compareInPage, [middles[part - 1], reference])).shiftedError);
  }
  await page.close();
  return errors;
}

(async () => {
  const site = await serveSite(SITE);
  const browser = await launchBrowser();
  console.log(`part  ${FAULTS.map((fault) => (fault || 'as drawn').padStart(17)).join('')}`);
  const columns = [];
  for (const fault of FAULTS) {
    columns.push(await errorsWith(browser, site.url, fault));
  }
  for (const part of PARTS) {
    console.log(`${String(part).padStart(4)}  ${columns.map((c) => c[part - 1].toFixed(2).padStart(17)).join('')}`);
  }
  await browser.close();
  site.close();
})();
