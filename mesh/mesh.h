// SPDX-License-Identifier: GPL-3.0-or-later
// The mesh record and its element records. Faces point at their first corner, corners at their
// point, normal and texture coordinate; groups, materials, areas and parts are named by index.
//
// Whatever adds an element may move its array: hold indices, not pointers, across such a call. The
// references inside the mesh are re-based by the growth itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace polyfab {

struct Point {
    double x, y, z;           ///< world position
    double sx, sy, sz;        ///< screen position: horizontal pixel, vertical pixel (down), depth
    std::uint8_t mark;        ///< scratch of the tools
    std::uint8_t highlighted; ///< set on one point at most
    std::uint8_t mark3;       ///< further scratch, copied with the point
    std::uint8_t onselected;  ///< 1: a corner of a selected face; see Mesh::markPointsOnSelected
};

struct Normal {
    double x, y, z;
};

struct TexCoord {
    double u, v;
    std::uint8_t spare;
    std::uint8_t onselected; ///< 1: used by a selected face; 1 when new
};

struct FaceCorner {
    Point* p;             ///< never null in a sound mesh
    Normal* d;            ///< or null
    TexCoord* t;          ///< or null
    std::uint8_t edgeuse; ///< faces on the edge to the next corner; 255: a bad edge
    std::uint8_t mark;    ///< scratch of the tools
};

struct Face {
    FaceCorner* q; ///< first corner; null: deleted
    std::int16_t n;
    std::int16_t mat;
    std::int16_t g;
    std::int16_t tma;
    std::int16_t prt;
    std::uint8_t kind; ///< 2 in every face
    std::uint8_t selected;
};

inline constexpr int nameSize = 64; ///< bytes of a name field, its NUL included

struct Group {
    char name[nameSize];
    std::uint8_t selected;
    std::uint8_t texture; ///< texture-map number, 0-7
};

struct Material {
    std::uint32_t color; ///< 0xRRGGBB
    std::uint32_t selected;
    char name[nameSize];
};

struct TextureMapArea {
    std::uint32_t selected;
};

struct Part {
    std::uint32_t selected;
};

/// The face that a corner belongs to and its place there; of a corner without a live face: noFace.
struct CornerFace {
    std::uint32_t face;
    std::uint16_t place;
};
inline constexpr std::uint32_t noFace = 0xffffffff;

/// An edge, kept with the lower-numbered of its two points.
struct Edge {
    std::int32_t high;   ///< the other point
    std::int32_t corner; ///< first one found on it, in the order of faces
    std::int32_t uses;   ///< sides of faces that lie on it
};

/// The edges of one point to points of the same or a higher number, as a span of Mesh::edges, in
/// the order in which they were found.
struct EdgeList {
    std::int32_t first;
    std::int32_t n;
};

/// Groups, materials, areas, parts and the corners of one face are counted in 16 bits.
inline constexpr int maxIndexed = 32767;

/// Colour of a material that nobody gave one.
inline constexpr std::uint32_t defaultColor = 0x808080;

/// The element number of `element` in `array`.
template <typename T>
[[nodiscard]] int indexIn(const T* array, const T* element) {
    return static_cast<int>(element - array);
}

struct Mesh {
    void* spare;
    Point* points;
    std::int32_t np, npmax;
    std::int32_t curvertex;   ///< -1: none
    std::int32_t curtexcoord; ///< -1: none
    FaceCorner* corners;
    std::int32_t nq, nqmax;
    Face* faces; ///< deleted ones included
    std::int32_t nf, nfmax;
    std::int32_t curface; ///< -1: none
    Group* groups;
    std::int32_t ng, ngmax;
    std::int16_t curgroup; ///< new faces go into it
    TextureMapArea* tmas;
    std::int32_t ntma, ntmamax;
    std::int16_t curtma;
    Material* materials;
    std::int32_t nmat, nmatmax;
    std::int16_t curmat; ///< new faces go into it
    Part* parts;
    std::int32_t nprt, nprtmax;
    std::int16_t curprt;
    Normal* normals;
    std::int32_t nd, ndmax;
    TexCoord* texcoords;
    std::int32_t nt, ntmax;
    std::uint8_t changed; ///< 1: there is something to save
    // Edge tables; see mesh/edges.h. All null unless they are built.
    CornerFace* cornerFace;
    EdgeList* pointEdges;
    std::uint8_t* cornerSameDir; ///< 1: the mate runs the edge the same way, 0: not, 255: no mate
    std::int32_t* cornerMate;    ///< corner on the neighbouring face, -1: none
    std::int32_t nqEdges;        ///< corners that the tables were built for
    Edge* edges;                 ///< the lists of all points, one behind the other
    char mtllib[1024];           ///< material library named by the OBJ file, "" for none

