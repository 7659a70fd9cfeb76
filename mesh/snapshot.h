// SPDX-License-Identifier: GPL-3.0-or-later
// Immutable pictures of the whole mesh. A snapshot holds every field as a column of its own, in
// chunks, and shares with the snapshot before it every chunk whose bytes are the same: a change of
// selection costs a byte a face, not a copy of the mesh.
//
// Screen positions and edge tables are not in it; both are worked out anew. References are kept as
// indexes, so that it does not matter where the arrays lie.
#pragma once

#include "mesh/mesh.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace polyfab {

/// Some thousand values of one field. Where all are equal, one stands for all.
class Chunk {
  public:
    Chunk(const std::byte* from, std::size_t byteCount);
    ~Chunk();
    Chunk(const Chunk&) = delete;
    Chunk& operator=(const Chunk&) = delete;

    const std::byte* data() const { return bytes; }
    std::size_t size() const { return count; }

  private:
    std::byte* const bytes;
    const std::size_t count;
};

using Chunks = std::vector<std::shared_ptr<const Chunk>>;
using Column = std::shared_ptr<const Chunks>; ///< never null, and shared when nothing in it changed

struct Snapshot {
    static constexpr std::size_t arrayCount = 9;
    static constexpr std::size_t columnCount = 31;
    static constexpr std::int64_t chunkLength = 4096; ///< records

    struct Array {
        std::int32_t count, capacity;
        bool present; ///< false: null, as an empty one is, or one that a failed growth lost
        bool operator==(const Array&) const = default;
    };
    struct Current {
        std::int32_t vertex, texcoord, face;
        std::int16_t group, area, material, part;
        bool operator==(const Current&) const = default;
    };

    std::array<Array, arrayCount> arrays;
    std::array<Column, columnCount> columns;
    Current current;
    std::array<char, sizeof Mesh::mtllib> mtllib;
};

using SnapshotRef = std::shared_ptr<const Snapshot>;

/// The records of the array that can be looked at, and that the columns hold.
[[nodiscard]] std::int64_t lengthOf(const Snapshot::Array& array);

enum class ColumnKind { integer, real, record };

struct ColumnFacts {
    std::size_t array; ///< that it belongs to
    ColumnKind kind;
    std::size_t size;   ///< bytes of a value
    std::size_t target; ///< the array that its values are indexes into, or -1; arrayCount: none
};

[[nodiscard]] const std::array<ColumnFacts, Snapshot::columnCount>& columnFacts();

/// What may differ from the snapshot before. The less it is, the fewer arrays need be looked at;
/// those that are longer or shorter now are taken anyway.
enum class Changed {
    anything,
    facesOnly, ///< the faces with their groups, materials, areas and parts: no points and corners
    current,   ///< which vertex, face, group and so on are current
};

/// The mesh as it is now. `before` (or null) is the snapshot to share with, and is itself the
/// result when nothing is different. Linear, and without a difference no memory is taken. May throw
/// std::bad_alloc.
///
/// A reference that leads nowhere, as a corner of no face may hold, is kept as none.
[[nodiscard]] SnapshotRef takeSnapshot(const Mesh& mesh, const SnapshotRef& before,
                                       Changed changed = Changed::anything);

/// Whether the mesh has any points.
[[nodiscard]] bool hasPoints(const Snapshot& snapshot);

enum class Difference {
    none,
    scratch, ///< marks of the tools, uses of edges, room to grow
    content,
};

/// How a snapshot differs from the one that it was taken against.
[[nodiscard]] Difference differenceOf(const Snapshot& taken, const Snapshot& before);

/// Whether the mesh has more or fewer elements of some kind than the snapshot shows.
[[nodiscard]] bool countsDiffer(const Mesh& mesh, const Snapshot& snapshot);

/// Makes the mesh what `to` shows, every array in its order and with its capacity, in the tracked
/// store. `now` must show the mesh as it is: what both have in common is left where it stands. The
/// edge tables are released; screen positions have to be worked out anew. `changed` stays. False
/// after a message box when memory runs out: the mesh is as it was.
bool restoreSnapshot(Mesh& mesh, const Snapshot& to, const Snapshot& now);

/// Bytes that the chunks of all living snapshots take, each chunk counted once.
[[nodiscard]] std::size_t snapshotBytes();

} // namespace polyfab
