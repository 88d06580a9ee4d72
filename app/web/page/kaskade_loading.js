// The page's loading: the show's files are fetched side by side as streams,
// counted on the cover (each file's bytes of its size, a bar for all), and
// checked as they arrive, so that a damaged host is named before anything
// starts: an HTTP error, a web page (text/html) where a file should be, first
// bytes that are not of the file's kind, a length other than the one
// files.json announces (scripts/web writes it beside the page; without it, the
// length the host sends for an uncompressed file). A file that is played as it
// arrives (the soundtrack) can be asked for in two pieces: its first bytes at
// once, the rest when the page says, so that it takes no bandwidth from what
// the show's first frame needs (where the host takes byte ranges).
'use strict';

window.kaskadeLoading = (function () {
  const MEGABYTE = 1000 * 1000;
  const CHECKED_BYTES = 32;  // what the first-bytes check looks at

  const megabytes = (bytes) => (bytes / MEGABYTE).toFixed(2);

  // What index.html asked for before the page's scripts came, taken once.
  const early = (name) => {
    const asked = (window.kaskadeEarly || {})[name];
    delete (window.kaskadeEarly || {})[name];
    return asked;
  };

  async function announcedSizes() {
    try {
      const response = await (early('files.json') || fetch('files.json', { cache: 'no-cache' }));
      return response.ok ? await response.json() : {};
    } catch (error) {
      return {};
    }
  }

  // Whether `bytes` begin as a web page does: what a host sends for a file it
  // does not have when it answers every address with its index page.
  function webPage(bytes) {
    const text = String.fromCharCode(...bytes.subarray(0, 16)).trimStart().toLowerCase();
    return text.startsWith('<!doctype') || text.startsWith('<html');
  }

  // The first bytes of a file, as they read: text in quotes, else in hexadecimal.
  function preview(bytes) {
    const head = bytes.subarray(0, 16);
    return head.every((byte) => byte >= 0x20 && byte < 0x7f) ? `"${String.fromCharCode(...head)}\u2026"`
      : [...head.subarray(0, 8)].map((byte) => byte.toString(16).padStart(2, '0')).join(' ');
  }

  // Draws into `element`: a bar and a line for all the files, a line per file.
  function render(progress, element) {
    if (!element.firstChild) {
      element.append(document.createElement('progress'), document.createElement('div'),
                     document.createElement('ul'));
    }
    const [bar, whole, list] = element.children;
    bar.max = Math.max(progress.total, 1);
    bar.value = progress.loaded;
    whole.textContent = `${megabytes(progress.loaded)} of ${megabytes(progress.total)} MB, ${progress.percent} %`;
    list.textContent = '';
    for (const file of progress.files) {
      const line = document.createElement('li');
      const size = file.total > 0 ? ` of ${megabytes(file.total)}` : '';
      line.textContent = file.failed ? `${file.name}: ${file.failed}` : `${file.name}: ${megabytes(file.loaded)}${size} MB` +
        (file.done ? ' \u2713' : file.note ? ` (${file.note})` : '');
      list.appendChild(line);
    }
  }

  // Fetches `wanted` side by side, each {name, what (said in messages: "the
  // archive"), begins(bytes) (true when the first bytes are of its kind),
  // and for a file used as it arrives: onBytes(bytes) for each piece, and
  // firstPiece(size) (the bytes to ask for first, or 0 for all at once)}.
  // Returns {progress, files, more(name)}: `files` maps each name to a
  // promise of its bytes (of nothing for one with onBytes), rejected with a
  // one-line message naming the file and what arrived; more(name) asks for the
  // rest of a file whose first piece was asked for. `progress` is {files:
  // [{name, loaded, total, done, failed, note}], loaded, total, percent}, kept
  // up to date and drawn into `element` as bytes arrive; a file that failed
  // counts no more.
  function load(wanted, element) {
    const progress = {
      files: wanted.map(({ name }) => ({ name, loaded: 0, total: 0, done: false, failed: '', note: '' })),
      loaded: 0,
      total: 0,
      percent: 0,
    };
    let drawn = false;
    // The percentage waits until every file's size is known, so that it never
    // goes back while they arrive; a file that failed leaves the count.
    const changed = () => {
      const counted = progress.files.filter((file) => !file.failed);
      progress.loaded = counted.reduce((sum, file) => sum + file.loaded, 0);
      progress.total = counted.reduce((sum, file) => sum + Math.max(file.total, file.loaded), 0);
      const finished = counted.every((file) => file.done);
      const sized = counted.every((file) => file.total > 0 || file.done);
      progress.percent = finished ? 100 : sized ? Math.floor(100 * progress.loaded / progress.total) : 0;
      if (!drawn) {
        drawn = true;
        requestAnimationFrame(() => {
          drawn = false;
          render(progress, element);
        });
      }
    };
    const sizes = announcedSizes().then((announced) => {
      for (const file of progress.files) {
        if (!file.done && Number.isInteger(announced[file.name]) && announced[file.name] > 0) {
          file.total = announced[file.name];
        }
      }
      changed();
      return announced;
    });
    const files = {};
    const rests = {};
    wanted.forEach((want, index) => {
      const file = progress.files[index];
      let resolveRest;
      const rest = new Promise((resolve) => { resolveRest = resolve; });
      rests[want.name] = resolveRest;
      files[want.name] = fetchChecked(want, file, sizes, rest, changed).catch((error) => {
        file.failed = error.message.replace(/^[^:]*: /, '');
        changed();
        throw error;
      });
    });
    changed();
    return { progress, files, more: (name) => rests[name]() };
  }

  // One file fetched, counted and checked (see load); `rest` resolves when
  // the rest of a file asked for in two pieces may come.
  async function fetchChecked(want, file, sizes, rest, changed) {
    const fail = (what) => { throw new Error(`${want.name}: ${what}`); };
    const pieces = [];
    let head = new Uint8Array(0);  // the first bytes, held until they are checked
    const take = (bytes) => {
      if (head !== null) {
        const joined = new Uint8Array(head.length + bytes.length);
        joined.set(head);
        joined.set(bytes, head.length);
        if (joined.length < CHECKED_BYTES && bytes.length > 0) {
          head = joined;
          return;
        }
        head = null;
        if (webPage(joined)) {
          fail(`the host sent a web page (text/html) instead of ${want.what}`);
        }
        if (!want.begins(joined)) {
          fail(`the host sent something else than ${want.what} (it begins ${preview(joined)})`);
        }
        bytes = joined;
      }
      if (bytes.length > 0) {
        (want.onBytes || ((piece) => pieces.push(piece)))(bytes);
      }
    };
    // A file in two pieces asks for the first once its size is known.
    const split = want.firstPiece ? want.firstPiece((await sizes)[want.name] || 0) : 0;
    // The host's answer for `range` (or the whole file), failing on an error or a web page.
    const answer = async (range, wantedStatus) => {
      let response;
      try {
        response = await ((!range && early(want.name)) || fetch(want.name, range ? { headers: { Range: range } } : {}));
      } catch (error) {
        fail(`the host did not answer (${error.message})`);
      }
      if (!response.ok) {
        fail(response.status === 404 ? 'the host has no such file (HTTP 404)' : `the host answered HTTP ${response.status}`);
      }
      if (/^text\/html/i.test(response.headers.get('Content-Type') || '')) {
        response.body.cancel().catch(() => {});
        fail(`the host sent a web page (text/html) instead of ${want.what}`);
      }
      if (wantedStatus && response.status !== wantedStatus) {
        response.body.cancel().catch(() => {});
        fail(`${megabytes(file.loaded)} MB arrived, then the host sent the whole file again for the rest`);
      }
      return response;
    };
    const response = await answer(split > 0 ? `bytes=0-${split - 1}` : '');
    const encoded = (response.headers.get('Content-Encoding') || 'identity') !== 'identity';
    const length = response.status === 200 && !encoded ? Number(response.headers.get('Content-Length')) : 0;
    const expected = (await sizes)[want.name] || length;
    file.total = expected;
    changed();
    await readCounting(response, file, take, changed);
    if (response.status === 206 && file.loaded < expected) {
      file.note = 'the rest comes while it plays';
      changed();
      await rest;
      file.note = '';
      const more = await answer(`bytes=${file.loaded}-`, 206);
      await readCounting(more, file, take, changed);
    }
    take(new Uint8Array(0));
    if (expected && file.loaded !== expected) {
      fail(`${megabytes(file.loaded)} MB arrived, ${megabytes(expected)} MB expected \u2014 ` +
           (file.loaded < expected ? 'the host cut the file' : 'the host sent another file'));
    }
    file.total = file.loaded;
    file.done = true;
    changed();
    if (want.onBytes) {
      return null;
    }
    const bytes = new Uint8Array(file.loaded);
    let offset = 0;
    for (const piece of pieces) {
      bytes.set(piece, offset);
      offset += piece.length;
    }
    return bytes;
  }

  // The body of `response`, each piece counted into `file` and handed to
  // `take`; what `take` throws stops the transfer.
  async function readCounting(response, file, take, changed) {
    const reader = response.body.getReader();
    for (;;) {
      let piece;
      try {
        piece = await reader.read();
      } catch (error) {
        throw new Error(`${file.name}: the transfer broke off after ${megabytes(file.loaded)} MB (${error.message})`);
      }
      if (piece.done) {
        return;
      }
      file.loaded += piece.value.length;
      changed();
      try {
        take(piece.value);
      } catch (error) {
        reader.cancel().catch(() => {});
        throw error;
      }
    }
  }

  return { load };
})();
