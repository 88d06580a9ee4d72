// Shapes the scenes build from the primitives of geometry.h: wave meshes,
// room walls, wheels and frames. Engine axes, outward winding, as there.
#pragma once

#include "content/geometry/geometry.h"

// A welded sphere for the wave parts: no seams, so every vertex moves with
// its neighbours, and texture coordinates from the front view (u from x, v
// from y), inside [0.01, 0.99]: the back mirrors the front.
GeoMesh waveSphere(float radius, int slices, int stacks);

// A flat grid of (columns x rows) quads spanning `size` (x across, y up),
// centred on the origin, facing +z. For wire rooms: the quads show as cells.
GeoMesh gridPanel(float width, float height, int columns, int rows);

// The four walls of a box room `size` centred on the origin, each a grid of
// cells about `cell` wide, facing into the room.
GeoMesh roomWalls(Vec3 size, float cell);

// A gear wheel lying in the x-y plane (facing +z) about the origin: a toothed
// rim between `inner` and `root` (teeth out to `tip`), `spokes` spokes of
// width `spokeWidth` to a hub of radius `hub`, all `thickness` deep.
GeoMesh gearWheel(int teeth, float inner, float root, float tip, int spokes, float spokeWidth, float hub,
                  float thickness);

// An arch standing on the x-z plane over the origin, facing +z: two legs and
// a half-ring, `width` apart outside, `height` tall, members `member` thick.
GeoMesh arch(float width, float height, float member);
