// Scenes as text, for the reader's cases (tests/data/engine/scenes.txt): a
// World written down line by line, and loaded from bytes.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

struct World;

// A number in %g ("0", never "-0"); "(a,b,...)" of numbers; the MODE_*
// names of engine/world.h ("none" for 0) by value.
std::string numberText(double value);
std::string listText(std::initializer_list<double> values);
extern const std::map<uint32_t, std::string> MODE_NAMES;

// One line per record, numbers in %g:
//   mesh NAME vertices V faces F centre (x,y,z) [hidden] [scale (..)] [rot (..)]
//     vertex (x,y,z) normal (x,y,z) uv (u,v)
//     face (a,b,c) flags F normal (x,y,z,w) material N|-   (N: its place in the World's materials)
//   material NAME MODE twosided T ambient 0xAARRGGBB diffuse .. specular .. [flags F]
//   camera NAME at (x,y,z) to (x,y,z) fov F [current]
//   light NAME at (x,y,z) colour 0x.. range R;  spot NAME at (..) to (..) colour 0x.. hotspot H falloff F
//     [target] key FRAME (x,y,z) in (..) out (..) flags S   (the record's position or target track)
//   segment START END
std::string dumpWorld(const World& world);

// Loads `bytes` into `world` from a stream that holds `offset` bytes of
// padding first, as an archive entry would.
void loadScene(World& world, const std::vector<uint8_t>& bytes, long offset = 0);

// Loads each of `loads` in turn into a fresh World, then runs `after` on it:
// dumpWorld's lines, or "fatal CAPTION STATUS: TEXT" of the report that ended it.
std::string loadReport(const std::vector<std::vector<uint8_t>>& loads, long offset = 0,
                       const std::function<void(World&)>& after = nullptr);
