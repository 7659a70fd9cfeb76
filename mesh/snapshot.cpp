// SPDX-License-Identifier: GPL-3.0-or-later
// What a snapshot holds is a list of types: each array of the mesh with its columns. Taking one
// goes over an array chunk by chunk, and over all columns while the chunk's records are in the
// processor's cache; values are gathered into one small buffer, so that what has not changed
// touches no new memory.
#include "mesh/snapshot.h"

#include "mesh/chunk_memory.h"
#include "mesh/edges.h"
#include "mesh/progress.h"
#include "mesh/store.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

namespace polyfab {
namespace {

constexpr std::int64_t chunkLength = Snapshot::chunkLength;

std::atomic<std::size_t> liveBytes = 0;

/// The record and the type of a member.
template <typename T, typename R>
R recordOf(T R::*);
template <typename T, typename R>
T valueOf(T R::*);

// The kinds of columns. `scratch` ones tell nothing that a user would call a change.

template <auto member, bool isScratch = false>
struct Field {
    using Record = decltype(recordOf(member));
    using Value = decltype(valueOf(member));
    static constexpr bool scratch = isScratch;
    static constexpr std::size_t target = Snapshot::arrayCount; ///< refers to no array
    static Value get(const Mesh&, const Record& record) { return record.*member; }
    static void put(const Mesh&, Record& record, Value value) { record.*member = value; }
};

template <auto member>
using Scratch = Field<member, true>;

/// A pointer into the array `array` of the mesh, which is the one of number `number` here.
template <auto member, auto array, auto capacity, std::size_t number>
struct Reference {
    using Record = decltype(recordOf(member));
    using Value = std::int32_t;
    static constexpr bool scratch = false;
    static constexpr std::size_t target = number;
    static Value get(const Mesh& mesh, const Record& record) {
        // Not a difference of pointers: this one may lead nowhere.
        const auto from = reinterpret_cast<std::uintptr_t>(mesh.*array);
        const auto bytes = reinterpret_cast<std::uintptr_t>(record.*member) - from;
        constexpr std::uintptr_t size = sizeof *(mesh.*array);
        // A room of 0 records turns null into none where the array is null as well.
        const auto room = static_cast<std::uintptr_t>(from != 0 ? mesh.*capacity : 0);
        return bytes < room * size ? static_cast<Value>(bytes / size) : -1;
    }
    static void put(const Mesh& mesh, Record& record, Value value) {
        record.*member = value < 0 ? nullptr : mesh.*array + value;
    }
};

/// The record as it is; it must be without gaps.
template <typename T>
struct Whole {
    using Record = T;
    using Value = T;
    static_assert(std::has_unique_object_representations_v<T>);
    static constexpr bool scratch = false;
    static constexpr std::size_t target = Snapshot::arrayCount;
    static const T& get(const Mesh&, const T& record) { return record; }
    static void put(const Mesh&, T& record, const T& value) { record = value; }
};

template <auto arrayMember, auto countMember, auto capacityMember, typename... ColumnTypes>
struct ArrayOf {
    using Record = std::remove_pointer_t<decltype(valueOf(arrayMember))>;
    static constexpr auto array = arrayMember;
    static constexpr auto count = countMember;
    static constexpr auto capacity = capacityMember;
    static constexpr std::size_t columns = sizeof...(ColumnTypes);
    /// Calls `act` with each column and its number in the snapshot, from `first` on.
    template <typename Act>
    static void eachColumn(std::size_t first, Act act) {
        (act.template operator()<ColumnTypes>(first++), ...);
    }
};

template <typename... ArrayTypes>
struct ListOf {
    static constexpr std::size_t arrays = sizeof...(ArrayTypes);
    static constexpr std::size_t columns = (ArrayTypes::columns + ...);
    /// Calls `act` with each array, its number, and the number of its first column.
    template <typename Act>
    static void each(Act act) {
        std::size_t number = 0;
        std::size_t first = 0;
        ((act.template operator()<ArrayTypes>(number++, first), first += ArrayTypes::columns), ...);
    }
};

using Arrays =
    ListOf<ArrayOf<&Mesh::points, &Mesh::np, &Mesh::npmax, Field<&Point::x>, Field<&Point::y>,
                   Field<&Point::z>, Scratch<&Point::mark>, Scratch<&Point::highlighted>,
                   Scratch<&Point::mark3>, Scratch<&Point::onselected>>,
           ArrayOf<&Mesh::normals, &Mesh::nd, &Mesh::ndmax, Field<&Normal::x>, Field<&Normal::y>,
                   Field<&Normal::z>>,
           ArrayOf<&Mesh::texcoords, &Mesh::nt, &Mesh::ntmax, Field<&TexCoord::u>,
                   Field<&TexCoord::v>, Scratch<&TexCoord::spare>, Scratch<&TexCoord::onselected>>,
           ArrayOf<&Mesh::corners, &Mesh::nq, &Mesh::nqmax,
                   Reference<&FaceCorner::p, &Mesh::points, &Mesh::npmax, 0>,
                   Reference<&FaceCorner::d, &Mesh::normals, &Mesh::ndmax, 1>,
                   Reference<&FaceCorner::t, &Mesh::texcoords, &Mesh::ntmax, 2>,
                   Scratch<&FaceCorner::edgeuse>, Scratch<&FaceCorner::mark>>,
           ArrayOf<&Mesh::faces, &Mesh::nf, &Mesh::nfmax,
                   Reference<&Face::q, &Mesh::corners, &Mesh::nqmax, 3>, Field<&Face::n>,
                   Field<&Face::mat>, Field<&Face::g>, Field<&Face::tma>, Field<&Face::prt>,
                   Field<&Face::kind>, Field<&Face::selected>>,
           ArrayOf<&Mesh::groups, &Mesh::ng, &Mesh::ngmax, Whole<Group>>,
           ArrayOf<&Mesh::materials, &Mesh::nmat, &Mesh::nmatmax, Whole<Material>>,
           ArrayOf<&Mesh::tmas, &Mesh::ntma, &Mesh::ntmamax, Whole<TextureMapArea>>,
           ArrayOf<&Mesh::parts, &Mesh::nprt, &Mesh::nprtmax, Whole<Part>>>;

static_assert(Arrays::arrays == Snapshot::arrayCount);
static_assert(Arrays::columns == Snapshot::columnCount);

template <typename Value>
constexpr ColumnKind kindOf() {
    if (std::is_integral_v<Value>) return ColumnKind::integer;
    return std::is_floating_point_v<Value> ? ColumnKind::real : ColumnKind::record;
}

std::array<ColumnFacts, Snapshot::columnCount> listFacts() {
    std::array<ColumnFacts, Snapshot::columnCount> facts{};
    Arrays::each([&]<typename Each>(std::size_t number, std::size_t first) {
        Each::eachColumn(first, [&]<typename ColumnType>(std::size_t column) {
            using Value = typename ColumnType::Value;
            facts[column] = {number, kindOf<Value>(), sizeof(Value), ColumnType::target};
        });
    });
    return facts;
}

std::int64_t lengthOfChunk(std::int64_t length, std::int64_t start) {
    return std::min(chunkLength, length - start);
}

/// The chunk with these values: the one of the snapshot before, if it has the same.
std::shared_ptr<const Chunk> chunkOf(const std::byte* values, std::size_t size, std::size_t each,
                                     const Chunks* before, std::size_t place) {
    const bool allEqual = std::memcmp(values, values + each, size - each) == 0;
    const std::size_t kept = allEqual ? each : size;
    if (before != nullptr && place < before->size()) {
        const std::shared_ptr<const Chunk>& old = (*before)[place];
        if (old->size() == kept && std::memcmp(old->data(), values, kept) == 0) return old;
    }
    return std::make_shared<const Chunk>(values, kept);
}

class Taker {
  public:
    Taker(const Mesh& ofMesh, const Snapshot* snapshotBefore, Changed whatChanged)
        : mesh(ofMesh), before(snapshotBefore), changed(whatChanged) {}

