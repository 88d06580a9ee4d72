// The player's control bar over the bottom of the picture: play and pause,
// the timeline with the thirteen parts marked, how much of the music has
// arrived and the time, mute and volume, a clip, and fullscreen. It shows on
// mouse movement or a tap and hides 2 s after the last one (not while the
// pointer rests on it or holds the timeline). The show keeps the player's
// state (app/player.h); the bar reads it every animation frame, as does the
// address, which follows the time on view (#t=S: whole seconds while the show
// plays, to the millisecond while it is paused; replaced, not pushed, at most
// once a second).
//
// The timeline is one target as tall as a finger that scrubs: a press
// anywhere on it shows the part and the time under the pointer above the
// place, following it as it moves; letting go seeks there (a place on a mark
// is the start of the part that starts there). A press that leaves the
// timeline sideways still counts, by where it is let go. A control used with
// the pointer gives the keyboard back, so that Space and the arrows stay the
// show's.
//
// The picture a pause leaves is kept here too, so that it stays whatever
// happens to the canvas (a new drawing size clears it).
'use strict';

(function (root) {
  // Demo time (tenths of a second) at which each part ends, as the show has it.
  const PART_ENDS = [210, 335, 395, 534, 658, 770, 960, 1127, 1307, 1498, 1758, 1925, 2269];
  const SHOW_TENTHS = PART_ENDS[PART_ENDS.length - 1];
  const HIDE_AFTER_MILLIS = 2000;
  const ADDRESS_EVERY_MILLIS = 1000;

  const partStart = (part) => (part <= 1 ? 0 : PART_ENDS[part - 2]);

  // The demo time (tenths) at `fraction` (0..1) of the timeline.
  const timeAtPlace = (fraction) => Math.min(1, Math.max(0, fraction)) * SHOW_TENTHS;

  // The part whose stretch holds `fraction` of the timeline; a place on the
  // boundary of two parts is the later one's start.
  function partAtPlace(fraction) {
    const tenths = timeAtPlace(fraction);
    const part = PART_ENDS.findIndex((end) => tenths < end);
    return part < 0 ? PART_ENDS.length : part + 1;
  }

  // "m:ss" of `tenths` of a second.
  function clockText(tenths) {
    const seconds = Math.max(0, Math.floor(tenths / 10));
    return `${Math.floor(seconds / 60)}:${String(seconds % 60).padStart(2, '0')}`;
  }

  // `elements`: stage, bar, play, time, timeline, played, loaded, heldPart
  // (the part and time shown while the timeline is held), mute, volume,
  // clip, fullscreen (the bar's button), held (a 2D canvas over the show's
  // canvas), canvas. `show`: the show's exports (Module). `page`: the page's
  // toggleFullscreen() and toggleClip().
  function makeControls(elements, show, page) {
    const e = elements;
    let active = false;
    let hideTimer = 0;
    let overBar = false;
    let holding = false;
    let address = '';
    let addressWritten = -Infinity;

    // The time on view, and the show's length (left out on a narrow picture).
    const [onView, length] = [document.createElement('span'), document.createElement('span')];
    length.className = 'length';
    length.textContent = ` / ${clockText(SHOW_TENTHS)}`;
    e.time.append(onView, length);

    for (let part = 1; part <= PART_ENDS.length; ++part) {
      const mark = document.createElement('div');
      mark.className = 'mark';
      mark.dataset.part = String(part);
      mark.style.left = `${(100 * partStart(part)) / SHOW_TENTHS}%`;
      e.timeline.appendChild(mark);
    }

    function hideSoon() {
      clearTimeout(hideTimer);
      hideTimer = setTimeout(() => {
        if (!overBar && !holding) {
          e.bar.classList.remove('shown');
        }
      }, HIDE_AFTER_MILLIS);
    }

    function reveal() {
      if (active) {
        e.bar.classList.add('shown');
        hideSoon();
      }
    }

    const state = (field) => show._kaskade_player_state(field);

    // The address names the moment on view, so that a link opens there.
    function followTime(seconds, paused) {
      const wanted = `#t=${paused ? Number(seconds.toFixed(3)) : Math.floor(seconds)}`;
      const now = performance.now();
      if (wanted === address || now - addressWritten < ADDRESS_EVERY_MILLIS) {
        return;
      }
      address = wanted;
      addressWritten = now;
      const params = new URLSearchParams(location.search);
      params.delete('part');
      params.delete('t');
      const search = params.toString();
      history.replaceState(history.state, '', `${location.pathname}${search ? `?${search}` : ''}${wanted}`);
    }

    function update() {
      if (!active) {
        return;
      }
      const paused = state(0) === 1;
      const part = state(3);
      const tenths = state(4);
      const seconds = state(5);
      followTime(seconds, paused);
      if (!paused) {
        e.held.hidden = true;
      }
      e.play.classList.toggle('paused', paused);
      e.play.setAttribute('aria-label', paused ? 'play' : 'pause');
      e.mute.classList.toggle('muted', state(1) === 1);
      e.mute.setAttribute('aria-label', state(1) === 1 ? 'unmute' : 'mute');
      if (document.activeElement !== e.volume) {
        e.volume.value = String(state(2));
      }
      e.played.style.width = `${Math.min(100, (100 * tenths) / SHOW_TENTHS)}%`;
      onView.textContent = `part ${part} · ${clockText(tenths)}`;
      requestAnimationFrame(update);
    }

    e.stage.addEventListener('pointermove', (event) => {
      if (event.pointerType === 'mouse') {
        reveal();
      }
    });
    e.bar.addEventListener('pointerenter', () => { overBar = true; });
    e.bar.addEventListener('pointerleave', () => {
      overBar = false;
      hideSoon();
    });
    // A clicked button gives the focus back.
    const onClick = (button, act) => button.addEventListener('click', () => {
      act();
      button.blur();
    });
    onClick(e.play, () => show._kaskade_toggle_pause());
    onClick(e.mute, () => show._kaskade_toggle_mute());
    onClick(e.fullscreen, () => page.toggleFullscreen());
    onClick(e.clip, () => page.toggleClip());
    e.volume.addEventListener('input', () => show._kaskade_set_volume(Number(e.volume.value)));
    // The slider keeps the keyboard only when it was reached with it (Tab).
    e.volume.addEventListener('pointerup', () => e.volume.blur());
    e.volume.addEventListener('change', () => {
      if (!e.volume.matches(':focus-visible')) {
        e.volume.blur();
      }
    });

    // The timeline held: the part and time under the pointer, shown above it.
    const placeOf = (event) => {
      const box = e.timeline.getBoundingClientRect();
      return Math.min(1, Math.max(0, (event.clientX - box.left) / box.width));
    };
    const showHeld = (event) => {
      const place = placeOf(event);
      e.heldPart.textContent = `part ${partAtPlace(place)} · ${clockText(timeAtPlace(place))}`;
      e.heldPart.style.left = `${100 * place}%`;
      e.heldPart.hidden = false;
    };
    e.timeline.addEventListener('pointerdown', (event) => {
      if (!active || event.button !== 0) {
        return;
      }
      holding = true;
      e.timeline.setPointerCapture(event.pointerId);
      reveal();
      showHeld(event);
    });
    e.timeline.addEventListener('pointermove', (event) => {
      if (holding) {
        showHeld(event);
      }
    });
    const letGo = (event, seek) => {
      if (!holding) {
        return;
      }
      holding = false;
      e.heldPart.hidden = true;
      hideSoon();
      if (seek) {
        show._kaskade_seek_to(timeAtPlace(placeOf(event)) / 10);
      }
    };
    e.timeline.addEventListener('pointerup', (event) => letGo(event, true));
    e.timeline.addEventListener('pointercancel', (event) => letGo(event, false));

    return {
      // The show plays: the bar works from now on.
      start() {
        active = true;
        requestAnimationFrame(update);
      },
      // The show ended or failed: the bar goes.
      stop() {
        active = false;
        e.bar.classList.remove('shown');
        e.held.hidden = true;
      },
      // A tap on the stage: the bar, not the show's end.
      tapped() {
        reveal();
      },
      // How much of the music has arrived, 0..1.
      songLoaded(fraction) {
        e.loaded.style.width = `${Math.min(100, 100 * fraction)}%`;
      },
      // The frame just drawn is the last before a pause: it stays on view.
      holdPicture() {
        e.held.width = e.canvas.width;
        e.held.height = e.canvas.height;
        e.held.getContext('2d').drawImage(e.canvas, 0, 0);
        e.held.hidden = false;
      },
      contains(node) {
        return e.bar.contains(node);
      },
      // A clip records (true) or not.
      recording(on) {
        e.clip.classList.toggle('recording', on);
        e.clip.setAttribute('aria-label', on ? 'end the clip' : 'record a clip');
      },
    };
  }

  const api = { makeControls, partAtPlace, timeAtPlace, partStart, clockText, PART_ENDS };
  if (typeof module === 'object' && module.exports) {
    module.exports = api;
  } else {
    root.kaskadeControls = api;
  }
})(typeof window === 'object' ? window : globalThis);
