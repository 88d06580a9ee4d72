// The show's frames: which frame is the middle of each part, a grabbed
// frame's fingerprint, and how far it is from the desktop's reference frame.
'use strict';

// Demo time (tenths of a second) at which each part ends; part k runs from ENDS[k - 1] to ENDS[k].
const ENDS = [0, 210, 335, 395, 534, 658, 770, 960, 1127, 1307, 1498, 1758, 1925, 2269];

// The frame shown at the middle of part k on the fixed-step clock at `fps`
// (frame n shows demo time n * 10 / fps), as scripts/part-frames takes it.
const middleFrame = (part, fps) => Math.floor(((ENDS[part - 1] + ENDS[part]) * fps) / 20);

// Runs in the page: each of the grabbed frames `indices` as its size and a
// hash of its bytes (FNV-1a), undefined where it was not grabbed.
const frameHashesInPage = (indices) => indices.map((i) => window.kaskade.frames[i]).map((frame) => frame &&
  `${frame.width}x${frame.height} ${frame.rgba.reduce((hash, byte) => Math.imul(hash ^ byte, 0x01000193) >>> 0, 0x811c9dc5).toString(16)}`);

// Runs in the page: the grabbed frame (RGBA, rows bottom up) against the PNG
// `referenceUrl` of its size: meanError, the mean absolute difference of red,
// green and blue (0..255); shiftedError, the same against the closest of the
// reference's pixels within one pixel (an edge or line one pixel over costs
// nothing, other differences all); and the frame as a PNG data URL.
async function compareInPage([grabbed, referenceUrl]) {
  const image = new Image();
  image.src = referenceUrl;
  await image.decode();
  const { width, height } = image;
  const canvas = Object.assign(document.createElement('canvas'), { width, height });
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
  shown.data.forEach((_, i) => i % 4 === 3 && (shown.data[i] = 255));
  const distance = (a, b) => Math.abs(shown.data[a] - reference[b]) + Math.abs(shown.data[a + 1] - reference[b + 1]) +
                             Math.abs(shown.data[a + 2] - reference[b + 2]);
  let sum = 0;
  let shiftedSum = 0;
  for (let y = 0; y < height; ++y) {
    for (let x = 0; x < width; ++x) {
      const at = (y * width + x) * 4;
      let nearest = distance(at, at);
      sum += nearest;
      for (let dy = -1; dy <= 1 && nearest > 0; ++dy) {
        for (let dx = -1; dx <= 1; ++dx) {
          if (x + dx >= 0 && y + dy >= 0 && x + dx < width && y + dy < height) {
            nearest = Math.min(nearest, distance(at, ((y + dy) * width + x + dx) * 4));
          }
        }
      }
      shiftedSum += nearest;
    }
  }
  context.putImageData(shown, 0, 0);
  return { meanError: sum / width / height / 3, shiftedError: shiftedSum / width / height / 3, png: canvas.toDataURL() };
}

module.exports = { ENDS, middleFrame, frameHashesInPage, compareInPage };
