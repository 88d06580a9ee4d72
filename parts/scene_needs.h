// What a part's scene must hold before its draw steps index into it: a
// current camera, a number of meshes and omni lights, and for the wave parts a
// rest mesh with the wave mesh's vertices. A scene short of them ends the
// show at its part's set-up with the engine's caption ("tessel openGL
// engine", status 1) instead of reading past the World's arrays.
#pragma once

#include <cstdint>

struct World;

// Fatal unless `world` has a current camera, at least `meshes` meshes and at
// least `lights` omni lights. `entryName` names the scene in the report.
void requireScene(const World& world, const char* entryName, int32_t meshes, int32_t lights);

// Fatal unless mesh `restMesh` has exactly as many vertices as mesh `waveMesh`
// (both indices must already be within meshCount).
void requireRestShape(const World& world, const char* entryName, int32_t waveMesh, int32_t restMesh);
