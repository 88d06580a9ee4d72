// The soundtrack in the browser, played while it arrives: the MP3's bytes are
// cut into frames (kaskade_mp3_frames.js) and decoded a few seconds at a time
// with Web Audio's decodeAudioData, each piece with the frames before it for
// the decoder to warm up on (MP3's bit reservoir reaches up to 511 bytes back,
// its filter bank one frame), whose output is left out: the pieces join into
// exactly the samples a decoding of the whole file gives. The first piece
// holds the Info frame, so that the browser leaves out the encoder's delay;
// how many samples it left out places every later piece.
//
// The player schedules the decoded pieces back to back on the AudioContext,
// each at its sample's time, so the song is seamless, loops at its end, and
// starts anywhere that has arrived. What is heard at any moment is read from
// that plan: the song stands at a start, a gap (a piece that came late) or
// its end until the sound goes on, and the show's clock with it.
'use strict';

window.kaskadeSoundtrack = (function () {
  const RATE = 44100;           // the show's levels are measured at this rate, and it plays at it
  // Pieces of 1, 2, 4, then 8 seconds: short ones first, so that the show can start on them.
  const pieceSeconds = (index) => Math.min(8, 2 ** index);
  const WARM_UP_BYTES = 1200;   // the reservoir's reach and more than a frame
  const START_AHEAD_SECONDS = 0.02;  // a start scheduled this far ahead is heard whole
  const PLAN_AHEAD_SECONDS = 1;      // how far ahead of the context's time pieces are scheduled
  const MAX_FRAMES = RATE * 60 * 10;  // as the show accepts

  // The song decoded as it arrives. push(bytes) and end() feed it; onChange()
  // is called whenever more is decoded or it failed. `segments` are
  // {start, buffer} (song frames at RATE, an AudioBuffer), in order and
  // joined; `decoded` the frames decoded from the start; `total` the song's
  // length in frames (from the Info tag; without one, known once the end is
  // decoded; 0 while unknown); `complete` once every frame is in; `failed`
  // why it cannot be played ('' while it can); `brokeOff` why it ends before
  // its end (a piece that does not decode: the song ends there).
  function makeSong(onChange) {
    const song = { segments: [], decoded: 0, total: 0, complete: false, failed: '', brokeOff: '' };
    const reader = window.kaskadeMp3Frames.makeFrameReader();
    const decoder = new OfflineAudioContext({ numberOfChannels: 2, length: 1, sampleRate: RATE });
    const waiting = [];   // frames not yet decoded
    let warm = [];        // the last frames decoded, for the next piece to warm up on
    let framesDecoded = 0;  // MP3 frames decoded so far
    let pieces = 0;
    let skipped = 0;      // samples the decoder left out at the start (the encoder's delay)
    let ended = false;
    let busy = Promise.resolve();

    const scale = () => RATE / reader.first.sampleRate;
    const frameSamples = () => reader.first.samples * scale();

    // The song's length by its Info tag (less the delay and padding, when the decoder left them out); 0 without one.
    function taggedTotal() {
      const info = reader.info;
      if (!info || info.frames === 0) {
        return 0;
      }
      const trimmed = skipped > 0 ? info.delay + info.padding : 0;
      return Math.round((info.frames * reader.first.samples - trimmed) * scale());
    }

    async function decodePiece(frames, last) {
      const first = framesDecoded === 0;
      const lead = first ? (reader.infoBytes ? [reader.infoBytes] : []) : warm;
      const bytes = new Uint8Array([...lead, ...frames].reduce((sum, frame) => sum + frame.length, 0));
      let at = 0;
      for (const frame of [...lead, ...frames]) {
        bytes.set(frame, at);
        at += frame.length;
      }
      const buffer = await decoder.decodeAudioData(bytes.buffer);
      let from = 0;
      if (first) {
        skipped = reader.infoBytes ? Math.max(0, Math.round(frames.length * frameSamples()) - buffer.length) : 0;
        song.total = taggedTotal();
        if (song.total > MAX_FRAMES) {
          throw new Error('is longer than ten minutes');
        }
      } else {
        // The piece's sample j is the song's (framesDecoded - warm) * samples + j - skipped.
        from = Math.round(song.decoded + skipped - (framesDecoded - warm.length) * frameSamples());
      }
      framesDecoded += frames.length;
      // The frames that reach back WARM_UP_BYTES, and one more.
      let keep = 0;
      for (let reach = 0; keep < frames.length && reach < WARM_UP_BYTES; ++keep) {
        reach += frames[frames.length - 1 - keep].length;
      }
      warm = frames.slice(-Math.min(frames.length, keep + 1));
      let length = Math.max(0, buffer.length - from);
      if (song.total > 0) {
        length = Math.min(length, Math.max(0, song.total - song.decoded));
      }
      if (length > 0) {
        const piece = new AudioBuffer({ numberOfChannels: 2, length, sampleRate: RATE });
        for (let channel = 0; channel < 2; ++channel) {
          piece.copyToChannel(buffer.getChannelData(Math.min(channel, buffer.numberOfChannels - 1))
            .subarray(from, from + length), channel);
        }
        song.segments.push({ start: song.decoded, buffer: piece });
        song.decoded += length;
      }
      if (last) {
        song.total = song.decoded;
        song.complete = true;
        if (song.total > MAX_FRAMES) {
          throw new Error('is longer than ten minutes');
        }
      }
    }

    // Decodes what has arrived, a piece at a time, in order.
    function decodeWaiting() {
      busy = busy.then(async () => {
        while (!song.failed && !song.complete && waiting.length > 0) {
          const wanted = Math.ceil((pieceSeconds(pieces) * RATE) / frameSamples());
          if (waiting.length < wanted && !ended) {
            return;
          }
          const frames = waiting.splice(0, wanted);
          ++pieces;
          try {
            await decodePiece(frames, ended && waiting.length === 0);
          } catch (error) {
            const why = error instanceof DOMException || !error.message ? 'does not decode in this browser' : error.message;
            if (song.decoded === 0 || song.total > MAX_FRAMES) {
              song.failed = why;
            } else {
              // A song that breaks off plays as far as it decodes.
              song.brokeOff = `does not decode past ${(song.decoded / RATE).toFixed(1)} s`;
              song.total = song.decoded;
              song.complete = true;
              waiting.length = 0;
            }
          }
          onChange();
        }
        if (ended && !song.complete && !song.failed) {
          song.failed = song.decoded > 0 ? '' : 'holds no MP3 frames';
          song.total = song.decoded;
          song.complete = song.decoded > 0;
          onChange();
        }
      });
    }

    song.push = (bytes) => {
      waiting.push(...reader.push(bytes, false));
      decodeWaiting();
    };
    song.end = () => {
      waiting.push(...reader.push(new Uint8Array(0), true));
      ended = true;
      decodeWaiting();
    };
    // True once `seconds` of the song from `fromSeconds` on are decoded (or all of it).
    song.playableFrom = (fromSeconds, seconds) => song.complete ||
      (song.total > 0 && song.decoded >= Math.min(song.total, Math.round((fromSeconds + seconds) * RATE)));
    song.segmentAt = (frame) => song.segments.find((segment) => frame >= segment.start &&
                                                    frame < segment.start + segment.buffer.length) || null;
    return song;
  }

  // Hands the decoded samples to the show as 16-bit stereo, for its level
  // meter, as they come: call it whenever the song or the show's runtime moved
  // on. `show` is the program (Module); false when the show takes no song that long.
  function makeHandOver(song, name, show) {
    let pointer = 0;
    let room = 0;    // frames the show holds room for
    let handed = 0;  // segments handed over
    const toSample = (x) => Math.max(-32768, Math.min(32767, Math.round(x * 32768)));
    return () => {
      if (song.total === 0) {
        return true;
      }
      if (pointer === 0 || (song.complete && room !== song.total)) {
        pointer = show.ccall('kaskade_soundtrack_buffer', 'number', ['string', 'number', 'number'],
                             [name, song.total, pointer === 0 ? 0 : 1]);
        room = song.total;
        if (pointer === 0) {
          return false;
        }
      }
      for (; handed < song.segments.length; ++handed) {
        const { start, buffer } = song.segments[handed];
        const frames = Math.min(buffer.length, room - start);
        const samples = new Int16Array(show.HEAP16.buffer, pointer + start * 4, Math.max(0, frames) * 2);
        const left = buffer.getChannelData(0);
        const right = buffer.getChannelData(1);
        for (let i = 0; i < frames; ++i) {
          samples[2 * i] = toSample(left[i]);
          samples[2 * i + 1] = toSample(right[i]);
        }
      }
      return true;
    };
  }

  // The song's player on an AudioContext made within a gesture; what its
  // output plays is the show's clock (heardSongMillis).
  function makePlayer(song) {
    const player = {
      context: null,
      gain: null,
      plan: [],       // scheduled pieces: {source, at (context seconds), frame (unwrapped song frame), frames}
      anchor: null,   // where the next piece goes: {frame (unwrapped), at (context seconds, null: at once)}
      next: 0,        // the next unwrapped song frame to schedule
      loop: true,
      lastHeard: 0,
    };

    // The AudioContext, made within the gesture. False when the browser gives
    // no running output within a second.
    player.open = async () => {
      try {
        player.context = new AudioContext({ sampleRate: RATE });
        await Promise.race([player.context.resume(), new Promise((resolve) => setTimeout(resolve, 1000))]);
      } catch (error) {
        player.context = null;
      }
      if (!player.context || player.context.state !== 'running') {
        return false;
      }
      player.gain = player.context.createGain();
      player.gain.connect(player.context.destination);
      return true;
    };

    // The context's time (ms) of the sample the output device plays now: the
    // output timestamp, carried on with the page's clock between the context's
    // steps; else the context's time less the latencies it reports. Never
    // ahead of what the context has rendered, never going back.
    player.heardContextMillis = () => {
      const context = player.context;
      const rendered = context.currentTime * 1000;
      let heard = rendered - ((context.outputLatency || 0) + (context.baseLatency || 0)) * 1000;
      const stamp = context.getOutputTimestamp ? context.getOutputTimestamp() : null;
      if (stamp && stamp.performanceTime > 0 && stamp.contextTime > 0) {
        heard = stamp.contextTime * 1000;
        if (context.state === 'running') {
          heard += performance.now() - stamp.performanceTime;
        }
      }
      player.lastHeard = Math.max(player.lastHeard, Math.min(heard, rendered));
      return player.lastHeard;
    };

    // The unwrapped song position (ms) that plays at the context's time
    // `contextMillis`, as scheduled: standing before a piece that is yet to be
    // heard, and after the last one.
    player.songMillisAt = (contextMillis) => {
      const at = contextMillis / 1000;
      for (const piece of player.plan) {
        if (at < piece.at) {
          return (piece.frame * 1000) / RATE;
        }
        if (at < piece.at + piece.frames / RATE) {
          return ((piece.frame + (at - piece.at) * RATE) * 1000) / RATE;
        }
      }
      return (player.next * 1000) / RATE;
    };

    // Schedules what has been decoded up to a second ahead.
    player.pump = () => {
      const context = player.context;
      if (!context || !player.anchor) {
        return;
      }
      const now = context.currentTime;
      while (player.plan.length > 0 && player.plan[0].at + player.plan[0].frames / RATE < now - 2) {
        player.plan.shift();
      }
      for (;;) {
        const wrapped = song.complete && player.loop ? player.next % song.total : player.next;
        if (song.complete && wrapped >= song.total) {
          return;  // the end of a song that does not loop
        }
        const segment = song.segmentAt(wrapped);
        if (!segment) {
          return;  // not decoded yet: the plan goes on from here once it is
        }
        let at = player.anchor.at === null ? null
          : player.anchor.at + (player.next - player.anchor.frame) / RATE;
        if (at === null || at < now + START_AHEAD_SECONDS) {
          // A start, or a piece that came too late: from a moment that is heard whole.
          at = now + START_AHEAD_SECONDS;
          player.anchor = { frame: player.next, at };
        }
        if (at > now + PLAN_AHEAD_SECONDS) {
          return;
        }
        const offset = wrapped - segment.start;
        const frames = segment.buffer.length - offset;
        const source = context.createBufferSource();
        source.buffer = segment.buffer;
        source.connect(player.gain);
        source.start(at, offset / RATE);
        player.plan.push({ source, at, frame: player.next, frames });
        player.next += frames;
      }
    };

    // Plays the song from `offsetSeconds`, as soon as that place has arrived.
    player.play = (loop, offsetSeconds) => {
      player.stop();
      player.loop = loop;
      player.next = Math.round(offsetSeconds * RATE);
      player.anchor = { frame: player.next, at: null };
      player.pump();
    };

    // The unwrapped song position (ms) heard now; the start position until it is heard.
    player.heardSongMillis = () => {
      player.pump();
      return player.songMillisAt(player.heardContextMillis());
    };

    player.stop = () => {
      for (const piece of player.plan) {
        piece.source.stop();
        piece.source.disconnect();
      }
      player.plan = [];
      player.anchor = null;
    };

    // A pause stops the context itself: its time stands, and what it plays.
    player.pause = (paused) => {
      (paused ? player.context.suspend() : player.context.resume()).catch(() => {});
    };

    player.setGain = (gain) => {
      if (player.gain) {
        player.gain.gain.value = gain;
      }
    };
    return player;
  }

  return { makeSong, makeHandOver, makePlayer, RATE };
})();
