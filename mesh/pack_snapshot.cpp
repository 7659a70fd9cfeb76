// SPDX-License-Identifier: GPL-3.0-or-later
// Each column is written chunk by chunk. Of whole numbers the differences from one to the next are
// written, which are small where faces follow each other. Of a double the bits that differ from the
// one before are written without the zero bytes at both ends: coordinates have a common exponent
// above and, where they came from a file, often zeros below.
#include "mesh/pack_snapshot.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace polyfab {
namespace {

// Records are written as they lie in memory.
static_assert(std::endian::native == std::endian::little);

constexpr std::int64_t mostRoom = 4096; ///< one step of growth

/// What the chunk holds.
enum Tag : std::uint8_t { allEqual, oneByOne };

/// Values of a column of whole numbers of this type.
template <typename T>
struct Integers {
    static void pack(ByteWriter& out, const std::byte* values, std::int64_t n,
                     std::int64_t references) {
        std::int64_t before = 0;
        for (std::int64_t i = 0; i < n; ++i) {
            T stored;
            std::memcpy(&stored, values + i * std::ptrdiff_t{sizeof(T)}, sizeof(T));
            const std::int64_t value = stored < references ? stored : -1;
            out.signedNumber(value - before);
            before = value;
        }
    }
    static void unpack(ByteReader& in, std::byte* values, std::int64_t n, std::int64_t references) {
        const bool any = references == noLimit;
        const std::int64_t lowest = any ? std::numeric_limits<T>::min() : -1;
        const std::int64_t highest = any ? std::numeric_limits<T>::max() : references - 1;
        std::int64_t value = 0;
        for (std::int64_t i = 0; i < n; ++i) {
            value += in.signedWithin(lowest - value, highest - value);
            const T stored = static_cast<T>(value);
            std::memcpy(values + i * std::ptrdiff_t{sizeof(T)}, &stored, sizeof(T));
        }
    }
    static constexpr std::int64_t noLimit = std::numeric_limits<std::int64_t>::max();
};

struct Reals {
    static void pack(ByteWriter& out, const std::byte* values, std::int64_t n, std::int64_t) {
        std::uint64_t before = 0;
        for (std::int64_t i = 0; i < n; ++i) {
            std::uint64_t bits;
            std::memcpy(&bits, values + i * 8, 8);
            const std::uint64_t different = bits ^ before;
            before = bits;
            const int low = different == 0 ? 0 : std::countr_zero(different) / 8;
            const int count = different == 0 ? 0 : 8 - std::countl_zero(different) / 8 - low;
            out.byte(static_cast<std::uint8_t>(low << 4 | count));
            out.fixed(different >> 8 * low, count);
        }
    }
    static void unpack(ByteReader& in, std::byte* values, std::int64_t n, std::int64_t) {
        std::uint64_t bits = 0;
        for (std::int64_t i = 0; i < n; ++i) {
            const std::uint8_t head = in.byte();
            const int low = head >> 4;
            const int count = head & 15;
            if (low > 7 || low + count > 8) return in.fail();
            bits ^= in.fixed(count) << 8 * low;
            std::memcpy(values + i * 8, &bits, 8);
        }
    }
};

struct Format {
    void (*pack)(ByteWriter&, const std::byte*, std::int64_t, std::int64_t);
    void (*unpack)(ByteReader&, std::byte*, std::int64_t, std::int64_t);
};

template <typename T>
constexpr Format formatOf{T::pack, T::unpack};

/// How the values of a column are written; null: as records.
const Format* formatFor(const ColumnFacts& facts) {
    switch (facts.kind) {
        case ColumnKind::record:
            return nullptr;
        case ColumnKind::real:
            return &formatOf<Reals>;
        case ColumnKind::integer:
            break;
    }
    return facts.size == 1   ? &formatOf<Integers<std::int8_t>>
           : facts.size == 2 ? &formatOf<Integers<std::int16_t>>
                             : &formatOf<Integers<std::int32_t>>;
}

/// Values of a column of references are below this.
std::int64_t limitOf(const ColumnFacts& facts, const Snapshot& snapshot) {
    constexpr std::int64_t none = Integers<std::int32_t>::noLimit;
    return facts.target < Snapshot::arrayCount ? lengthOf(snapshot.arrays[facts.target]) : none;
}

void packColumn(ByteWriter& out, const Snapshot& snapshot, std::size_t column) {
    const ColumnFacts& facts = columnFacts()[column];
    const Format* const format = formatFor(facts);
    const std::int64_t limit = limitOf(facts, snapshot);
    for (const auto& chunk : *snapshot.columns[column]) {
        const auto n = static_cast<std::int64_t>(chunk->size() / facts.size);
        out.byte(n == 1 ? allEqual : oneByOne);
        if (format != nullptr) {
            format->pack(out, chunk->data(), n, limit);
        } else {
            out.bytes.append(reinterpret_cast<const char*>(chunk->data()), chunk->size());
        }
    }
}

class Unpacker {
  public:
    explicit Unpacker(ByteReader& from) : in(from) {}