    Snapshot take() {
        Snapshot taken{};
        taken.current = {mesh.curvertex, mesh.curtexcoord, mesh.curface, mesh.curgroup,
                         mesh.curtma,    mesh.curmat,      mesh.curprt};
        std::copy(std::begin(mesh.mtllib), std::end(mesh.mtllib), taken.mtllib.begin());
        Arrays::each([&]<typename Each>(std::size_t number, std::size_t first) {
            taken.arrays[number] = {mesh.*Each::count, mesh.*Each::capacity,
                                    mesh.*Each::array != nullptr};
            if (isAsBefore<Each>(taken.arrays[number], number)) {
                std::copy_n(before->columns.begin() + first, Each::columns,
                            taken.columns.begin() + first);
                return;
            }
            takeArray<Each>(lengthOf(taken.arrays[number]), first);
            for (std::size_t i = first; i < first + Each::columns; ++i) {
                taken.columns[i] = finished(i);
            }
        });
        return taken;
    }

  private:
    /// Whether the array need not be looked at. What can be selected may be another.
    template <typename Each>
    bool isAsBefore(const Snapshot::Array& array, std::size_t number) const {
        constexpr bool selectable = requires(typename Each::Record record) { record.selected; };
        const bool looksAt =
            selectable ? changed != Changed::current : changed == Changed::anything;
        return !looksAt && before != nullptr && before->arrays[number] == array;
    }

