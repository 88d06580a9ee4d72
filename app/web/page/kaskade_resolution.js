// The size the show's picture is drawn at. On the fixed-step clock it is
// 640 x 480, the show's own size, at which frames are compared. Live it is
// the picture's size on the page times the device pixel ratio, unless the
// device cannot draw that many pixels at its refresh rate: then one of a
// ladder of smaller sizes, each 0.85 as wide as the one above, down to
// 640 x 480 and never below; the browser scales the picture up.
//
// How a size is chosen: the time between animation frames (their begin
// times, which follow the display's refresh) is measured, 30 frames at a
// time (the first few at a new size left out). The refresh
// interval is the quickest tenth of the intervals seen while the cover
// waited (nothing is drawn then), or since. A median interval above 1.25
// times it is too slow: down by as many sizes as the pixels must shrink for
// a frame to fit in the refresh interval, judged by the least time it took
// (one refresh less than the median, as frames wait for the next refresh;
// each size has 0.72 of the pixels of the one above). A median within 1.1
// times it for 4 s
// lets the size above be tried again, but not before a wait that starts at
// 8 s and doubles (to 2 minutes at most) each time that size was found too
// slow: a size that does not keep up is not tried over and over, so the
// picture does not flicker between sizes. A long gap (a pause, a hidden
// page) starts the count afresh.
'use strict';

window.kaskadeResolution = (function () {
  const SHOW_WIDTH = 640;
  const STEP = 0.85;
  const WINDOW_FRAMES = 30;
  const SETTLE_FRAMES = 5;
  const SLOW = 1.25;
  const STEADY = 1.1;
  const UP_AFTER_MILLIS = 4000;
  const RETRY_MILLIS = 8000;
  const MAX_RETRY_MILLIS = 120000;
  const GAP_MILLIS = 500;

  // `picture`: the element the picture fills; `fixed`: the fixed-step clock;
  // `statsElement`: where the frame rate and the size go, or null. Returns
  // {sizeForFrame(), chosen}: sizeForFrame() is called before each frame is
  // drawn and gives {width, height}; `chosen` says what was chosen and why
  // ({width, height, fullWidth, fullHeight, framesPerSecond, refreshMillis}).
  function makeResolution(picture, fixed, statsElement) {
    const chosen = { width: SHOW_WIDTH, height: 480, fullWidth: SHOW_WIDTH, fullHeight: 480, framesPerSecond: 0,
                     refreshMillis: Infinity };
    let level = 0;
    let levelSince = 0;
    let intervals = [];
    let settle = SETTLE_FRAMES;
    let last = 0;
    const retry = [];  // by level: {after (ms), wait (ms)} once found too slow
    let box = picture.getBoundingClientRect();
    new ResizeObserver(() => { box = picture.getBoundingClientRect(); }).observe(picture);

    const sizeAt = (fullWidth, at) => {
      const width = Math.max(SHOW_WIDTH, Math.round((fullWidth * STEP ** at) / 4) * 4);
      return { width, height: (width * 3) / 4 };
    };

    const quickestTenth = (sorted) => sorted[Math.floor(sorted.length / 10)];
    // The begin time of the animation frame being drawn.
    const frameTime = () => (document.timeline && document.timeline.currentTime) || performance.now();

    // The refresh interval, while the cover waits and the show draws nothing.
    const waiting = [];
    let before = 0;
    const measureRefresh = (now) => {
      if (before > 0 && levelSince === 0) {
        waiting.push(now - before);
        chosen.refreshMillis = quickestTenth([...waiting].sort((a, b) => a - b));
      }
      before = now;
      if (levelSince === 0 && waiting.length < 120) {
        requestAnimationFrame(measureRefresh);
      }
    };
    requestAnimationFrame(measureRefresh);

    function judge(now) {
      const sorted = [...intervals].sort((a, b) => a - b);
      const median = sorted[sorted.length >> 1];
      // Unmeasured (the cover was gone at once): the common 60 Hz.
      chosen.refreshMillis = Math.min(waiting.length >= 10 ? chosen.refreshMillis : 1000 / 60, quickestTenth(sorted));
      chosen.framesPerSecond = (1000 * sorted.length) / sorted.reduce((sum, interval) => sum + interval, 0);
      intervals = [];
      const lowest = sizeAt(chosen.fullWidth, level).width === SHOW_WIDTH;
      if (median > chosen.refreshMillis * SLOW && !lowest) {
        const wait = retry[level] ? Math.min(MAX_RETRY_MILLIS, retry[level].wait * 2) : RETRY_MILLIS;
        retry[level] = { after: now + wait, wait };
        const from = level;
        // A frame that missed n refreshes took more than n - 1 of them.
        const least = median - chosen.refreshMillis;
        const steps = Math.max(1, Math.ceil(Math.log(chosen.refreshMillis / least) / Math.log(STEP * STEP)));
        while (level - from < steps && sizeAt(chosen.fullWidth, level).width > SHOW_WIDTH) {
          level += 1;
        }
        levelSince = now;
        settle = SETTLE_FRAMES;
      } else if (median <= chosen.refreshMillis * STEADY && level > 0 && now - levelSince >= UP_AFTER_MILLIS &&
                 now >= (retry[level - 1] ? retry[level - 1].after : 0)) {
        level -= 1;
        levelSince = now;
        settle = SETTLE_FRAMES;
      }
    }

    function sizeForFrame() {
      const now = frameTime();
      levelSince = levelSince || now;
      const ratio = window.devicePixelRatio || 1;
      const full = sizeAt(Math.round(box.width * ratio), 0);
      chosen.fullWidth = full.width;
      chosen.fullHeight = full.height;
      if (fixed) {
        return { width: SHOW_WIDTH, height: 480 };
      }
      if (now - last > GAP_MILLIS) {
        intervals = [];
        settle = SETTLE_FRAMES;
      } else if (settle > 0) {
        settle -= 1;
      } else {
        intervals.push(now - last);
      }
      last = now;
      const judged = intervals.length >= WINDOW_FRAMES;
      if (judged) {
        judge(now);
      }
      const size = sizeAt(full.width, level);
      chosen.width = size.width;
      chosen.height = size.height;
      if (judged && statsElement) {
        statsElement.hidden = false;
        statsElement.textContent = `${chosen.framesPerSecond.toFixed(1)} frames/s, drawn at ${size.width} \u00d7 ` +
          `${size.height} of ${full.width} \u00d7 ${full.height}`;
      }
      return size;
    }

    return { sizeForFrame, chosen };
  }

  return { makeResolution };
})();
