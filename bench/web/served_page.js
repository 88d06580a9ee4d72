// What the browser benchmarks share beside the tests' own helpers
// (tests/web/browser.js, whose node_modules they use): a page on a server of
// its own, both closed however the body ends.
'use strict';

const { openPage, serveSite } = require('../../tests/web/browser.js');

// Runs `body(page, url, errors)` with a page of `browser` on a server of its
// own for `root` (`replaced` as for serveSite).
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

module.exports = { onServedPage };
