// The show's frames against the desktop's reference frames: which frame is the
// middle of each part, and how far two frames are apart.
'use strict';

// Demo time (tenths of a second) at which each part ends; part k runs from ENDS[k - 1] to ENDS[k].
const ENDS = [0, 210, 335, 395, 534, 658, 770, 960, 1127, 1307, 1498, 1758, 1925, 2269];

// The frame shown at the middle of part k on the fixed-step clock at `fps`
// (frame n shows demo time n * 10 / fps), as scripts/part-frames takes it.
function middleFrame(part, fps) {
  return Math.floor(((ENDS[part - 1] + ENDS[part]) * fps) / 20);
}

// The last frame of the show at `fps`: the first whose demo time is past the end of part 13.
function lastFrame(fps) {
  return Math.floor((ENDS[13] * fps) / 10) + 1;
}

// Runs in the page: decodes the PNG `referenceUrl` and compares it with the
// grabbed frame (RGBA, rows bottom up) of the same size. Returns
//   meanError: the mean absolute difference over the red, green and blue of
//     every pixel (0..255);
//   shiftedError: the same, each pixel compared with the closest of the
//     reference's pixels within one pixel of it: rasterizers that put an edge
//     or a line one pixel over cost nothing here, other differences all;
// and the frame as a PNG data URL.
async function compareInPage([grabbed, referenceUrl]) {
  const image = new Image();
  image.src = referenceUrl;
  await image.decode();
  const { width, height } = image;
  const canvas = document.createElement('canvas');
  canvas.width = width;
  canvas.height = height;
  const context = canvas.getContext('2d');
  context.drawImage(image, 0, 0);
  const reference = context.getImageData(0, 0, width, height).data;
  const frame = window.kaskade.frames[grabbed];
  if (!frame || frame.width !== width || frame.height !== height) {
    return { error: `frame ${grabbed} was not grabbed at ${width} x ${height}` };
  }
  const shown = context.createImageData(width, height);
  for (let y = 0; y < height; ++y) {
    shown.data.set(frame.rgba.subarray((height - 1 - y) * width * 4, (height - y) * width * 4), y * width * 4);
  }
  const pixel = (data, x, y) => (y * width + x) * 4;
  const distance = (x, y, rx, ry) => {
    const a = pixel(shown.data, x, y);
    const b = pixel(reference, rx, ry);
    return Math.abs(shown.data[a] - reference[b]) + Math.abs(shown.data[a + 1] - reference[b + 1]) +
           Math.abs(shown.data[a + 2] - reference[b + 2]);
  };
  let sum = 0;
  let shiftedSum = 0;
  for (let y = 0; y < height; ++y) {
    for (let x = 0; x < width; ++x) {
      const direct = distance(x, y, x, y);
      sum += direct;
      let nearest = direct;
      for (let dy = -1; dy <= 1 && nearest > 0; ++dy) {
        for (let dx = -1; dx <= 1; ++dx) {
          const rx = x + dx;
          const ry = y + dy;
          if (rx >= 0 && ry >= 0 && rx < width && ry < height) {
            nearest = Math.min(nearest, distance(x, y, rx, ry));
          }
        }
      }
      shiftedSum += nearest;
    }
  }
  for (let i = 3; i < shown.data.length; i += 4) {
    shown.data[i] = 255;
  }
  context.putImageData(shown, 0, 0);
  const samples = width * height * 3;
  return { meanError: sum / samples, shiftedError: shiftedSum / samples, png: canvas.toDataURL('image/png') };
}

module.exports = { ENDS, middleFrame, lastFrame, compareInPage };