    const Chunks* chunksBefore(std::size_t column) const {
        return before != nullptr ? before->columns[column].get() : nullptr;
    }

    template <typename Each>
    void takeArray(std::int64_t length, std::size_t first) {
        WorkCounter done;
        for (std::int64_t start = 0; start < length; start += chunkLength) {
            const auto* const records = mesh.*Each::array + start;
            const std::int64_t n = lengthOfChunk(length, start);
            Each::eachColumn(first, [&]<typename ColumnType>(std::size_t column) {
                takeChunk<ColumnType>(records, n, column);
            });
            done.step(n);
        }
    }

    template <typename ColumnType>
    void takeChunk(const typename ColumnType::Record* records, std::int64_t n, std::size_t column) {
        using Value = typename ColumnType::Value;
        auto* const values = reinterpret_cast<Value*>(buffer.get());
        for (std::int64_t i = 0; i < n; ++i) values[i] = ColumnType::get(mesh, records[i]);
        Chunks& made = chunks[column];
        made.push_back(chunkOf(buffer.get(), static_cast<std::size_t>(n) * sizeof(Value),
                               sizeof(Value), chunksBefore(column), made.size()));
    }

    Column finished(std::size_t column) {
        const Chunks* const old = chunksBefore(column);
        if (old != nullptr && *old == chunks[column]) return before->columns[column];
        return std::make_shared<const Chunks>(std::move(chunks[column]));
    }

    static constexpr std::size_t largest = std::max(sizeof(Material), sizeof(Group));

    const Mesh& mesh;
    const Snapshot* before;
    Changed changed;
    std::array<Chunks, Snapshot::columnCount> chunks;
    std::unique_ptr<std::byte[]> buffer =
        std::make_unique_for_overwrite<std::byte[]>(chunkLength * largest);
};

bool equal(const Snapshot& a, const Snapshot& b) {
    return a.arrays == b.arrays && a.columns == b.columns && a.current == b.current
           && a.mtllib == b.mtllib;
}

/// Blocks for the arrays that have to get another one, null for the others.
class FreshBlocks {
  public:
    FreshBlocks() = default;
    ~FreshBlocks() {
        for (void*& block : blocks) farfreeBlock(&block);
    }
    FreshBlocks(const FreshBlocks&) = delete;
    FreshBlocks& operator=(const FreshBlocks&) = delete;

    /// False when memory runs out.
    bool allocate(const Snapshot& to, const Snapshot& now) {
        bool enough = true;
        Arrays::each([&]<typename Each>(std::size_t number, std::size_t) {
            const Snapshot::Array& array = to.arrays[number];
            replaced[number] = array.present != now.arrays[number].present
                               || array.capacity != now.arrays[number].capacity;
            if (!replaced[number] || !array.present || !enough) return;
            const auto room = static_cast<std::size_t>(array.capacity);
            blocks[number] = farmalloc(room * sizeof(typename Each::Record));
            enough = blocks[number] != nullptr;
        });
        return enough;
    }

    bool replaces(std::size_t number) const { return number < replaced.size() && replaced[number]; }
    void* hand(std::size_t number) { return std::exchange(blocks[number], nullptr); }

