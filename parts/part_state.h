// Every demo part's globals: the scenes and images its set-up loads, and the
// state part 1's frames carry from one to the next. All are null, 0 or their
// stated initial value at program start; the Worlds and Textures are created by
// the set-up steps and live until the process ends (never freed).
#pragma once

#include <cstdint>

struct World;
struct Texture;

// Part 1 (test.3ds). g_objectsTexture is also the material texture of parts 5
// to 11 and part 5's overlay.
extern World* g_testWorld;
extern Texture* g_objectsTexture;  // "objects.pcx", 512 x 256
extern Texture* g_logoTexture;     // "mark12.pcx", 512 x 256
extern int32_t g_revealIndex;      // mesh the last beat revealed; 3 at start
extern int32_t g_revealArmed;      // 1 when the next loud frame may reveal; 1 at start
extern float g_logoSlideStart;     // demo time of the first frame after 145; 0 until then
extern float g_riseStart;          // demo time of the first frame after 190; 0 until then

// Part 2 (stil.3ds).
extern World* g_stilWorld;
extern Texture* g_credTexture;     // "cred.pcx", 512 x 256
extern Texture* g_xxxTexture;      // "xxx.pcx", 512 x 256

// Parts 3 and 4 (rum.3ds, rum2.3ds). Part 12 draws g_rum2World again, as part 4
// left it, under g_oooTexture.
extern World* g_rumWorld;
extern Texture* g_oooTexture;      // "ooo.pcx", 512 x 256
extern World* g_rum2World;

// Parts 5 and 6 (2d.3ds, 3d.3ds).
extern World* g_world2d;
extern World* g_world3d;
extern Texture* g_texture2;        // "texture2.pcx", 256 x 256: the sprite stream's squares
extern Texture* g_partTexture;     // "part.pcx", 512 x 256

// Parts 7 and 8 (4d.3ds, 5d.3ds).
extern World* g_world4d;
extern Texture* g_greetTexture;    // "greet.pcx", 512 x 256
extern World* g_world5d;

// Parts 9 and 10 (6d.3ds, 7d.3ds).
extern World* g_world6d;
extern Texture* g_everTexture;     // "ever.pcx", 512 x 256
extern World* g_world7d;
extern Texture* g_forgetTexture;   // "forget.pcx", 512 x 256

// Part 11 (8d.3ds).
extern World* g_world8d;
extern Texture* g_invertTexture;   // "invert.pcx", 512 x 256

// Part 13 (9d.3ds).
extern World* g_world9d;
extern Texture* g_outsideTexture;  // "outside.pcx", 512 x 256
