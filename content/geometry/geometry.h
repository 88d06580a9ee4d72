// content/geometry: procedural triangle meshes and the operations that place and combine them.
//
// Procedural triangle meshes for the show's scenes, in the engine's axes
// (Y up, right-handed), and the operations that place and combine them.
//
// Winding: every triangle (a, b, c) of these meshes has (b - a) x (c - a)
// pointing out of the solid it bounds (the usual modelling convention); the
// scene builder decides how the file stores it. Edge bits use the .3ds face
// flags (0x04 a-b, 0x02 b-c, 0x01 c-a visible): quads show their four sides,
// not the diagonal.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "content/formats/tds_face_flags.h"

struct Vec3 {
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
};

Vec3 operator+(Vec3 a, Vec3 b);
Vec3 operator-(Vec3 a, Vec3 b);
Vec3 operator*(Vec3 a, float s);
Vec3 cross(Vec3 a, Vec3 b);
float dot(Vec3 a, Vec3 b);
float length(Vec3 a);
Vec3 normalised(Vec3 a);  // (0, 0, 0) stays (0, 0, 0)

struct Vec2 {
    float u = 0.0f;
    float v = 0.0f;
};


struct GeoTriangle {
    uint16_t a = 0;
    uint16_t b = 0;
    uint16_t c = 0;
    uint16_t edges = TDS_EDGES_ALL;
};

// One mesh: positions and texture coordinates share their index.
struct GeoMesh {
    std::vector<Vec3> positions;
    std::vector<Vec2> texCoords;  // one per position
    std::vector<GeoTriangle> triangles;

    // Appends a vertex and returns its index.
    uint16_t vertex(Vec3 position, Vec2 texCoord = {});
    // Appends the quad a-b-c-d (counter-clockwise seen from outside) as the two
    // triangles a-b-c and a-c-d, showing the four sides.
    void quad(uint16_t a, uint16_t b, uint16_t c, uint16_t d);
    void triangle(uint16_t a, uint16_t b, uint16_t c, uint16_t edges = TDS_EDGES_ALL);
};

// --- Placing and combining ---------------------------------------------------

void translate(GeoMesh& mesh, Vec3 offset);
void scale(GeoMesh& mesh, Vec3 factors);  // about the origin; a mirror keeps the winding outward
void rotateX(GeoMesh& mesh, float degrees);
void rotateY(GeoMesh& mesh, float degrees);
void rotateZ(GeoMesh& mesh, float degrees);
// Moves every vertex by f(position).
void displace(GeoMesh& mesh, const std::function<Vec3(Vec3)>& f);
// Appends `part` to `mesh` (indices shifted).
void append(GeoMesh& mesh, const GeoMesh& part);
// Sets the edge bits of every triangle.
void setEdges(GeoMesh& mesh, uint16_t edges);
// Merges vertices closer than `tolerance` (keeping the first one's texture
// coordinates) and drops the triangles that collapse.
void weld(GeoMesh& mesh, float tolerance);
// The mean of the positions, as the engine computes a mesh's centre.
Vec3 centroid(const GeoMesh& mesh);

// --- Surfaces ----------------------------------------------------------------

// A grid of (columns x rows) quads over at(s, t), s and t in 0..1. A wrapped
// direction joins its last column (row) to its first instead of repeating it.
// Texture coordinates are (s, t). The surface faces outward when s runs
// counter-clockwise seen from outside with t across it to the left (as
// longitude east with t from south to north).
GeoMesh parametricSurface(int columns, int rows, bool wrapColumns, bool wrapRows,
                          const std::function<Vec3(float s, float t)>& at);

// A surface of revolution about the Y axis: `profile` lists (radius, height)
// from bottom to top; radius 0 closes the surface there.
GeoMesh lathe(const std::vector<Vec2>& profile, int segments);

// A tube of `radius` swept along `curve` (t in 0..1), with frames carried
// along the curve so the tube does not twist; closed curves join up.
GeoMesh tube(const std::function<Vec3(float t)>& curve, int segments, int sides, float radius, bool closed);

// --- Solids --------------------------------------------------------------------

// An axis-aligned box centred on the origin, each face with its own vertices.
GeoMesh box(Vec3 size);
// Sphere of `radius` about the origin, `slices` around and `stacks` pole to pole.
GeoMesh sphere(float radius, int slices, int stacks);
// Icosahedron subdivided `levels` times, pushed onto the sphere.
GeoMesh geodesicSphere(float radius, int levels);
// Torus about the Y axis: ring radius `major`, tube radius `minor`.
GeoMesh torus(float major, float minor, int segments, int sides);
// (p, q) torus knot on a torus of ring radius `major` and `minor`, as a tube.
GeoMesh torusKnot(int p, int q, float major, float minor, float tubeRadius, int segments, int sides);
// Closed cylinder about the Y axis from y = 0 to y = height.
GeoMesh cylinder(float radius, float height, int segments);
// Cone about the Y axis, base at y = 0, apex at y = height.
GeoMesh cone(float radius, float height, int segments);
// Prism from `outline` (x, z points counter-clockwise seen from above, star-
// shaped about its centroid) from y = 0 to y = height, each side its own quad.
GeoMesh extrude(const std::vector<Vec2>& outline, float height);
// A flat ring (washer) between two outlines of equal point count (outer and
// inner, both counter-clockwise seen from above), from y = 0 to y = height.
GeoMesh extrudeRing(const std::vector<Vec2>& outer, const std::vector<Vec2>& inner, float height);
// Outline of a gear: `teeth` teeth between radius `root` and `tip`.
std::vector<Vec2> gearOutline(int teeth, float root, float tip);
// Outline of a regular polygon (a circle when `points` is large).
std::vector<Vec2> circleOutline(int points, float radius);
// Outline of a star with `points` tips.
std::vector<Vec2> starOutline(int points, float inner, float outer);

// --- Open structures -----------------------------------------------------------

// A flat grid in the x-z plane centred on the origin, facing up, with heights
// y = height(x, z); texture coordinates run 0..1 across it.
GeoMesh terrain(float width, float depth, int columns, int rows, const std::function<float(float x, float z)>& height);
// Straight thin struts (square section of side `thickness`) between the point
// pairs, drawn as beams.
GeoMesh struts(const std::vector<std::pair<Vec3, Vec3>>& segments, float thickness);
// The struts of a cubic lattice of n x n x n cells of `cell` size, centred.
GeoMesh lattice(int cells, float cell, float thickness);
