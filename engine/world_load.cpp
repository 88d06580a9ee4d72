// World::load: reads a .3ds entry and prepares the meshes it added.
#include "engine/loader3ds.h"
#include "engine/world.h"
#include "resources/library.h"

// Links, normals, centre and materials of one new mesh, then its vertex
// positions made relative to its centre (normals were taken on the positions
// as read, and `centre` keeps their mean).
static void prepareMesh(World& world, MeshObject& mesh) {
    mesh.linkFaceVertices();
    mesh.computeNormals();
    mesh.computeCentre();
    world.bindMaterials(mesh);
    for (int32_t i = 0; i < mesh.vertexCount; ++i) {
        Vector& position = mesh.vertices[i].position;
        position.x -= mesh.centre.x;
        position.y -= mesh.centre.y;
        position.z -= mesh.centre.z;
    }
}

void World::loadFromFile(FILE* file) {
    const int32_t first = meshCount;
    {
        Loader3ds loader;
        loader.world = this;
        loader.parse(file);
    }
    for (int32_t i = first; i < meshCount; ++i) {
        prepareMesh(*this, *meshes[i]);
    }
    camera = cameraCount > 0 ? cameras[0] : nullptr;
}

void World::load(const char* entryName, Library& library) {
    library.seekEntry(entryName);
    loadFromFile(library.file);
}
