// MPEG audio frames (MPEG 1, 2 and 2.5, layers I to III) in the bytes of an
// MP3 as they arrive: where each frame starts and ends, how many samples it
// holds, and what the first frame's Info (or Xing) tag says of the song: its
// frame count, and the encoder's delay and padding in samples. An ID3v2 tag
// before the first frame is stepped over; bytes between frames that are no
// frame header are skipped to the next place where two frames follow each other.
'use strict';

(function (root) {
  // Kilobits per second by bitrate index: MPEG 1 layers I, II, III, then MPEG 2 and 2.5 layer I, and II and III.
  const BITRATES = [
    [0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448],
    [0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384],
    [0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320],
    [0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256],
    [0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160],
  ];
  const SAMPLE_RATES = { 1: [44100, 48000, 32000], 2: [22050, 24000, 16000], 25: [11025, 12000, 8000] };

  // The frame header at `at`: {length (bytes), samples, sampleRate, version,
  // layer, mono}, or null where none starts (free format counts as none).
  function frameHeader(bytes, at) {
    if (at + 4 > bytes.length || bytes[at] !== 0xff || (bytes[at + 1] & 0xe0) !== 0xe0) {
      return null;
    }
    const version = [25, 0, 2, 1][(bytes[at + 1] >> 3) & 3];
    const layer = 4 - ((bytes[at + 1] >> 1) & 3);
    const bitrateIndex = bytes[at + 2] >> 4;
    const rateIndex = (bytes[at + 2] >> 2) & 3;
    if (!version || layer === 4 || bitrateIndex === 0 || bitrateIndex === 15 || rateIndex === 3) {
      return null;
    }
    const table = version === 1 ? layer - 1 : layer === 1 ? 3 : 4;
    const bitrate = BITRATES[table][bitrateIndex] * 1000;
    const sampleRate = SAMPLE_RATES[version][rateIndex];
    const padding = (bytes[at + 2] >> 1) & 1;
    const samples = layer === 1 ? 384 : layer === 3 && version !== 1 ? 576 : 1152;
    const length = layer === 1 ? (Math.floor((12 * bitrate) / sampleRate) + padding) * 4
      : Math.floor((samples / 8) * bitrate / sampleRate) + padding;
    return { length, samples, sampleRate, version, layer, mono: (bytes[at + 3] >> 6) === 3 };
  }

  // Bytes of an ID3v2 tag at `at` (header, body and footer), 0 for none.
  function id3Length(bytes, at) {
    if (at + 10 > bytes.length || bytes[at] !== 0x49 || bytes[at + 1] !== 0x44 || bytes[at + 2] !== 0x33) {
      return 0;
    }
    const size = ((bytes[at + 6] & 0x7f) << 21) | ((bytes[at + 7] & 0x7f) << 14) | ((bytes[at + 8] & 0x7f) << 7) |
      (bytes[at + 9] & 0x7f);
    return 10 + size + (bytes[at + 5] & 0x10 ? 10 : 0);
  }

  // True when the bytes begin as an MP3 does: an ID3v2 tag or a frame header.
  function looksLikeMp3(bytes) {
    return id3Length(bytes, 0) > 0 || frameHeader(bytes, 0) !== null;
  }

  // The Info or Xing tag in the frame at `at`: {frames, delay, padding}
  // (frames the song holds after this one; delay and padding 0 without a
  // LAME extension), or null when the frame is audio.
  function infoTag(bytes, at, header) {
    const sideInfo = header.version === 1 ? (header.mono ? 17 : 32) : (header.mono ? 9 : 17);
    const tag = at + 4 + sideInfo;
    const name = String.fromCharCode(...bytes.subarray(tag, tag + 4));
    if (header.layer !== 3 || (name !== 'Xing' && name !== 'Info')) {
      return null;
    }
    const word = (offset) => ((bytes[offset] << 24) | (bytes[offset + 1] << 16) | (bytes[offset + 2] << 8) |
      bytes[offset + 3]) >>> 0;
    const flags = word(tag + 4);
    const frames = flags & 1 ? word(tag + 8) : 0;
    const lame = tag + 8 + (flags & 1 ? 4 : 0) + (flags & 2 ? 4 : 0) + (flags & 4 ? 100 : 0) + (flags & 8 ? 4 : 0);
    let delay = 0;
    let padding = 0;
    if (lame + 24 <= at + header.length && String.fromCharCode(...bytes.subarray(lame, lame + 4)) === 'LAME') {
      delay = (bytes[lame + 21] << 4) | (bytes[lame + 22] >> 4);
      padding = ((bytes[lame + 22] & 0x0f) << 8) | bytes[lame + 23];
    }
    return { frames, delay, padding };
  }

  // A reader of an MP3 that arrives in pieces. push(bytes, last) takes the
  // next piece (`last` for the final one) and returns the audio frames it
  // completed, in order, each as its bytes. Once the first frame is read,
  // `first` is its header, and when it is an Info frame, `info` its tag and
  // `infoBytes` the frame (a decoder that reads the tag leaves out the
  // encoder's delay and padding); both are null when it is audio.
  function makeFrameReader() {
    let held = new Uint8Array(0);  // bytes not yet made into frames
    let started = false;           // the ID3v2 tag and the first frame are behind
    const reader = { first: null, info: null, infoBytes: null };
    reader.push = (bytes, last) => {
      const joined = new Uint8Array(held.length + bytes.length);
      joined.set(held);
      joined.set(bytes, held.length);
      held = joined;
      const frames = [];
      let at = 0;
      for (;;) {
        if (!started && held.length - at < 10 && !last) {
          break;  // an ID3v2 tag is told by its first ten bytes
        }
        const tag = started ? 0 : id3Length(held, at);
        if (tag > 0) {
          if (at + tag > held.length) {
            break;
          }
          at += tag;
          continue;
        }
        if (held.length - at < 4) {
          break;
        }
        const header = frameHeader(held, at);
        const end = header ? at + header.length : 0;
        if (header && end + 4 > held.length && !last) {
          break;
        }
        // A frame counts once the next one is seen to start where it ends: a
        // header that other bytes hold by chance is rarely followed by another.
        if (!header || end > held.length || (end + 4 <= held.length && !frameHeader(held, end) && !last)) {
          at += 1;
          continue;
        }
        if (!started) {
          started = true;
          reader.first = header;
          reader.info = infoTag(held, at, header);
          if (reader.info) {
            reader.infoBytes = held.slice(at, end);
            at = end;
            continue;
          }
        }
        frames.push(held.slice(at, end));
        at = end;
      }
      held = held.slice(at);
      return frames;
    };
    return reader;
  }

  const api = { frameHeader, looksLikeMp3, makeFrameReader };
  if (typeof module === 'object' && module.exports) {
    module.exports = api;
  } else {
    root.kaskadeMp3Frames = api;
  }
})(typeof window === 'object' ? window : globalThis);
