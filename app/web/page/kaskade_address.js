// What the page's address asks of the show: the URL parameters and the part
// or time in its fragment (#part=N, #t=S), read as the desktop reads its command line. A
// value that is not what the parameter takes is refused with a sentence that
// names the parameter and what it accepts; the page then starts nothing, as
// the desktop exits with status 2. Parameters it does not know are no error.
//
//   part=N     the part to start at, 1 to 13 (also #part=N, the player's
//              address; a parameter wins over the fragment)
//   t=S        the moment to start at, in seconds from the show's start, 0 to
//              226.9 with up to three decimals (also #t=S, as the player's
//              address follows the show); wins over part
//   fps=N      the fixed-step clock, 1 to 240 frames per second; a bare
//              `fps` (no value) asks for the frame-rate statistics instead
//   grab=a,b   frames, counted from 0, read back for the tests
//   stop=a,b   frames after which the show pauses for the tests
//
// Numbers are decimal digits only (and a point in t): no sign, exponent, "0x" or space.
'use strict';

(function (root) {
  const PARTS = 13;
  const MAX_FIXED_FPS = 240;
  // Above any frame the show reaches: 226.9 s at 240 frames/s is 54,457 frames.
  const MAX_FRAME = 999999;
  const SHOW_SECONDS = 226.9;

  // A whole number from `low` to `high` written in decimal digits, or null.
  function wholeNumber(text, low, high) {
    if (!/^\d{1,9}$/.test(text)) {
      return null;
    }
    const value = Number(text);
    return value >= low && value <= high ? value : null;
  }

  const RULES = {
    part: { what: `a part number from 1 to ${PARTS}`, read: (text) => wholeNumber(text, 1, PARTS) },
    t: {
      what: `seconds from 0 to ${SHOW_SECONDS}, e.g. 93.5`,
      read: (text) => (/^\d{1,3}(\.\d{1,3})?$/.test(text) && Number(text) <= SHOW_SECONDS ? Number(text) : null),
    },
    fps: {
      what: `a whole number of frames per second from 1 to ${MAX_FIXED_FPS}`,
      read: (text) => (text === '' ? 0 : wholeNumber(text, 1, MAX_FIXED_FPS)),
    },
    grab: { what: `frame numbers from 0 to ${MAX_FRAME}, separated by commas`, read: frameList },
    stop: { what: `frame numbers from 0 to ${MAX_FRAME}, separated by commas`, read: frameList },
  };

  function frameList(text) {
    const frames = text.split(',').map((item) => wholeNumber(item, 0, MAX_FRAME));
    return frames.includes(null) ? null : frames;
  }

  // How a refused value is said: the value as given, then what is accepted.
  function refusal(name, text) {
    const shown = text.length > 40 ? `${text.slice(0, 40)}…` : text;
    return `${name}=${shown}: ${name} needs ${RULES[name].what}`;
  }

  // `search` and `hash` as location has them ("?fps=4&part=2", "#part=9").
  // Returns { part, t, fps, stats, grab, stop, errors }: part 1, t -1 (the
  // part's start) and fps 0 (the live clock) unless asked for, stats true for
  // a bare `fps`, empty lists, and one sentence per refused value.
  function readAddress(search, hash) {
    const wanted = { part: 1, t: -1, fps: 0, stats: false, grab: [], stop: [], errors: [] };
    const params = new URLSearchParams(search);
    const fragment = new URLSearchParams((hash || '').replace(/^#/, ''));
    for (const name of Object.keys(RULES)) {
      const given = params.getAll(name);
      if ((name === 'part' || name === 't') && given.length === 0) {
        given.push(...fragment.getAll(name));
      }
      if (given.length > 1) {
        wanted.errors.push(`${name} is given ${given.length} times: give it once`);
        continue;
      }
      if (given.length === 1) {
        const value = RULES[name].read(given[0]);
        if (value === null) {
          wanted.errors.push(refusal(name, given[0]));
        } else {
          wanted[name] = value;
          wanted.stats = wanted.stats || (name === 'fps' && value === 0);
        }
      }
    }
    return wanted;
  }

  const api = { readAddress, PARTS, MAX_FIXED_FPS, MAX_FRAME };
  if (typeof module === 'object' && module.exports) {
    module.exports = api;
  } else {
    root.kaskadeAddress = api;
  }
})(typeof window === 'object' ? window : globalThis);
