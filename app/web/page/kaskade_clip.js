// A clip of the show: what the picture shows and the soundtrack plays, from
// the moment it is asked for until it is asked again (the clip button or c),
// at most a minute, recorded by the browser's MediaRecorder from the canvas'
// stream and the player's output (a MediaStreamAudioDestinationNode beside
// the speakers), as WebM: VP8 video, which the browser encodes live even on
// a slow device, and Opus sound. When it stops, it is offered as a download
// named after where it starts: kaskade-part9-93.5s.webm. What is laid over
// the picture (the bar, notes) is not in it.
'use strict';

window.kaskadeClip = (function () {
  const MAX_MILLIS = 60000;
  const TYPES = ['video/webm;codecs=vp8,opus', 'video/webm'];
  const VIDEO_BITS_PER_SECOND = 8e6;  // the show's fine lines survive it at 1440 x 1080

  // `canvas`: the show's; `player`: the soundtrack's (its context and gain
  // node, when it plays); `said(text)`: a note for the viewer;
  // `changed(recording)`: the clip started or stopped.
  function makeClip(canvas, player, said, changed) {
    let recorder = null;
    let tap = null;
    let limit = 0;

    function offer(chunks, name, type) {
      const link = document.createElement('a');
      link.href = URL.createObjectURL(new Blob(chunks, { type }));
      link.download = name;
      link.click();
      // The download holds on to the blob; the address is not needed after.
      setTimeout(() => URL.revokeObjectURL(link.href), MAX_MILLIS);
    }

    // Starts a clip that will be offered as `name`.
    function start(name) {
      const type = TYPES.find((candidate) => MediaRecorder.isTypeSupported(candidate));
      const stream = canvas.captureStream();
      if (player.context && player.gain) {
        tap = player.context.createMediaStreamDestination();
        player.gain.connect(tap);
        tap.stream.getAudioTracks().forEach((track) => stream.addTrack(track));
      }
      const chunks = [];
      const started = performance.now();
      recorder = new MediaRecorder(stream, { mimeType: type, videoBitsPerSecond: VIDEO_BITS_PER_SECOND });
      recorder.ondataavailable = (event) => chunks.push(event.data);
      recorder.onstop = () => {
        stream.getTracks().forEach((track) => track.stop());
        offer(chunks, name, recorder.mimeType || 'video/webm');
        said(`Clip saved as ${name} (${((performance.now() - started) / 1000).toFixed(1)} s).`);
        recorder = null;
        changed(false);
      };
      recorder.start(1000);
      limit = setTimeout(stop, MAX_MILLIS);
      said('Recording a clip: c or the clip button ends it (a minute at most).');
      changed(true);
    }

    function stop() {
      clearTimeout(limit);
      if (tap) {
        player.gain.disconnect(tap);
        tap = null;
      }
      if (recorder && recorder.state !== 'inactive') {
        recorder.stop();
      }
    }

    return {
      get recording() {
        return recorder !== null;
      },
      // Starts a clip named `name`, or ends the one recording.
      toggle(name) {
        if (recorder) {
          stop();
        } else if (typeof MediaRecorder === 'undefined' || !canvas.captureStream) {
          said('This browser cannot record the show.');
        } else {
          start(name);
        }
      },
      stop,
    };
  }

  // The file name of a clip starting at `seconds` into the show, in `part`.
  const clipName = (part, seconds) => `kaskade-part${part}-${seconds.toFixed(1)}s.webm`;

  return { makeClip, clipName };
})();
