// SPDX-License-Identifier: GPL-3.0-or-later
// Many formats have no shared points: each face brings its own, or a seam of the normals parts
// them. Within a node equal positions become one point again, so that faces are joined at their
// edges.
#include "formats/exchange/import_files.h"
#include "formats/exchange/scenes.h"
#include "formats/exchange/unique_records.h"
#include "formats/exchange/unique_table.h"
#include "geometry/affine.h"
#include "mesh/mesh.h"

#include <assimp/config.h>

#include <algorithm>
#include <cmath>

namespace polyfab {

namespace {

double finite(double value) { return std::isfinite(value) ? value : 0; }

Vec3 vector(const aiVector3D& v) { return {finite(v.x), finite(v.y), finite(v.z)}; }

AffineMap mapOf(const aiMatrix4x4& m) {
    return {{{m.a1, m.a2, m.a3, m.a4}, {m.b1, m.b2, m.b3, m.b4}, {m.c1, m.c2, m.c3, m.c4}}};
}

/// How normals go along with the points: by the inverse transpose, which up to a factor is the
/// matrix of the cofactors.
struct NormalMap {
    explicit NormalMap(const AffineMap& points) {
        const auto& m = points.row;
        for (int i = 0; i < 3; ++i) {
            const double* const a = m[(i + 1) % 3];
            const double* const b = m[(i + 2) % 3];
            for (int k = 0; k < 3; ++k) {
                const int k1 = (k + 1) % 3;
                const int k2 = (k + 2) % 3;
                map.row[i][k] = a[k1] * b[k2] - a[k2] * b[k1];
                identity = identity && m[i][k] == (i == k ? 1 : 0);
            }
        }
        const double det =
            m[0][0] * map.row[0][0] + m[0][1] * map.row[0][1] + m[0][2] * map.row[0][2];
        mirrors = det < 0;
    }

    Vec3 operator()(const Vec3& normal) const {
        if (identity) return normal; // to the bit as in the file
        const Vec3 v = map(normal);
        const double length = std::hypot(v.x, v.y, v.z);
        if (length == 0 || !std::isfinite(length)) return normal;
        const double factor = (mirrors ? -1 : 1) / length;
        return {v.x * factor, v.y * factor, v.z * factor};
    }

    AffineMap map;
    bool identity = true;
    bool mirrors = false; ///< faces then show their other side
};

class SceneReader {
  public:
    SceneReader(const AssimpLibrary& library, const aiScene& source)
        : assimp(library), scene(source), materialOf(source.mNumMaterials, -1),
          embeddedOf(source.mNumTextures, -1) {}

    /// Goes over the tree of nodes, parents first.
    StreamTables read() {
        struct Entry {
            const aiNode* node;
            AffineMap map;
        };
        std::vector<Entry> stack = {{scene.mRootNode, mapOf(scene.mRootNode->mTransformation)}};
        while (!stack.empty() && tables.failure.empty()) {
            const Entry entry = stack.back();
            stack.pop_back();
            readNode(*entry.node, entry.map);
            for (unsigned i = entry.node->mNumChildren; i-- > 0;) {
                const aiNode* const child = entry.node->mChildren[i];
                stack.push_back({child, product(entry.map, mapOf(child->mTransformation))});
            }
        }
        if (tables.failure.empty() && tables.points.empty()) {
            tables.failure = "there is no mesh in it";
        }
        return std::move(tables);
    }

  private:
    /// What the meshes of one node share.
    struct Node {
        Node(StreamTables& tables, const AffineMap& pointMap)
            : points(tables.points), normals(tables.normals), texcoords(tables.texcoords),
              map(pointMap), normalMap(pointMap) {}
        UniqueTable<Vec3> points;
        UniqueTable<Vec3> normals;
        UniqueTable<StreamTexCoord> texcoords;
        const AffineMap& map;
        NormalMap normalMap;
    };

    void readNode(const aiNode& source, const AffineMap& map) {
        Node node(tables, map);
        std::string lastName;
        for (unsigned i = 0; i < source.mNumMeshes; ++i) {
            if (source.mMeshes[i] >= scene.mNumMeshes) continue;
            const aiMesh& mesh = *scene.mMeshes[source.mMeshes[i]];
            // The root stands for the file, and its name is not one that the user gave.
            const aiString& given = source.mParent == nullptr ? mesh.mName : source.mName;
            const std::string name = given.C_Str();
            if (i == 0 || name != lastName) tables.groups.push_back(name);
            lastName = name;
            readMesh(mesh, node);
        }
    }

