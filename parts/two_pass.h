// The solid-then-cage drawing of parts 5 to 10: the scene rendered at its own
// size, then again, enlarged, with its materials switched to lines, so a
// slightly larger wire cage stands around every mesh.
#pragma once

#include "engine/world.h"
#include "parts/part_materials.h"

constexpr float SOLID_PASS_SCALE = 1.0f;
constexpr float WIRE_PASS_SCALE = 1.1f;

// MeshObject::setScale(scale, scale, scale) on every mesh, in index order.
void setEveryMeshScale(World& world, float scale);

// MeshObject::setTranslation(x, y, z) on every mesh, in index order.
void setEveryMeshTranslation(World& world, float x, float y, float z);

// Every mesh at SOLID_PASS_SCALE; the table's solid materials; render; every
// mesh at WIRE_PASS_SCALE; the table's wire materials; render.
void drawTwoPass(World& world, const PassMaterial* table, int count, Texture* texture);
