// The page around the show: it fetches the program, the archive "3d" and the
// soundtrack, checked as they arrive, with their progress on the cover
// (kaskade_loading.js); decodes the soundtrack while it arrives
// (kaskade_soundtrack.js); offers the start once the program, the archive and
// the first seconds of the music are in, and starts on a gesture (the browser
// allows sound only after one); passes keys and mouse presses on; records
// clips (kaskade_clip.js); and says on the page how the show ended.
//
// URL parameters, for tests and frame-exact looks (the deterministic mode),
// read by kaskade_address.js; a value it refuses is said and nothing starts:
//   part=N     starts at part N (1..13), with what the parts before leave behind
//   t=S        starts S seconds into the show (also #t=S, the address the
//              player keeps; #part=N too), as the desktop's --start
//   fps=N      the fixed-step clock at N frames/s (1..240): silent, the
//              soundtrack decoded for its levels only, started at once, drawn
//              at 640 x 480; a bare `fps` shows the frame rate and the size
//              the picture is drawn at instead (kaskade_resolution.js)
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
  const START_SECONDS = 2;         // of music decoded from where the show starts, before it may
  const FIRST_PIECE_SECONDS = 6;  // of music asked for before the rest, by the show's length
  const REST_AFTER_MILLIS = 3000;  // after the start is offered, the rest of the music comes anyway
  const NOTICE_MILLIS = 8000;

  const params = new URLSearchParams(location.search);
  // kaskade_address.js reads what the address asks for; a refused value starts nothing.
  const address = window.kaskadeAddress.readAddress(location.search, location.hash);
  const fixedFps = address.fps;
  let firstPart = address.part;
  let firstSeconds = address.t;  // -1: the start of firstPart
  const { PART_ENDS, partStart } = window.kaskadeControls;
  const SHOW_SECONDS = PART_ENDS[PART_ENDS.length - 1] / 10;
  const startSeconds = () => (firstSeconds >= 0 ? firstSeconds : partStart(firstPart) / 10);

  const byId = (id) => document.getElementById(id);
  const canvas = byId('canvas');
  const stage = byId('stage');
  const cover = byId('cover');
  const startButton = byId('start');
  const statusLine = byId('status');
  const notice = byId('notice');
  const failure = byId('failure');
  let controls = null;  // the player's bar (kaskade_controls.js), once the page is set up

  // What the page knows, for tests and the curious: window.kaskade.
  const kaskade = {
    state: 'loading',  // loading, ready, starting, playing, paused, ended, failed
    soundtrack: 'loading',  // 'streaming' once it can play, 'decoded' once all of it is, else why not
    frames: {},        // grabbed frames by index: {width, height, rgba (rows bottom up)}
    pausedAt: -1,
    endLine: '',
    messages: [],      // what the show wrote to standard error
    loading: null,     // the files' loading progress (kaskade_loading.js)
    resolution: null,  // the drawing size chosen (kaskade_resolution.js)
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
    if (kaskade.state === 'failed') {
      return;
    }
    kaskade.state = 'failed';
    cover.classList.add('hidden');
    if (controls) {
      controls.stop();
      clip.stop();
    }
    say(text);
    notice.hidden = true;
    failure.querySelector('pre').textContent = text;
    failure.hidden = false;
    if (document.fullscreenElement) {
      document.exitFullscreen().catch(() => {});
    }
  }

  // The soundtrack: decoded as it arrives, played by its own player, whose
  // output is the show's clock; the decoded samples go to the show for its levels.
  const song = window.kaskadeSoundtrack.makeSong(() => songMovedOn());
  const player = window.kaskadeSoundtrack.makePlayer(song);
  let handOver = null;  // once the show's runtime is up

  function songMovedOn() {
    if (song.failed) {
      soundtrackLost(`${SOUNDTRACK} ${song.failed}`);
      return;
    }
    if (handOver && !handOver()) {
      soundtrackLost(`${SOUNDTRACK} is longer than ten minutes`);
      return;
    }
    if (song.brokeOff && kaskade.soundtrack !== 'decoded') {
      say(`${SOUNDTRACK} ${song.brokeOff}: the song ends there.`);
    }
    if (['loading', 'streaming'].includes(kaskade.soundtrack) && song.total > 0) {
      kaskade.soundtrack = song.complete ? 'decoded' : 'streaming';
    }
    player.pump();
    controls.songLoaded(song.total > 0 ? song.decoded / song.total : 0);
    whenLoaded();
  }

  // A soundtrack that cannot be played: said plainly, and the show runs without sound.
  function soundtrackLost(reason, remark = '') {
    if (['decoded', 'streaming', 'loading'].includes(kaskade.soundtrack) && kaskade.state !== 'failed') {
      kaskade.soundtrack = reason;
      say(`${reason}: the show runs without sound.${remark}`);
    }
    whenLoaded();
  }

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
      clip.stop();
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
    // The size to draw the next frame at, packed as width * 65536 + height.
    drawingSize() {
      const { width, height } = resolution.sizeForFrame();
      return width * 65536 + height;
    },
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
      handOver = window.kaskadeSoundtrack.makeHandOver(song, SOUNDTRACK, Module);
      songMovedOn();
    },
    kaskadeAudio: player,
    kaskadePage: page,
  };
  window.Module = Module;

  let archive = null;  // bytes of "3d", until they go into the show's file system
  let prepared = false;

  // Once the program runs and the archive is in, the show is prepared (the
  // WebGL context, every part met once), so that the start has only the
  // sound to wait for; it is offered once the soundtrack can play from where
  // the show starts (or cannot be had at all). On the fixed-step clock, all
  // of the soundtrack is decoded first, and the show starts at once.
  function whenLoaded() {
    if (kaskade.state !== 'loading' || !handOver || !(archive || prepared)) {
      return;
    }
    if (!prepared && !prepare()) {
      return;
    }
    const soundReady = !['loading', 'streaming', 'decoded'].includes(kaskade.soundtrack) ||
      (fixedFps ? song.complete : song.playableFrom(startSeconds(), START_SECONDS));
    if (!soundReady) {
      // A first piece of the music that does not reach far enough (a song shorter than the show's length).
      if (loading.progress.files.find((file) => file.name === SOUNDTRACK).note) {
        loading.more(SOUNDTRACK);
      }
      return;
    }
    kaskade.state = 'ready';
    setTimeout(() => loading.more(SOUNDTRACK), REST_AFTER_MILLIS);
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

  function prepare() {
    Module.FS.writeFile(ARCHIVE, archive);
    archive = null;
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
      return false;
    }
    let result = 0;
    try {
      result = Module.ccall('kaskade_prepare', 'number', ['number'], [fixedFps]);
    } catch (error) {
      // A fatal report (a damaged archive; it said why on the console).
      page.failed();
      return false;
    }
    if (result !== 0) {
      fail('This browser gives no WebGL 2 context: the show cannot be drawn.');
      return false;
    }
    prepared = true;
    return true;
  }

  function startOnGesture(event) {
    // Keys the browser does not count as a gesture (it would keep the sound off) start nothing.
    if (event.type === 'keydown' && ['Escape', 'Shift', 'Control', 'Alt', 'Meta', 'Tab'].includes(event.key)) {
      return;
    }
    event.preventDefault();
    start();
  }

  async function start() {
    if (kaskade.state !== 'ready') {
      return;
    }
    kaskade.state = 'starting';
    document.removeEventListener('keydown', startOnGesture);
    stage.removeEventListener('click', startOnGesture);
    cover.classList.add('hidden');
    const songUsable = ['streaming', 'decoded'].includes(kaskade.soundtrack);
    // On the fixed-step clock the decoded soundtrack gives the levels only.
    const withSound = songUsable && !fixedFps && await player.open();
    if (songUsable && !fixedFps && !withSound) {
      say('The browser gives no sound output: the show runs without sound.');
    }
    kaskade.state = 'playing';
    try {
      Module.ccall('kaskade_start', null, ['number', 'number', 'number', 'number'],
                   [fixedFps, (fixedFps ? songUsable : withSound) ? 1 : 0, firstPart, firstSeconds]);
    } catch (error) {
      // A fatal report during the start (it said why on the console).
      page.failed();
      return;
    }
    controls.start();
    // The rest of the music comes once the first frame is drawn (or a while
    // after the start was offered), so as to take nothing from what that frame needs.
    requestAnimationFrame(() => loading.more(SOUNDTRACK));
    // Not for the event that started the show.
    setTimeout(() => {
      document.addEventListener('keydown', onKey);
      stage.addEventListener('pointerdown', onPointerDown);
    }, 0);
  }

  // Keys the show takes by GLUT's codes for special keys (app/shell.h); Left
  // and Right with Shift seek, as on the desktop.
  const SPECIAL_KEYS = { ArrowLeft: 100, ArrowUp: 101, ArrowRight: 102, ArrowDown: 103, PageUp: 104, PageDown: 105,
                         Home: 106 };
  const SPECIAL_KEY_SHIFT = 0x1000;

  function onKey(event) {
    // A slider reached with the keyboard (Tab) takes its own arrows and Home.
    if (kaskade.state !== 'playing' || event.target instanceof HTMLInputElement || event.ctrlKey ||
        event.altKey || event.metaKey) {
      return;
    }
    if (event.key in SPECIAL_KEYS) {
      event.preventDefault();
      const arrow = event.key === 'ArrowLeft' || event.key === 'ArrowRight';
      Module._kaskade_special_key(SPECIAL_KEYS[event.key] + (arrow && event.shiftKey ? SPECIAL_KEY_SHIFT : 0));
      return;
    }
    if (event.key === 'c') {
      toggleClip();
      return;
    }
    const key = event.key === 'Escape' ? 27 : event.key.length === 1 ? event.key.charCodeAt(0) : -1;
    if (key >= 0 && key < 256) {
      if (key === 32) {
        event.preventDefault();  // no scrolling, no button pressed
      }
      Module._kaskade_key(key);
    }
  }

  // A mouse button ends the show, as on the desktop, except on the controls;
  // a tap (touch or pen) shows the bar.
  function onPointerDown(event) {
    if (kaskade.state !== 'playing' || controls.contains(event.target) || event.target.closest('#controls')) {
      return;
    }
    if (event.pointerType === 'mouse') {
      Module._kaskade_mouse_down(event.button);
    } else {
      controls.tapped();
    }
  }

  // A part or a moment asked for in the open page's address (#part=N, #t=S)
  // is gone to, as a link opens it; before the start, the show starts there.
  window.addEventListener('hashchange', (event) => {
    // The address the viewer gave, not what the bar may have put there since.
    const hash = new URL(event.newURL).hash;
    const wanted = window.kaskadeAddress.readAddress('', hash);
    if (wanted.errors.length > 0) {
      say(wanted.errors.join('\n'));
      return;
    }
    const moment = /(^#|&)t=/.test(hash);
    if (!moment && !/part=/.test(hash)) {
      return;
    }
    if (['playing', 'paused'].includes(kaskade.state)) {
      if (moment) {
        Module._kaskade_seek_to(wanted.t);
      } else {
        Module._kaskade_jump_to(wanted.part);
      }
    } else if (['loading', 'ready'].includes(kaskade.state)) {
      [firstPart, firstSeconds] = [wanted.part, wanted.t];
    }
  });

  function toggleFullscreen() {
    if (document.fullscreenElement) {
      document.exitFullscreen().catch(() => {});
    } else {
      stage.requestFullscreen().catch((error) => say(`Fullscreen refused: ${error.message}`));
    }
  }
  byId('fullscreen').addEventListener('click', (event) => {
    toggleFullscreen();
    event.currentTarget.blur();
  });
  // The fullscreen button and the status line, below or beside the picture
  // where the window leaves room for them (the bar has its own fullscreen
  // button, notes show over the picture too).
  const placeControls = () => {
    const below = (innerHeight - (innerWidth * 3) / 4) / 2;
    const beside = (innerWidth - (innerHeight * 4) / 3) / 2;
    byId('controls').hidden = below < 56 && beside < 100;
  };
  placeControls();
  window.addEventListener('resize', placeControls);

  const resolution = window.kaskadeResolution.makeResolution(byId('picture'), fixedFps !== 0,
                                                              address.stats ? byId('stats') : null);
  kaskade.resolution = resolution.chosen;

  // A clip starts where the show stands and is named after it.
  const clip = window.kaskadeClip.makeClip(canvas, player, say, (on) => controls.recording(on));
  function toggleClip() {
    if (kaskade.state === 'playing') {
      clip.toggle(window.kaskadeClip.clipName(Module._kaskade_player_state(3), Module._kaskade_player_state(5)));
    }
  }

  controls = window.kaskadeControls.makeControls({
    stage, canvas, bar: byId('bar'), play: byId('play'), time: byId('time'), timeline: byId('timeline'),
    played: byId('played'), loaded: byId('loaded'), held: byId('held'), mute: byId('mute'),
    volume: byId('volume'), clip: byId('clip'), fullscreen: byId('bar-fullscreen'), heldPart: byId('held-part'),
  }, Module, { toggleFullscreen, toggleClip });

  if (address.errors.length > 0) {
    fail(['This address asks for what the show does not take:', ...address.errors].join('\n'));
    return;
  }

  // The checks on what the host sends: each file's first bytes.
  const isArchive = (bytes) => {
    const zero = bytes.indexOf(0);
    return zero >= 1 && zero <= 19 && zero + 5 <= bytes.length &&
      bytes.subarray(0, zero).every((byte) => byte >= 0x20 && byte < 0x7f);
  };
  const isWasm = (bytes) => bytes[0] === 0 && bytes[1] === 0x61 && bytes[2] === 0x73 && bytes[3] === 0x6d;
  const loading = window.kaskadeLoading.load([
    { name: PROGRAM, what: "the show's program", begins: () => true },
    { name: PROGRAM_CODE, what: "the show's WebAssembly code", begins: isWasm },
    { name: ARCHIVE, what: 'the archive', begins: isArchive },
    {
      name: SOUNDTRACK,
      what: 'an MP3 soundtrack',
      begins: window.kaskadeMp3Frames.looksLikeMp3,
      onBytes: (bytes) => song.push(bytes),
      // Live, the music up to where the show starts and some seconds more comes first (the
      // file's share by the show's length), the rest once the first frame is drawn.
      firstPiece: fixedFps ? null
        : (size) => Math.ceil(size * Math.min(1, (startSeconds() + FIRST_PIECE_SECONDS) / SHOW_SECONDS)),
    },
  ], byId('loading'));
  kaskade.loading = loading.progress;

  // A soundtrack cut short plays as far as it came.
  loading.files[SOUNDTRACK].then(() => song.end(), (error) => {
    song.end();
    if (kaskade.soundtrack === 'streaming') {
      say(`${error.message}: the song ends there.`);
    } else {
      soundtrackLost(error.message, /something else than/.test(error.message)
        ? ' (A tracker module soundtrack plays only in the desktop build.)' : '');
    }
  });
  loading.files[ARCHIVE].then((bytes) => {
    archive = bytes;
    whenLoaded();
  }, (error) => fail(error.message));

  // The program runs once it and its WebAssembly code are in: the code is
  // handed over as bytes, so that the loading progress counts it.
  Promise.all([loading.files[PROGRAM], loading.files[PROGRAM_CODE]]).then(([program, code]) => {
    if (kaskade.state === 'failed') {
      return;
    }
    Module.wasmBinary = code;
    const script = document.createElement('script');
    script.text = `${new TextDecoder().decode(program)}\n//# sourceURL=${PROGRAM}`;
    document.body.appendChild(script);
  }, (error) => fail(error.message));
})();