    void readMesh(const aiMesh& mesh, Node& node) {
        if (mesh.mNumVertices == 0 || mesh.mVertices == nullptr) return;
        const std::int32_t material = materialIndex(mesh.mMaterialIndex);
        for (unsigned i = 0; i < mesh.mNumFaces; ++i)
            readFace(mesh, mesh.mFaces[i], material, node);
        if (mesh.mNumFaces > 0) return;
        for (unsigned i = 0; i < mesh.mNumVertices; ++i) point(mesh, i, node); // a cloud of points
    }

    std::int32_t point(const aiMesh& mesh, unsigned vertex, Node& node) {
        return node.points.findOrAdd(node.map(vector(mesh.mVertices[vertex])));
    }

    void readFace(const aiMesh& mesh, const aiFace& face, std::int32_t material, Node& node) {
        const unsigned n = face.mNumIndices;
        if (n > maxIndexed) tables.failure = "a face has more than 32767 corners";
        const bool sound = std::all_of(face.mIndices, face.mIndices + n,
                                       [&](unsigned i) { return i < mesh.mNumVertices; });
        if (n < 3 || !sound || !tables.failure.empty()) return;
        tables.faces.push_back({static_cast<std::int32_t>(n),
                                static_cast<std::int32_t>(tables.groups.size()) - 1, material});
        for (unsigned k = 0; k < n; ++k) {
            const unsigned vertex = face.mIndices[node.normalMap.mirrors ? n - 1 - k : k];
            StreamCorner corner{point(mesh, vertex, node), -1, -1};
            if (mesh.mNormals != nullptr) {
                corner.normal =
                    node.normals.findOrAdd(node.normalMap(vector(mesh.mNormals[vertex])));
            }
            if (mesh.mTextureCoords[0] != nullptr) {
                const Vec3 t = vector(mesh.mTextureCoords[0][vertex]);
                corner.texcoord = node.texcoords.findOrAdd({t.x, t.y});
            }
            tables.corners.push_back(corner);
        }
    }

    /// Enters the material when it is met first.
    std::int32_t materialIndex(unsigned number) {
        if (number >= scene.mNumMaterials) return defaultMaterial();
        std::int32_t& index = materialOf[number];
        if (index >= 0) return index;
        const aiMaterial& material = *scene.mMaterials[number];
        aiString name;
        aiColor4D color;
        static_cast<void>(assimp.aiGetMaterialString(&material, AI_MATKEY_NAME, &name));
        const bool colored = assimp.aiGetMaterialColor(&material, AI_MATKEY_COLOR_DIFFUSE, &color)
                             == aiReturn_SUCCESS;
        index = addMaterial(name.C_Str(), colored ? packed(color) : defaultColor);
        readLook(material);
        return index;
    }

    /// The look of the material that was added last.
    void readLook(const aiMaterial& material) {
        StreamLook& look = tables.looks.back();
        ai_real opacity = 1;
        unsigned one = 1;
        if (assimp.aiGetMaterialFloatArray(&material, AI_MATKEY_OPACITY, &opacity, &one)
            == aiReturn_SUCCESS) {
            look.opacity = finite(opacity);
        }
        for (const auto kind : {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE}) {
            aiString path;
            static_cast<void>(
                assimp.aiGetMaterialString(&material, AI_MATKEY_TEXTURE(kind, 0), &path));
            if (path.length == 0) continue;
            look.embedded = embeddedIndex(path.C_Str());
            tables.pictures.back() = look.embedded < 0 ? path.C_Str() : nameOf(path.C_Str());
            return readPlacing(material, kind, look);
        }
    }

    /// Moved and stretched; a picture that is turned is not.
    void readPlacing(const aiMaterial& material, aiTextureType kind, StreamLook& look) {
        ai_real numbers[5] = {0, 0, 1, 1, 0};
        unsigned count = 5;
        static_cast<void>(assimp.aiGetMaterialFloatArray(&material, AI_MATKEY_UVTRANSFORM(kind, 0),
                                                         numbers, &count));
        look.uOffset = numbers[0];
        look.vOffset = numbers[1];
        look.uScale = numbers[2];
        look.vScale = numbers[3];
    }

