// The show's archive "3d" for the browser tests: entries one after another,
// each a name of at most 19 characters and a zero byte, a 32-bit
// little-endian length and the data.
'use strict';

// The entries of `archive` (a Buffer) as {name, start, end} (the whole entry's bytes).
function archiveEntries(archive) {
  const entries = [];
  let at = 0;
  while (at < archive.length) {
    const zero = archive.indexOf(0, at);
    if (zero < 0 || zero - at > 19 || zero + 5 > archive.length) {
      throw new Error(`the archive breaks off at byte ${at}`);
    }
    const end = zero + 5 + archive.readUInt32LE(zero + 1);
    entries.push({ name: archive.toString('latin1', at, zero), start: at, end: Math.min(end, archive.length) });
    at = end;
  }
  return entries;
}

// `archive` without its entry `name` (which it must hold).
function archiveWithout(archive, name) {
  const entries = archiveEntries(archive);
  const kept = entries.filter((entry) => entry.name !== name);
  if (kept.length !== entries.length - 1) {
    throw new Error(`the archive holds no entry ${name}`);
  }
  return Buffer.concat(kept.map((entry) => archive.subarray(entry.start, entry.end)));
}

module.exports = { archiveEntries, archiveWithout };