    Mesh() { clear(false); }
    ~Mesh() { releaseAll(); }
    Mesh(const Mesh&) = delete;
    Mesh& operator=(const Mesh&) = delete;

    /// Empties the record; with `release` its arrays are given back first.
    void clear(bool release);
    /// Exchanges everything.
    void swapWith(Mesh& other);
    /// Sets `changed` and gives back every array but the groups, whose block stays in the store.
    void releaseAll();

    // Growth: room for `want` elements, in steps of 4096; with `exact` the capacity also shrinks.
    // 1 on success. 0 after a message box: the array is then null and the mesh not to be used
    // until it is cleared. The references into an array that moved are re-based.
    [[nodiscard]] int growPoints(std::int64_t want, bool exact);
    [[nodiscard]] int growCorners(std::int64_t want, bool exact);
    [[nodiscard]] int growFaces(std::int64_t want, bool exact);
    [[nodiscard]] int growGroups(std::int64_t want, bool exact);
    [[nodiscard]] int growMaterials(std::int64_t want, bool exact);
    [[nodiscard]] int growTextureMapAreas(std::int64_t want, bool exact);
    [[nodiscard]] int growParts(std::int64_t want, bool exact);
    [[nodiscard]] int growNormals(std::int64_t want, bool exact);
    [[nodiscard]] int growTexCoords(std::int64_t want, bool exact);

    /// Makes a mesh whose growth failed fit for use again: without the array that is lost, and
    /// without points and faces if that was one they need. Otherwise does nothing.
    void settleLostArrays();

    // Insertion. Each gives the new element's index, or 0 when there was no room.
    /// (x, y, z) is a world position, or with `fromScreen` a screen position; the other of the two
    /// is worked out by the projection. The scratch marks are cleared.
    int addPoint(double x, double y, double z, bool fromScreen);
    /// The lowest point with exactly this world position, or a new one. NaN never matches.
    int findOrAddPoint(double x, double y, double z);
    int addNormal(double x, double y, double z);
    int addTexCoord(double u, double v);
    /// The lowest texture coordinate with exactly these values, or a new one.
    int findOrAddTexCoord(double u, double v);
    /// Neither sets `changed`: areas and parts are found anew, not saved.
    int addTextureMapArea();
    int addPart();

    // Names: trailing blanks and tabs do not count, and 63 bytes are kept. A view whose data() is
    // null is no name at all. At most 32,767 groups and materials: more are refused by a message.
    int addGroup(std::string_view name);
    /// The lowest group of that name as it would be stored, or a new one.
    int findOrAddGroup(std::string_view name);
    int addMaterial(std::uint32_t color, std::string_view name);
    /// The lowest material of that name, its colour left as it is, or a new one.
    int findOrAddMaterial(std::uint32_t color, std::string_view name);
    [[nodiscard]] const char* currentGroupName() const;
    [[nodiscard]] const char* currentMaterialName() const;

    // Faces. Null when there was no room (or more than 32,767 corners were asked for).
    /// A selected face with n cleared corners in the current group and material; makes the
    /// "default" group, the material, the area and the part that a first face needs.
    Face* newFace(int n);
    /// A face on these points (n pointers into `points`, fetched after `growPoints`), or with
    /// `list` null on none yet. `dropRepeats` leaves out a point that equals its forerunner and
    /// last points that equal the first; their corners stay unused in `corners`.
    Face* addFaceByPoints(Point* const* list, int n, bool dropRepeats);
    /// A face with copies of these corners (or of none, with `list` null). The list must not lie in
    /// `corners`, which may move.
    Face* addFaceByCorners(const FaceCorner* list, int n);
    /// Attributes of a new face with cleared corners; `q` and `n` must be set.
    void initFace(Face* face);

    // Derived marks.
    /// Works out `onselected` of every point.
    void markPointsOnSelected();
    /// Sets `highlighted` on this point only; -1: on none.
    void highlightPoint(int index);
};

/// The one mesh that the editor works on; made by createMesh, never replaced.
inline Mesh* OB = nullptr;

/// Makes OB, empty, in the store. Calls after the first do nothing.
void createMesh();
/// Releases OB and what releaseAll releases.
void destroyMesh();

} // namespace polyfab
