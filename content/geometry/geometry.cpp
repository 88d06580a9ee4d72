#include "content/geometry/geometry.h"

#include <cmath>
#include <map>
#include <numbers>
#include <tuple>

#include "base/fatal.h"

Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec3 operator*(Vec3 a, float s) { return {a.x * s, a.y * s, a.z * s}; }
Vec3 cross(Vec3 a, Vec3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
float dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
float length(Vec3 a) { return std::sqrt(dot(a, a)); }
Vec3 normalised(Vec3 a) {
    const float l = length(a);
    return l > 0.0f ? a * (1.0f / l) : Vec3{};
}

uint16_t GeoMesh::vertex(Vec3 position, Vec2 texCoord) {
    if (positions.size() >= 0xFFFF) fatalReport("KASKADE CONTENT", "a generated mesh outgrew 65535 vertices", 1);
    positions.push_back(position);
    texCoords.push_back(texCoord);
    return static_cast<uint16_t>(positions.size() - 1);
}

void GeoMesh::quad(uint16_t a, uint16_t b, uint16_t c, uint16_t d) {
    triangle(a, b, c, TDS_EDGE_AB | TDS_EDGE_BC);
    triangle(a, c, d, TDS_EDGE_BC | TDS_EDGE_CA);
}

void GeoMesh::triangle(uint16_t a, uint16_t b, uint16_t c, uint16_t edges) {
    triangles.push_back({a, b, c, edges});
}

void translate(GeoMesh& mesh, Vec3 offset) {
    for (Vec3& p : mesh.positions) p = p + offset;
}

void scale(GeoMesh& mesh, Vec3 factors) {
    for (Vec3& p : mesh.positions) p = {p.x * factors.x, p.y * factors.y, p.z * factors.z};
    if (factors.x * factors.y * factors.z < 0.0f) {
        for (GeoTriangle& t : mesh.triangles) {
            // Swapping b and c turns a-b into a-c (was c-a) and c-a into b-a (was a-b).
            const uint16_t ab = t.edges & TDS_EDGE_AB;
            const uint16_t ca = t.edges & TDS_EDGE_CA;
            t.edges = static_cast<uint16_t>((t.edges & TDS_EDGE_BC) | (ca ? TDS_EDGE_AB : 0) | (ab ? TDS_EDGE_CA : 0));
            std::swap(t.b, t.c);
        }
    }
}

namespace {

// Rotates (a, b) by `degrees` in the plane they span: a' = a cos - b sin.
void rotatePlane(GeoMesh& mesh, float degrees, float Vec3::*first, float Vec3::*second) {
    const double r = degrees * std::numbers::pi / 180.0;
    const float c = static_cast<float>(std::cos(r));
    const float s = static_cast<float>(std::sin(r));
    for (Vec3& p : mesh.positions) {
        const float a = p.*first;
        const float b = p.*second;
        p.*first = a * c - b * s;
        p.*second = a * s + b * c;
    }
}

}  // namespace

void rotateX(GeoMesh& mesh, float degrees) { rotatePlane(mesh, degrees, &Vec3::y, &Vec3::z); }
void rotateY(GeoMesh& mesh, float degrees) { rotatePlane(mesh, degrees, &Vec3::z, &Vec3::x); }
void rotateZ(GeoMesh& mesh, float degrees) { rotatePlane(mesh, degrees, &Vec3::x, &Vec3::y); }

void displace(GeoMesh& mesh, const std::function<Vec3(Vec3)>& f) {
    for (Vec3& p : mesh.positions) p = p + f(p);
}

void append(GeoMesh& mesh, const GeoMesh& part) {
    if (mesh.positions.size() + part.positions.size() > 0xFFFF) {
        fatalReport("KASKADE CONTENT", "a generated mesh outgrew 65535 vertices", 1);
    }
    const uint16_t base = static_cast<uint16_t>(mesh.positions.size());
    mesh.positions.insert(mesh.positions.end(), part.positions.begin(), part.positions.end());
    mesh.texCoords.insert(mesh.texCoords.end(), part.texCoords.begin(), part.texCoords.end());
    for (GeoTriangle t : part.triangles) {
        t.a = static_cast<uint16_t>(t.a + base);
        t.b = static_cast<uint16_t>(t.b + base);
        t.c = static_cast<uint16_t>(t.c + base);
        mesh.triangles.push_back(t);
    }
}

void setEdges(GeoMesh& mesh, uint16_t edges) {
    for (GeoTriangle& t : mesh.triangles) t.edges = edges;
}

void weld(GeoMesh& mesh, float tolerance) {
    using Cell = std::tuple<long, long, long>;
    std::map<Cell, uint16_t> firstAt;
    std::vector<uint16_t> remap(mesh.positions.size());
    GeoMesh welded;
    for (size_t i = 0; i < mesh.positions.size(); ++i) {
        const Vec3 p = mesh.positions[i];
        const Cell cell{std::lround(p.x / tolerance), std::lround(p.y / tolerance), std::lround(p.z / tolerance)};
        const auto found = firstAt.find(cell);
        if (found != firstAt.end()) {
            remap[i] = found->second;
        } else {
            remap[i] = welded.vertex(p, mesh.texCoords[i]);
            firstAt.emplace(cell, remap[i]);
        }
    }
    for (const GeoTriangle& t : mesh.triangles) {
        const uint16_t a = remap[t.a], b = remap[t.b], c = remap[t.c];
        if (a != b && b != c && c != a) welded.triangle(a, b, c, t.edges);
    }
    mesh = std::move(welded);
}

Vec3 centroid(const GeoMesh& mesh) {
    Vec3 sum;
    for (const Vec3& p : mesh.positions) sum = sum + p;
    return mesh.positions.empty() ? Vec3{} : sum * (1.0f / static_cast<float>(mesh.positions.size()));
}

GeoMesh parametricSurface(int columns, int rows, bool wrapColumns, bool wrapRows,
                          const std::function<Vec3(float s, float t)>& at) {
    GeoMesh mesh;
    const int across = wrapColumns ? columns : columns + 1;
    const int down = wrapRows ? rows : rows + 1;
    for (int j = 0; j < down; ++j) {
        for (int i = 0; i < across; ++i) {
            const float s = static_cast<float>(i) / static_cast<float>(columns);
            const float t = static_cast<float>(j) / static_cast<float>(rows);
            mesh.vertex(at(s, t), {s, t});
        }
    }
    const auto index = [&](int i, int j) {
        return static_cast<uint16_t>((j % down) * across + (i % across));
    };
    for (int j = 0; j < rows; ++j) {
        for (int i = 0; i < columns; ++i) {
            mesh.quad(index(i, j), index(i + 1, j), index(i + 1, j + 1), index(i, j + 1));
        }
    }
    return mesh;
}

GeoMesh lathe(const std::vector<Vec2>& profile, int segments) {
    const int rows = static_cast<int>(profile.size()) - 1;
    GeoMesh mesh = parametricSurface(segments, rows, true, false, [&](float s, float t) {
        const int row = std::min(static_cast<int>(std::lround(t * static_cast<float>(rows))), rows);
        const float phi = static_cast<float>(2.0 * std::numbers::pi) * s;
        const Vec2 p = profile[static_cast<size_t>(row)];
        return Vec3{p.u * std::cos(phi), p.v, -p.u * std::sin(phi)};
    });
    weld(mesh, 1e-4f);
    return mesh;
}

GeoMesh tube(const std::function<Vec3(float t)>& curve, int segments, int sides, float radius, bool closed) {
    // Frames carried along the curve: each normal is the previous one with its
    // component along the new tangent removed, so the tube does not twist.
    std::vector<Vec3> centres, normals, binormals;
    const int count = closed ? segments : segments + 1;
    for (int i = 0; i < count; ++i) centres.push_back(curve(static_cast<float>(i) / static_cast<float>(segments)));
    const auto tangentAt = [&](int i) {
        const int n = static_cast<int>(centres.size());
        const Vec3 next = closed ? centres[static_cast<size_t>((i + 1) % n)] : centres[static_cast<size_t>(std::min(i + 1, n - 1))];
        const Vec3 prev = closed ? centres[static_cast<size_t>((i + n - 1) % n)] : centres[static_cast<size_t>(std::max(i - 1, 0))];
        return normalised(next - prev);
    };
    Vec3 normal = normalised(cross(tangentAt(0), Vec3{0.0f, 1.0f, 0.0f}));
    if (length(normal) < 0.5f) normal = normalised(cross(tangentAt(0), Vec3{1.0f, 0.0f, 0.0f}));
    for (int i = 0; i < count; ++i) {
        const Vec3 t = tangentAt(i);
        normal = normalised(normal - t * dot(normal, t));
        normals.push_back(normal);
    }
    if (closed) {
        // Carried once around, the frame comes back turned about the first
        // tangent; spread that turn evenly so the tube joins without a seam.
        const Vec3 t0 = tangentAt(0);
        const Vec3 back = normalised(normal - t0 * dot(normal, t0));
        const float turn = std::atan2(dot(cross(normals[0], back), t0), dot(normals[0], back));
        for (int i = 0; i < count; ++i) {
            const Vec3 t = tangentAt(i);
            const float a = -turn * static_cast<float>(i) / static_cast<float>(count);
            const Vec3 n = normals[static_cast<size_t>(i)];
            normals[static_cast<size_t>(i)] = normalised(n * std::cos(a) + cross(t, n) * std::sin(a));
        }
    }
    for (int i = 0; i < count; ++i) binormals.push_back(cross(tangentAt(i), normals[static_cast<size_t>(i)]));
    return parametricSurface(segments, sides, closed, true, [&](float s, float t) {
        const int i = std::min(static_cast<int>(std::lround(s * static_cast<float>(segments))), count - 1) %
                      static_cast<int>(centres.size());
        const float psi = static_cast<float>(2.0 * std::numbers::pi) * t;
        const size_t k = static_cast<size_t>(i);
        return centres[k] + normals[k] * (radius * std::cos(psi)) - binormals[k] * (radius * std::sin(psi));
    });
}
