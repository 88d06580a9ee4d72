// The page's loading: the show's files are fetched as streams and counted, and
// the cover shows each file's bytes of its size and a bar for all of them
// together. The sizes come from files.json, which scripts/web writes beside the
// page; without it a file counts against the length its host sends (when the
// host sends it uncompressed), and one of unknown size counts once it is in.
// A file that turns out longer or shorter than said counts as what arrived.
'use strict';

window.kaskadeLoading = (function () {
  const MEGABYTE = 1000 * 1000;

  async function announcedSizes() {
    try {
      const response = await fetch('files.json', { cache: 'no-cache' });
      return response.ok ? await response.json() : {};
    } catch (error) {
      return {};
    }
  }

  // The body of `response` as bytes, counting each chunk into `file`.
  async function readCounting(response, file, changed) {
    if (!response.body) {
      const bytes = new Uint8Array(await response.arrayBuffer());
      file.loaded = bytes.length;
      changed();
      return bytes;
    }
    const reader = response.body.getReader();
    const chunks = [];
    for (;;) {
      const { done, value } = await reader.read();
      if (done) {
        break;
      }
      chunks.push(value);
      file.loaded += value.length;
      changed();
    }
    const bytes = new Uint8Array(file.loaded);
    let offset = 0;
    for (const chunk of chunks) {
      bytes.set(chunk, offset);
      offset += chunk.length;
    }
    return bytes;
  }

  function megabytes(bytes) {
    return (bytes / MEGABYTE).toFixed(2);
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
      line.textContent = `${file.name}: ${megabytes(file.loaded)}${size} MB` +
        (file.failed ? ' (failed)' : file.done ? ' \u2713' : '');
      list.appendChild(line);
    }
  }

  // Fetches `names` side by side. Returns {progress, files}: `files` maps
  // each name to a promise of its bytes (rejected with the reason when it
  // cannot be had); `progress` is {files: [{name, loaded, total, done,
  // failed}], loaded, total, percent}, kept up to date and drawn into
  // `element` as bytes arrive.
  function load(names, element) {
    const progress = {
      files: names.map((name) => ({ name, loaded: 0, total: 0, done: false, failed: false })),
      loaded: 0,
      total: 0,
      percent: 0,
    };
    let drawn = false;
    // The percentage waits until every file's size is known, so that it never goes back.
    const changed = () => {
      progress.loaded = progress.files.reduce((sum, file) => sum + file.loaded, 0);
      progress.total = progress.files.reduce((sum, file) => sum + Math.max(file.total, file.loaded), 0);
      const finished = progress.files.every((file) => file.done || file.failed);
      const sized = progress.files.every((file) => file.total > 0 || file.done || file.failed);
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
    progress.files.forEach((file) => {
      files[file.name] = (async () => {
        try {
          const [announced, response] = await Promise.all([sizes, fetch(file.name)]);
          if (!response.ok) {
            throw new Error(`HTTP ${response.status}`);
          }
          const encoded = (response.headers.get('Content-Encoding') || 'identity') !== 'identity';
          const length = Number(response.headers.get('Content-Length'));
          if (!(file.name in announced) && !encoded && length > 0) {
            file.total = length;
          }
          changed();
          const bytes = await readCounting(response, file, changed);
          file.total = bytes.length;
          file.done = true;
          changed();
          return bytes;
        } catch (error) {
          file.failed = true;
          changed();
          throw error;
        }
      })();
    });
    changed();
    return { progress, files };
  }

  return { load };
})();
