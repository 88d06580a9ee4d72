// The scenes and images the parts' set-ups take from the open archive. The
// first set-up of a part loads them; a later one (the show starting over with
// --loop) finds them loaded, reads nothing from the archive again, and puts a
// World back as it was when it was loaded.
#pragma once

struct World;
struct Texture;

// `world`, created and loaded from the archive entry `entryName` when null;
// otherwise put back to its state right after its load. A World that this
// function did not load (a test's own) is left as it is.
World& partWorld(World*& world, const char* entryName);

// `texture`, created and loaded from `entryName` at width x height (black not
// transparent) when null; otherwise left as it is.
Texture& partTexture(Texture*& texture, const char* entryName, int width, int height);
