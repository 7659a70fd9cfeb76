// SPDX-License-Identifier: GPL-3.0-or-later
// Builds a scene of plain records. Nothing of it is released: the process ends after the export.
#include "formats/exchange/export_files.h"
#include "formats/exchange/export_losses.h"
#include "formats/exchange/scenes.h"
#include "formats/exchange/unique_table.h"
#include "picture/read_image.h"

#include <assimp/postprocess.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <string_view>

namespace polyfab {

static bool operator==(const StreamCorner& a, const StreamCorner& b) {
    return a.point == b.point && a.texcoord == b.texcoord && a.normal == b.normal;
}

static std::uint64_t hashOf(const StreamCorner& corner) {
    return hashOfNumbers(corner.point, corner.texcoord, corner.normal);
}

namespace {

/// Records with all bits 0, as a C program would make them: their constructors are in the library,
/// which is not linked.
template <typename T>
T* zeroed(std::size_t count = 1) {
    // NOLINTNEXTLINE(bugprone-sizeof-expression): T may well be a pointer
    const std::size_t bytes = count * sizeof(T);
    return static_cast<T*>(std::memset(::operator new(bytes), 0, bytes));
}

unsigned countOf(const auto& list) { return static_cast<unsigned>(list.size()); }

template <typename T>
T* copied(const std::vector<T>& list) {
    T* const copy = zeroed<T>(list.size());
    std::copy(list.begin(), list.end(), copy);
    return copy;
}

void set(aiString& string, std::string_view text) {
    string.length = static_cast<ai_uint32>(text.copy(string.data, sizeof string.data - 1));
}

aiVector3D vector(const Vec3& v) {
    return {static_cast<ai_real>(v.x), static_cast<ai_real>(v.y), static_cast<ai_real>(v.z)};
}

aiMaterialProperty* property(const char* key, aiPropertyTypeInfo type, std::string_view data,
                             aiTextureType ofTexture = aiTextureType_NONE) {
    auto* const made = zeroed<aiMaterialProperty>();
    set(made->mKey, key);
    made->mType = type;
    made->mSemantic = ofTexture;
    made->mDataLength = countOf(data);
    made->mData = zeroed<char>(data.size());
    data.copy(made->mData, data.size());
    return made;
}

std::string_view bytesOf(const auto& record) {
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

/// A text as a property has it: its length before it, a NUL behind.
std::string textData(std::string_view text) {
    const std::uint32_t length = countOf(text);
    return std::string(bytesOf(length)) + std::string(text) + '\0';
}

/// `picture` is its file, or "*" and the number of a texture of the scene; "": none.
aiMaterial* material(std::string_view name, std::uint32_t color, double opacity,
                     std::string_view picture) {
    const auto part = [&](int shift) { return static_cast<float>((color >> shift) & 0xFF) / 255; };
    const float diffuse[4] = {part(16), part(8), part(0), 1};
    const auto share = static_cast<float>(opacity);
    std::vector<aiMaterialProperty*> properties = {
        property("?mat.name", aiPTI_String, textData(name)),
        property("$clr.diffuse", aiPTI_Float, bytesOf(diffuse)),
        property("$clr.base", aiPTI_Float, bytesOf(diffuse))};
    if (opacity != 1) properties.push_back(property("$mat.opacity", aiPTI_Float, bytesOf(share)));
    if (!picture.empty()) {
        properties.push_back(
            property("$tex.file", aiPTI_String, textData(picture), aiTextureType_DIFFUSE));
    }
    auto* const made = zeroed<aiMaterial>();
    made->mProperties = copied(properties);
    made->mNumProperties = made->mNumAllocated = countOf(properties);
    return made;
}

/// A picture file in the scene.
aiTexture* texture(std::string_view bytes) {
    auto* const made = zeroed<aiTexture>();
    made->mWidth = countOf(bytes);
    auto* const data = zeroed<char>(bytes.size() + sizeof(aiTexel));
    bytes.copy(data, bytes.size());
    made->pcData = reinterpret_cast<aiTexel*>(data);
    const std::string_view kind = bytes.starts_with(jpegHead) ? "jpg" : "png";
    kind.copy(made->achFormatHint, kind.size());
    return made;
}

unsigned primitiveType(std::int32_t corners) {
    constexpr unsigned types[] = {0, aiPrimitiveType_POINT, aiPrimitiveType_LINE,
                                  aiPrimitiveType_TRIANGLE};
    return corners < std::ssize(types) ? types[corners] : unsigned{aiPrimitiveType_POLYGON};
}

class SceneMaker {
  public:
    explicit SceneMaker(const StreamView& view) : mesh(view) {}

    const aiScene* make() {
        auto* const root = zeroed<aiNode>();
        set(root->mName, "polyfab");
        root->mTransformation = aiMatrix4x4();
        for (const auto& [piece, faces] : pieces()) {
            nodeOf(piece.first, *root).push_back(countOf(meshes));
            meshes.push_back(makeMesh(faces, piece.second));
        }
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            nodes[i]->mMeshes = copied(meshesOf[i]);
            nodes[i]->mNumMeshes = countOf(meshesOf[i]);
        }
        root->mChildren = copied(nodes);
        root->mNumChildren = countOf(nodes);
        std::vector<aiMaterial*> materials;
        for (std::size_t i = 0; i < mesh.materials.size(); ++i) {
            const StreamLook& look = mesh.looks[i];
            const std::string picture = look.embedded < 0 ? std::string(mesh.pictures[i])
                                                          : "*" + std::to_string(look.embedded);
            materials.push_back(material(mesh.materials[i], mesh.colors[i], look.opacity, picture));
        }
        std::vector<aiTexture*> textures;
        for (const std::string_view bytes : mesh.embedded) textures.push_back(texture(bytes));
        auto* const scene = zeroed<aiScene>();
        scene->mRootNode = root;
        scene->mMetaData = zeroed<aiMetadata>(); // some exporters look without asking
        scene->mMeshes = copied(meshes);
        scene->mNumMeshes = countOf(meshes);
        scene->mMaterials = copied(materials);
        scene->mNumMaterials = countOf(materials);
        scene->mTextures = copied(textures);
        scene->mNumTextures = countOf(textures);
        return scene;
    }

  private:
    struct FaceAt {
        const StreamFace* face;
        const StreamCorner* corners;
    };
    using Pieces = std::map<std::pair<std::int32_t, std::int32_t>, std::vector<FaceAt>>;

    /// The faces by group and material.
    Pieces pieces() const {
        Pieces sorted;
        const StreamCorner* corners = mesh.corners.data();
        for (const StreamFace& face : mesh.faces) {
            sorted[{face.group, face.material}].push_back({&face, corners});
            corners += face.corners;
        }
        return sorted;
    }

    /// The meshes of the group's node, which the first call for a group makes.
    std::vector<unsigned>& nodeOf(std::int32_t group, aiNode& root) {
        if (group != lastGroup) {
            auto* const node = zeroed<aiNode>();
            set(node->mName, mesh.groups[static_cast<std::size_t>(group)]);
            node->mTransformation = aiMatrix4x4();
            node->mParent = &root;
            nodes.push_back(node);
            meshesOf.emplace_back();
            lastGroup = group;
        }
        return meshesOf.back();
    }

    aiMesh* makeMesh(const std::vector<FaceAt>& list, std::int32_t materialNumber) const {
        std::vector<StreamCorner> vertices;
        UniqueTable<StreamCorner> unique(vertices);
        auto* const made = zeroed<aiMesh>();
        made->mFaces = zeroed<aiFace>(list.size());
        made->mNumFaces = countOf(list);
        made->mMaterialIndex = static_cast<unsigned>(materialNumber);
        for (std::size_t i = 0; i < list.size(); ++i) {
            const std::int32_t n = list[i].face->corners;
            std::vector<unsigned> indices;
            for (std::int32_t k = 0; k < n; ++k) {
                indices.push_back(static_cast<unsigned>(unique.findOrAdd(list[i].corners[k])));
            }
            made->mFaces[i].mNumIndices = countOf(indices);
            made->mFaces[i].mIndices = copied(indices);
            made->mPrimitiveTypes |= primitiveType(n);
        }
        set(made->mName, mesh.groups[static_cast<std::size_t>(lastGroup)]);
        fillVertices(*made, vertices);
        return made;
    }

    /// A mesh of a scene has a normal at each vertex or none at all, and so with texture
    /// coordinates. Where only some have a normal the mesh gets none, as a wrong one would show.
    void fillVertices(aiMesh& made, const std::vector<StreamCorner>& vertices) const {
        const bool normals = std::all_of(vertices.begin(), vertices.end(),
                                         [](const StreamCorner& c) { return c.normal >= 0; });
        const bool texcoords = std::any_of(vertices.begin(), vertices.end(),
                                           [](const StreamCorner& c) { return c.texcoord >= 0; });
        const std::size_t n = vertices.size();
        made.mNumVertices = countOf(vertices);
        made.mVertices = zeroed<aiVector3D>(n);
        if (normals) made.mNormals = zeroed<aiVector3D>(n);
        if (texcoords) made.mTextureCoords[0] = zeroed<aiVector3D>(n);
        if (texcoords) made.mNumUVComponents[0] = 2;
        for (std::size_t i = 0; i < n; ++i) {
            const StreamCorner& corner = vertices[i];
            made.mVertices[i] = vector(mesh.points[static_cast<std::size_t>(corner.point)]);
            if (normals) {
                made.mNormals[i] = vector(mesh.normals[static_cast<std::size_t>(corner.normal)]);
            }
            if (corner.texcoord < 0) continue;
            const StreamTexCoord& t = mesh.texcoords[static_cast<std::size_t>(corner.texcoord)];
            made.mTextureCoords[0][i] = vector({t.u, t.v, 0});
        }
    }

    const StreamView& mesh;
    std::vector<aiMesh*> meshes;
    std::vector<aiNode*> nodes;
    std::vector<std::vector<unsigned>> meshesOf; ///< of each node
    std::int32_t lastGroup = -1;
};

struct Preferred {
    std::string_view suffix;
    std::string_view format;
};

/// Where the library's first format of a suffix is not the best: binary files keep every bit of the
/// coordinates, but its binary FBX files cannot be read again, not even by itself.
constexpr Preferred preferred[] = {{"stl", "stlb"}, {"ply", "plyb"}, {"fbx", "fbxa"}};

/// The library's exporter of such files opens their folder in their place.
constexpr std::string_view neverWritten = "pbrt";

/// The library's name of the format of that suffix; null: it has none.
const char* formatOf(const AssimpLibrary& assimp, std::string_view suffix) {
    const char* found = nullptr;
    if (suffix == neverWritten) return found;
    for (std::size_t i = 0; i < assimp.aiGetExportFormatCount(); ++i) {
        const aiExportFormatDesc& format = *assimp.aiGetExportFormatDescription(i);
        if (suffix != format.fileExtension) continue;
        const bool better =
            std::any_of(std::begin(preferred), std::end(preferred), [&](const Preferred& row) {
                return row.suffix == suffix && row.format == format.id;
            });
        if (found == nullptr || better) found = format.id;
    }
    return found;
}

} // namespace

std::string exportScene(const AssimpLibrary& assimp, const StreamView& mesh,
                        const std::string& path) {
    if (mesh.faces.empty()) return "there is no face to write";
    std::string suffix = std::filesystem::path(path).extension().string();
    if (suffix.size() < 2) return "its name has no suffix that could name a format";
    suffix.erase(0, 1);
    for (char& c : suffix) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    }
    const char* const format = formatOf(assimp, suffix);
    if (format == nullptr) return "there is no exporter for files that end in ." + suffix;
    const unsigned steps = needsTriangles(path) ? unsigned{aiProcess_Triangulate} : 0U;
    ExportFiles files;
    const aiReturn result = assimp.aiExportSceneEx(SceneMaker(mesh).make(), format, path.c_str(),
                                                   files.operations(), steps);
    if (files.failed() || !roomIsLeft(path)) return "there is no room for temporary files";
    if (result == aiReturn_SUCCESS) return "";
    const std::string reason = assimp.aiGetErrorString();
    return reason.empty() ? "the exporter gives no reason" : reason;
}

} // namespace polyfab