    /// The number of the texture that is in the scene, or that it has under this name; else the
    /// count of them.
    unsigned textureNumber(const std::string& path) const {
        if (path[0] == '*') return static_cast<unsigned>(std::atoi(path.c_str() + 1));
        unsigned number = 0;
        while (number < scene.mNumTextures
               && nameOf(scene.mTextures[number]->mFilename.C_Str()) != nameOf(path)) {
            ++number;
        }
        return number;
    }

    /// Its place among the embedded ones, entered when it is met first; -1: it is none of them.
    std::int64_t embeddedIndex(const std::string& path) {
        const unsigned number = textureNumber(path);
        if (number >= scene.mNumTextures) return -1;
        std::int64_t& index = embeddedOf[number];
        if (index < 0) {
            index = std::ssize(tables.embedded);
            tables.embedded.push_back(fileOf(*scene.mTextures[number]));
        }
        return index;
    }

    static std::string nameOf(const std::string& path) {
        return path.substr(path.find_last_of("/\\") + 1);
    }

    /// As a picture file. Plain pixels become a TGA file, which has them as they are.
    static std::string fileOf(const aiTexture& texture) {
        const char* const bytes = reinterpret_cast<const char*>(texture.pcData);
        if (texture.mHeight == 0) return {bytes, texture.mWidth};
        constexpr unsigned most = 0xFFFF;
        if (texture.mWidth > most || texture.mHeight > most) return "";
        std::string file("\0\0\2\0\0\0\0\0\0\0\0\0", 12);
        for (const unsigned side : {texture.mWidth, texture.mHeight}) {
            file += {static_cast<char>(side), static_cast<char>(side >> 8)};
        }
        file += "\x20\x28"; // 32 bits, eight of them alpha, rows from the top
        return file.append(bytes, sizeof(aiTexel) * texture.mWidth * texture.mHeight);
    }

    std::int32_t defaultMaterial() {
        if (noMaterial < 0) noMaterial = addMaterial("", defaultColor);
        return noMaterial;
    }

    std::int32_t addMaterial(const std::string& name, std::uint32_t color) {
        tables.materials.push_back(name);
        tables.colors.push_back(color);
        tables.looks.emplace_back();
        tables.pictures.emplace_back();
        return static_cast<std::int32_t>(tables.materials.size()) - 1;
    }

    static std::uint32_t packed(const aiColor4D& color) {
        std::uint32_t value = 0;
        for (const float part : {color.r, color.g, color.b}) {
            const double clamped = std::clamp(finite(part), 0.0, 1.0);
            value = value << 8 | static_cast<std::uint32_t>(std::lround(clamped * 255));
        }
        return value;
    }

    const AssimpLibrary& assimp;
    const aiScene& scene;
    StreamTables tables;
    std::vector<std::int32_t> materialOf; ///< the scene's material -> the table's, -1: not met yet
    std::vector<std::int64_t> embeddedOf; ///< the same of textures and embedded pictures
    std::int32_t noMaterial = -1;
};

} // namespace

StreamTables importScene(const AssimpLibrary& assimp, const std::string& path,
                         void (*reads)(std::uint64_t bytes)) {
    StreamTables tables;
    aiPropertyStore* const settings = assimp.aiCreatePropertyStore();
    // Otherwise each FBX pivot is a node more, with a name that nobody gave it.
    assimp.aiSetImportPropertyInteger(settings, AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, 0);
    ImportFiles files(path, reads);
    const aiScene* const scene =
        assimp.aiImportFileExWithProperties(path.c_str(), 0, files.operations(), settings);
    if (scene != nullptr && scene->mRootNode != nullptr) {
        tables = SceneReader(assimp, *scene).read();
    } else {
        tables.failure = assimp.aiGetErrorString();
        if (tables.failure.empty()) tables.failure = "there is not enough memory, or it is damaged";
    }
    tables.notes = files.notes();
    return tables;
}

} // namespace polyfab
