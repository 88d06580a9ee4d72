// Scenes as text, for the reader's cases (tests/data/engine/scenes.txt):
// .3ds bytes from a chunk notation, and a World written down line by line.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct World;

// Bytes of the whitespace-separated tokens of `text`:
//   4D4D{ ... }   a chunk of that id (hex), its length counted from its parts
//   "text"        the characters and a NUL; 'text' without the NUL
//   w1,2  d3  f1.5,-2   16-bit words, 32-bit words, floats (little-endian; 0x for hex)
//   xEE*8         the byte 0xEE eight times (xEE: once)
//   NAME          the tokens `macros` gives NAME
std::vector<uint8_t> sceneBytes(const std::string& text, const std::map<std::string, std::string>& macros = {});

// One line per record, numbers in %g:
//   mesh NAME vertices V faces F centre (x,y,z) [hidden] [scale (..)] [rot (..)]
//     vertex (x,y,z) normal (x,y,z) uv (u,v)
//     face (a,b,c) flags F normal (x,y,z,w) material N|-   (N: its place in the World's materials)
//   material NAME MODE twosided T ambient 0xAARRGGBB diffuse .. specular ..
//   camera NAME at (x,y,z) to (x,y,z) fov F [current]
//   light NAME at (x,y,z) colour 0x.. range R;  spot NAME at (..) to (..) colour 0x.. hotspot H falloff F
//     [target] key FRAME (x,y,z) in (..) out (..) flags S   (the record's position or target track)
//   segment START END
std::string dumpWorld(const World& world);

// Loads `bytes` into `world` from a stream that holds `offset` bytes of
// padding first, as an archive entry would.
void loadScene(World& world, const std::vector<uint8_t>& bytes, long offset = 0);

// Loads each of `loads` in turn into a fresh World: dumpWorld's lines, or
// "fatal CAPTION STATUS: TEXT" of the report that ended the loading.
std::string loadReport(const std::vector<std::vector<uint8_t>>& loads, long offset = 0);
