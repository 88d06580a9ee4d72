// The page around the show: it fetches the program, the archive "3d" and the
// soundtrack with their loading progress on the cover (kaskade_loading.js),
// decodes the soundtrack with Web Audio, starts the show on a gesture (the
// browser allows sound only after one), passes keys and mouse presses on,
// plays the soundtrack whose AudioContext is the show's clock, and says on the
// page how the show ended.
//
// URL parameters, for tests and frame-exact looks (the deterministic mode),
// read by kaskade_address.js; a value it refuses is said and nothing starts:
//   part=N     starts at part N (1..13), with what the parts before leave behind
//   fps=N      the fixed-step clock at N frames/s (1..240): silent, the
//              soundtrack decoded for its levels only, started at once
//   grab=a,b   frames (the whole show's, counted from 0) read back into
//              window.kaskade.frames
//   stop=a,b   frames after which the show pauses; window.kaskade.resume() goes on
//   fault=F    a deliberate drawing mistake, to see what the frame comparison
//              makes of it (fov, ambient, colour-material, flat-vertex...): only
//              in the site built for that test (scripts/web --faults)
'use strict';

(function () {
  const ARCHIVE = '3d';
  const SOUNDTRACK = 'harbour.mp3';
  const PROGRAM = 'kaskade.js';
  const PROGRAM_CODE = 'kaskade.wasm';
  const SAMPLE_RATE = 44100;  // the show's levels are measured at this rate
  const START_AHEAD_SECONDS = 0.02;  // a start scheduled this far ahead is heard whole
  const MAX_SOUNDTRACK_FRAMES = SAMPLE_RATE * 60 * 10;  // as the show accepts

  const params = new URLSearchParams(location.search);
  // kaskade_address.js reads what the address asks for; a refused value starts nothing.
  const address = window.kaskadeAddress.readAddress(location.search, location.hash);
  const fixedFps = address.fps;
  const firstPart = address.part;

  const byId = (id) => document.getElementById(id);
  const canvas = byId('canvas');
  const stage = byId('stage');
  const cover = byId('cover');
  const startButton = byId('start');
  const statusLine = byId('status');
  const notice = byId('notice');
  let controls = null;  // the player's bar (kaskade_controls.js), once the page is set up
  const failure = byId('failure');
  const NOTICE_MILLIS = 8000;

  // What the page knows, for tests and the curious: window.kaskade.
  const kaskade = {
    state: 'loading',  // loading, ready, starting, playing, paused, ended, failed
    soundtrack: '',    // 'decoded', or why not
    frames: {},        // grabbed frames by index: {width, height, rgba (rows bottom up)}
    pausedAt: -1,
    endLine: '',
    messages: [],      // what the show wrote to standard error
    loading: null,     // the files' loading progress (kaskade_loading.js)
    resume() {
      if (kaskade.state === 'paused') {
        kaskade.state = 'playing';
        Module._kaskade_resume();
      }
    },
    // Per part (1..13): frames, glBegin calls, WebGL draw calls, vertices, ms
    // from its first to its last frame, vertex bytes sent to WebGL.
    partCounts() {
      const parts = [];
      for (let part = 1; part <= 13; ++part) {
        const field = (i) => Module._kaskade_part_count(part, i);
        parts.push({ part, frames: field(0), primitives: field(1), drawCalls: field(2), vertices: field(3),
                     millis: field(4), streamedBytes: field(5) });
      }
      return parts;
    },
  };
  window.kaskade = kaskade;

  // A note: on the status line, and for a while over the stage, where a
  // viewer in fullscreen looks.
  let noticeTimer = 0;
  function say(text) {
    statusLine.textContent = text;
    notice.textContent = text;
    notice.hidden = text === '';
    clearTimeout(noticeTimer);
    noticeTimer = setTimeout(() => { notice.hidden = true; }, NOTICE_MILLIS);
  }

  // The show cannot go on: the report over the stage, out of fullscreen, where
  // it stays (and on the status line).
  function fail(text) {
    kaskade.state = 'failed';
    cover.classList.add('hidden');
    if (controls) {
      controls.stop();
    }
    say(text);
    notice.hidden = true;
    failure.querySelector('pre').textContent = text;
    failure.hidden = false;
    if (document.fullscreenElement) {
      document.exitFullscreen().catch(() => {});
    }
  }

  // The soundtrack's player; what its context plays out now is the show's clock.
  const audio = {
    context: null,
    buffer: null,
    source: null,
    gain: null,
    started: null,  // the last start: the context's time (ms) it is heard from, the song's position (ms) there
    last: 0,
    // The context's time (ms) of the sample the output device plays now: the
    // output timestamp, carried on with the page's clock between the
    // context's steps; else the context's time less the latencies it reports.
    // Never ahead of what the context has rendered, never going back.
    heardMillis() {
      const context = audio.context;
      const rendered = context.currentTime * 1000;
      let heard = rendered - ((context.outputLatency || 0) + (context.baseLatency || 0)) * 1000;
      const stamp = context.getOutputTimestamp ? context.getOutputTimestamp() : null;
      if (stamp && stamp.performanceTime > 0 && stamp.contextTime > 0) {
        heard = stamp.contextTime * 1000;
        if (context.state === 'running') {
          heard += performance.now() - stamp.performanceTime;
        }
      }
      audio.last = Math.max(audio.last, Math.min(heard, rendered));
      return audio.last;
    },
    // Plays the song from `offsetSeconds`, a little ahead so that the start
    // is not cut; returns the context's time (ms) at which it starts.
    play(loop, offsetSeconds) {
      audio.stop();
      const context = audio.context;
      if (!audio.gain) {
        audio.gain = context.createGain();
        audio.gain.connect(context.destination);
      }
      const source = context.createBufferSource();
      source.buffer = audio.buffer;
      source.loop = loop;
      source.connect(audio.gain);
      const when = context.currentTime + START_AHEAD_SECONDS;
      source.start(when, offsetSeconds);
      audio.source = source;
      audio.started = { contextMillis: when * 1000, offsetMillis: offsetSeconds * 1000 };
      return when * 1000;
    },
    stop() {
      if (audio.source) {
        audio.source.stop();
        audio.source.disconnect();
        audio.source = null;
      }
    },
    // A pause stops the context itself: its time stands, and what it plays.
    pause(paused) {
      (paused ? audio.context.suspend() : audio.context.resume()).catch(() => {});
    },
    setGain(gain) {
      if (audio.gain) {
        audio.gain.gain.value = gain;
      }
    },
  };

  const page = {
    frameGrabbed(index, rgba, width, height) {
      kaskade.frames[index] = { width, height, rgba };
    },
    paused(index) {
      kaskade.state = 'paused';
      kaskade.pausedAt = index;
    },
    ended(line) {
      kaskade.state = 'ended';
      kaskade.endLine = line;
      controls.stop();
      say(line);
      if (document.fullscreenElement) {
        document.exitFullscreen();
      }
    },
    failed() {
      fail(kaskade.messages.join('\n') || 'The show stopped.');
    },
    say,
    holdPicture() {
      controls.holdPicture();
    },
    toggleFullscreen,
  };

  const Module = {
    canvas,
    print(text) {
      console.log(text);
    },
    printErr(text) {
      kaskade.messages.push(text);
      console.error(text);
    },
    onAbort(what) {
      fail('The show could not run: ' + what);
    },
    onRuntimeInitialized() {
      runtimeReady = true;
      whenLoaded();
    },
    kaskadeAudio: audio,
    kaskadePage: page,
  };
  window.Module = Module;

  let runtimeReady = false;
  let archive = null;      // bytes of "3d"
  let decoded = false;     // the soundtrack was handed to the show
  let contentLoaded = false;

  // Decoded at 44,100 Hz whatever the output's rate, so that the levels are those of the desktop.
  async function decodeSoundtrack(bytes) {
    const decoder = new OfflineAudioContext({ numberOfChannels: 2, length: 1, sampleRate: SAMPLE_RATE });
    return decoder.decodeAudioData(bytes.buffer);
  }

  async function loadContent(files) {
    const [archiveResult, songResult] = await Promise.allSettled([files[ARCHIVE], files[SOUNDTRACK]]);
    if (archiveResult.status === 'rejected') {
      fail(`The archive "${ARCHIVE}" could not be loaded (${archiveResult.reason.message}): ` +
           'the show needs it beside this page.');
      return;
    }
    archive = archiveResult.value;
    startButton.textContent = 'decoding the soundtrack…';
    if (songResult.status === 'rejected') {
      kaskade.soundtrack = `${SOUNDTRACK} could not be loaded (${songResult.reason.message})`;
    } else {
      try {
        audio.buffer = await decodeSoundtrack(songResult.value);
        kaskade.soundtrack = audio.buffer.length > MAX_SOUNDTRACK_FRAMES
          ? `${SOUNDTRACK} is longer than ten minutes` : 'decoded';
      } catch (error) {
        kaskade.soundtrack = `${SOUNDTRACK} does not decode in this browser`;
      }
    }
    if (kaskade.soundtrack !== 'decoded') {
      audio.buffer = null;
      say(`${kaskade.soundtrack}: the show runs without sound. ` +
          '(A tracker module soundtrack plays only in the desktop build.)');
    }
    contentLoaded = true;
    whenLoaded();
  }

  // The decoded samples go to the show as 16-bit stereo, for its level meter.
  function handOverSoundtrack(buffer) {
    const frames = buffer.length;
    const pointer = Module.ccall('kaskade_soundtrack_buffer', 'number', ['string', 'number'], [SOUNDTRACK, frames]);
    if (!pointer) {
      return false;
    }
    const left = buffer.getChannelData(0);
    const right = buffer.numberOfChannels > 1 ? buffer.getChannelData(1) : left;
    const samples = new Int16Array(Module.HEAP16.buffer, pointer, frames * 2);
    const toSample = (x) => Math.max(-32768, Math.min(32767, Math.round(x * 32768)));
    for (let i = 0; i < frames; ++i) {
      samples[2 * i] = toSample(left[i]);
      samples[2 * i + 1] = toSample(right[i]);
    }
    return true;
  }

  function whenLoaded() {
    if (!runtimeReady || !contentLoaded || kaskade.state !== 'loading') {
      return;
    }
    Module.FS.writeFile(ARCHIVE, archive);
    archive = null;
    decoded = audio.buffer !== null && handOverSoundtrack(audio.buffer);
    for (const index of address.grab) {
      Module._kaskade_grab_frame(index);
    }
    for (const index of address.stop) {
      Module._kaskade_pause_at_frame(index);
    }
    const fault = params.get('fault');
    if (fault !== null && !(Module._kaskade_fault && Module.ccall('kaskade_fault', 'number', ['string'], [fault]))) {
      fail(Module._kaskade_fault ? `?fault=${fault} names no deliberate mistake.`
                                 : '?fault= exists only in the site built for tests (scripts/web --faults).');
      return;
    }
    kaskade.state = 'ready';
    if (fixedFps) {
      start();
      return;
    }
    cover.classList.add('loaded');
    startButton.disabled = false;
    startButton.textContent = 'start';
    startButton.focus();
    document.addEventListener('keydown', startOnGesture);
    stage.addEventListener('click', startOnGesture);
  }

  function startOnGesture(event) {
    // Keys the browser does not count as a gesture (it would keep the sound off) start nothing.
    if (event.type === 'keydown' && ['Escape', 'Shift', 'Control', 'Alt', 'Meta'].includes(event.key)) {
      return;
    }
    event.preventDefault();
    start();
  }

  // The AudioContext, made within the gesture. False, and said on the page,
  // when the browser gives no running output within a second.
  async function openAudioOutput() {
    try {
      audio.context = new AudioContext({ sampleRate: SAMPLE_RATE });
      await Promise.race([audio.context.resume(), new Promise((resolve) => setTimeout(resolve, 1000))]);
    } catch (error) {
      audio.context = null;
    }
    if (audio.context && audio.context.state === 'running') {
      return true;
    }
    say('The browser gives no sound output: the show runs without sound.');
    return false;
  }

  async function start() {
    if (kaskade.state !== 'ready') {
      return;
    }
    kaskade.state = 'starting';
    document.removeEventListener('keydown', startOnGesture);
    stage.removeEventListener('click', startOnGesture);
    cover.classList.add('hidden');
    // On the fixed-step clock the decoded soundtrack gives the levels only.
    const withSound = decoded && !fixedFps && await openAudioOutput();
    if (!withSound) {
      audio.buffer = null;
    }
    kaskade.state = 'playing';
    let result = 0;
    try {
      result = Module.ccall('kaskade_start', 'number', ['number', 'number', 'number'],
                            [fixedFps, (fixedFps ? decoded : withSound) ? 1 : 0, firstPart]);
    } catch (error) {
      // A fatal report during the start (it said why on the console).
      page.failed();
      return;
    }
    if (result !== 0) {
      fail('This browser gives no WebGL 2 context: the show cannot be drawn.');
      return;
    }
    controls.start();
    // Not for the event that started the show.
    setTimeout(() => {
      document.addEventListener('keydown', onKey);
      stage.addEventListener('pointerdown', onPointerDown);
    }, 0);
  }

  // Keys the show takes by GLUT's codes for special keys (app/shell.h).
  const SPECIAL_KEYS = { ArrowLeft: 100, ArrowRight: 102, PageUp: 104, PageDown: 105, Home: 106 };

  function onKey(event) {
    // A focused slider takes its own arrows and Home.
    if (kaskade.state !== 'playing' || event.target instanceof HTMLInputElement || event.ctrlKey ||
        event.altKey || event.metaKey) {
      return;
    }
    if (event.key in SPECIAL_KEYS) {
      event.preventDefault();
      Module._kaskade_special_key(SPECIAL_KEYS[event.key]);
      return;
    }
    const key = event.key === 'Escape' ? 27 : event.key.length === 1 ? event.key.charCodeAt(0) : -1;
    if (key >= 0 && key < 256) {
      if (key === 32) {
        event.preventDefault();  // no scrolling
      }
      Module._kaskade_key(key);
    }
  }

  // A mouse button ends the show, as on the desktop, except on the control
  // bar; a tap (touch or pen) shows the bar.
  function onPointerDown(event) {
    if (kaskade.state !== 'playing' || controls.contains(event.target)) {
      return;
    }
    if (event.pointerType === 'mouse') {
      Module._kaskade_mouse_down(event.button);
    } else {
      controls.tapped();
    }
  }

  function toggleFullscreen() {
    if (document.fullscreenElement) {
      document.exitFullscreen().catch(() => {});
    } else {
      stage.requestFullscreen().catch((error) => say(`Fullscreen refused: ${error.message}`));
    }
  }

  // Fullscreen: the stage takes the screen, the canvas the largest 4:3 frame
  // that fits, drawn at the screen's own pixels.
  function fitCanvas() {
    if (document.fullscreenElement === stage) {
      const width = Math.min(window.innerWidth, window.innerHeight * 4 / 3);
      const height = width * 3 / 4;
      stage.style.setProperty('--frame-width', `${width}px`);
      stage.style.setProperty('--frame-height', `${height}px`);
      const ratio = window.devicePixelRatio || 1;
      canvas.width = Math.round(width * ratio);
      canvas.height = Math.round(height * ratio);
    } else {
      canvas.width = 640;
      canvas.height = 480;
    }
  }

  byId('fullscreen').addEventListener('click', () => {
    stage.requestFullscreen().catch((error) => say(`Fullscreen refused: ${error.message}`));
  });
  document.addEventListener('fullscreenchange', fitCanvas);
  window.addEventListener('resize', () => {
    if (document.fullscreenElement === stage) {
      fitCanvas();
    }
  });

  controls = window.kaskadeControls.makeControls({
    stage, canvas, bar: byId('bar'), play: byId('play'), time: byId('time'), timeline: byId('timeline'),
    played: byId('played'), mute: byId('mute'), volume: byId('volume'), fullscreen: byId('bar-fullscreen'),
    held: byId('held'),
  }, Module, toggleFullscreen);

  if (address.errors.length > 0) {
    fail(['This address asks for what the show does not take:', ...address.errors].join('\n'));
    return;
  }
  // The program runs once it and its WebAssembly code are in: the code is
  // handed over as bytes, so that the loading progress counts it.
  async function loadProgram(files) {
    let source;
    try {
      const [program, code] = await Promise.all([files[PROGRAM], files[PROGRAM_CODE]]);
      Module.wasmBinary = code;
      source = new TextDecoder().decode(program);
    } catch (error) {
      fail(`The show's program could not be loaded (${error.message}).`);
      return;
    }
    const script = document.createElement('script');
    script.text = `${source}\n//# sourceURL=${PROGRAM}`;
    document.body.appendChild(script);
  }

  const loading = window.kaskadeLoading.load([PROGRAM, PROGRAM_CODE, ARCHIVE, SOUNDTRACK], byId('loading'));
  kaskade.loading = loading.progress;
  loadContent(loading.files);
  loadProgram(loading.files);
})();