  private:
    std::array<void*, Snapshot::arrayCount> blocks{};
    std::array<bool, Snapshot::arrayCount> replaced{};
};

template <typename ColumnType>
void putChunk(const Mesh& mesh, typename ColumnType::Record* records, std::int64_t n,
              const Chunk& chunk) {
    using Value = typename ColumnType::Value;
    const auto* const values = reinterpret_cast<const Value*>(chunk.data());
    const std::int64_t step = chunk.size() == sizeof(Value) ? 0 : 1;
    for (std::int64_t i = 0; i < n; ++i) ColumnType::put(mesh, records[i], values[i * step]);
}

/// Writes a column of so many records. The first `known` of them hold what `now` shows: they are
/// left alone where that is the same chunk.
template <typename ColumnType>
void putColumn(const Mesh& mesh, typename ColumnType::Record* records, std::int64_t length,
               const Chunks& to, const Chunks& now, std::int64_t known) {
    WorkCounter done;
    for (std::int64_t start = 0; start < length; start += chunkLength) {
        const auto place = static_cast<std::size_t>(start / chunkLength);
        const std::int64_t n = lengthOfChunk(length, start);
        if (start + n <= known && now[place] == to[place]) continue;
        putChunk<ColumnType>(mesh, records + start, n, *to[place]);
        done.step(n);
    }
}

} // namespace

std::int64_t lengthOf(const Snapshot::Array& array) {
    return array.present ? std::clamp(array.count, 0, std::max(array.capacity, 0)) : 0;
}

const std::array<ColumnFacts, Snapshot::columnCount>& columnFacts() {
    static const auto facts = listFacts();
    return facts;
}

Chunk::Chunk(const std::byte* from, std::size_t byteCount)
    : bytes(takeChunkBytes(byteCount)), count(byteCount) {
    std::copy_n(from, byteCount, bytes);
    liveBytes += count + sizeof *this;
}

Chunk::~Chunk() {
    releaseChunkBytes(bytes, count);
    liveBytes -= count + sizeof *this;
}

std::size_t snapshotBytes() { return liveBytes; }

bool hasPoints(const Snapshot& snapshot) { return snapshot.arrays.front().count > 0; }

SnapshotRef takeSnapshot(const Mesh& mesh, const SnapshotRef& before, Changed changed) {
    Snapshot taken = Taker(mesh, before.get(), changed).take();
    if (before != nullptr && equal(taken, *before)) return before;
    return std::make_shared<const Snapshot>(std::move(taken));
}

Difference differenceOf(const Snapshot& taken, const Snapshot& before) {
    if (equal(taken, before)) return Difference::none;
    bool content = taken.current != before.current || taken.mtllib != before.mtllib;
    Arrays::each([&]<typename Each>(std::size_t number, std::size_t first) {
        content = content || taken.arrays[number].count != before.arrays[number].count;
        Each::eachColumn(first, [&]<typename ColumnType>(std::size_t column) {
            const bool same = taken.columns[column] == before.columns[column];
            content = content || (!ColumnType::scratch && !same);
        });
    });
    return content ? Difference::content : Difference::scratch;
}

bool countsDiffer(const Mesh& mesh, const Snapshot& snapshot) {
    bool differ = false;
    Arrays::each([&]<typename Each>(std::size_t number, std::size_t) {
        differ = differ || mesh.*Each::count != snapshot.arrays[number].count;
    });
    return differ;
}

bool restoreSnapshot(Mesh& mesh, const Snapshot& to, const Snapshot& now) {
    FreshBlocks fresh;
    if (!fresh.allocate(to, now)) return false;
    freeEdges(mesh);
    // All arrays stand where they will be before a reference into one is written.
    Arrays::each([&]<typename Each>(std::size_t number, std::size_t) {
        mesh.*Each::count = to.arrays[number].count;
        mesh.*Each::capacity = to.arrays[number].capacity;
        if (!fresh.replaces(number)) return;
        farfree(&(mesh.*Each::array));
        mesh.*Each::array = static_cast<typename Each::Record*>(fresh.hand(number));
    });
    Arrays::each([&]<typename Each>(std::size_t number, std::size_t first) {
        Each::eachColumn(first, [&]<typename ColumnType>(std::size_t column) {
            const bool stays = !fresh.replaces(number) && !fresh.replaces(ColumnType::target);
            putColumn<ColumnType>(mesh, mesh.*Each::array, lengthOf(to.arrays[number]),
                                  *to.columns[column], *now.columns[column],
                                  stays ? lengthOf(now.arrays[number]) : 0);
        });
    });
    const Snapshot::Current& current = to.current;
    mesh.curvertex = current.vertex;
    mesh.curtexcoord = current.texcoord;
    mesh.curface = current.face;
    mesh.curgroup = current.group;
    mesh.curtma = current.area;
    mesh.curmat = current.material;
    mesh.curprt = current.part;
    std::copy(to.mtllib.begin(), to.mtllib.end(), mesh.mtllib);
    return true;
}

} // namespace polyfab