    SnapshotRef read() {
        auto snapshot = std::make_shared<Snapshot>();
        for (Snapshot::Array& array : snapshot->arrays) readArray(array);
        for (std::size_t i = 0; i < Snapshot::columnCount && in.ok(); ++i) {
            readColumn(*snapshot, i);
        }
        readCurrent(*snapshot);
        const std::string_view library = in.text();
        if (library.size() >= snapshot->mtllib.size()) in.fail();
        if (!in.ok()) return nullptr;
        std::copy(library.begin(), library.end(), snapshot->mtllib.begin());
        return snapshot;
    }

  private:
    void readArray(Snapshot::Array& array) {
        constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max() - mostRoom;
        array.count = static_cast<std::int32_t>(in.signedWithin(0, most));
        const auto room = static_cast<std::int32_t>(in.signedWithin(0, mostRoom));
        array.capacity = array.count + room;
        array.present = array.capacity > 0;
    }

    void readColumn(Snapshot& snapshot, std::size_t column) {
        const ColumnFacts& facts = columnFacts()[column];
        const std::int64_t length = snapshot.arrays[facts.array].count;
        const std::int64_t limit = limitOf(facts, snapshot);
        Chunks chunks;
        for (std::int64_t start = 0; start < length && in.ok(); start += Snapshot::chunkLength) {
            const std::int64_t n = std::min(Snapshot::chunkLength, length - start);
            chunks.push_back(readChunk(facts, n, limit));
        }
        snapshot.columns[column] = std::make_shared<const Chunks>(std::move(chunks));
    }

    std::shared_ptr<const Chunk> readChunk(const ColumnFacts& facts, std::int64_t n,
                                           std::int64_t limit) {
        const std::uint8_t tag = in.byte();
        if (tag > oneByOne) in.fail();
        const std::int64_t count = tag == allEqual ? 1 : n;
        const std::size_t size = static_cast<std::size_t>(count) * facts.size;
        if (const Format* const format = formatFor(facts)) {
            format->unpack(in, buffer.get(), count, limit);
        } else {
            const std::string_view records = in.raw(size);
            records.copy(reinterpret_cast<char*>(buffer.get()), records.size());
        }
        return std::make_shared<const Chunk>(buffer.get(), size);
    }

    void readCurrent(Snapshot& snapshot) {
        Snapshot::Current& current = snapshot.current;
        for (std::int32_t* const i : {&current.vertex, &current.texcoord, &current.face}) {
            *i = static_cast<std::int32_t>(in.signedWithin(INT32_MIN, INT32_MAX));
        }
        for (std::int16_t* const i :
             {&current.group, &current.area, &current.material, &current.part}) {
            *i = static_cast<std::int16_t>(in.signedWithin(INT16_MIN, INT16_MAX));
        }
    }

    ByteReader& in;
    std::unique_ptr<std::byte[]> buffer =
        std::make_unique<std::byte[]>(Snapshot::chunkLength * sizeof(Material));
};

} // namespace

void packSnapshot(ByteWriter& out, const Snapshot& snapshot) {
    for (const Snapshot::Array& array : snapshot.arrays) {
        const std::int64_t length = lengthOf(array);
        const std::int64_t room = array.present ? array.capacity - length : 0;
        out.signedNumber(length);
        out.signedNumber(std::clamp<std::int64_t>(room, 0, mostRoom));
    }
    for (std::size_t i = 0; i < Snapshot::columnCount; ++i) packColumn(out, snapshot, i);
    const Snapshot::Current& current = snapshot.current;
    for (const std::int64_t i :
         {current.vertex, current.texcoord, current.face, std::int32_t{current.group},
          std::int32_t{current.area}, std::int32_t{current.material}, std::int32_t{current.part}}) {
        out.signedNumber(i);
    }
    const auto& library = snapshot.mtllib;
    out.text({library.data(), strnlen(library.data(), library.size() - 1)});
}

SnapshotRef unpackSnapshot(ByteReader& in) { return Unpacker(in).read(); }

} // namespace polyfab
