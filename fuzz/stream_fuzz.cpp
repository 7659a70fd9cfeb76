// SPDX-License-Identifier: GPL-3.0-or-later
// What comes from the child process. Bit 0 of the first byte takes it up a second time, added; with
// bit 1 the rest is no stream but says what tables to make one of. The mesh must pass the check.
#include "display/material_looks.h"
#include "formats/exchange/import_stream.h"
#include "formats/exchange/stream_looks.h"
#include "formats/exchange/stream_mesh.h"
#include "fuzz/fuzz_support.h"
#include "mesh/check.h"
#include "tests/support/fake_platform.h"

#include <string>
#include <vector>

namespace {

using namespace polyfab;
using fuzz::demand;

/// Tables of which most references are in range, as the bytes say: such a stream goes further than
/// one that is cut off at its first count.
StreamTables tablesOf(const std::uint8_t* next, const std::uint8_t* end) {
    const auto take = [&] { return next == end ? 0 : *next++; };
    const auto below = [&](std::size_t n) { return n == 0 ? -1 : take() % static_cast<int>(n); };
    StreamTables tables;
    tables.points.resize(static_cast<std::size_t>(take() % 20));
    tables.normals.resize(static_cast<std::size_t>(take() % 4));
    tables.texcoords.resize(static_cast<std::size_t>(take() % 4));
    for (Vec3& p : tables.points) p = {double(take()), double(take()), double(take())};
    for (int i = take() % 5; i >= 0; --i) {
        tables.groups.push_back(std::string(std::size_t(take()) * 3, char(take())));
        tables.materials.push_back(std::string(std::size_t(take()), char(take())));
        tables.colors.push_back(std::uint32_t(take()) << 20);
        tables.pictures.push_back(std::string(std::size_t(take() % 9), char(take())));
        tables.looks.emplace_back().embedded = take() % 4 - 1;
    }
    for (int i = take() % 4; i > 0; --i) {
        tables.embedded.push_back(std::string(std::size_t(take()), char(take())));
    }
    while (next != end) {
        const int corners = 3 + take() % 6;
        tables.faces.push_back({corners, below(tables.groups.size()), below(tables.colors.size())});
        for (int i = 0; i < corners; ++i) {
            tables.corners.push_back({below(tables.points.size()), below(tables.texcoords.size()),
                                      below(tables.normals.size())});
        }
    }
    return tables;
}

std::string streamOf(const StreamTables& tables) {
    const int file = memfd_create("stream", 0);
    demand(writeStream(file, tables), "not written");
    std::string bytes(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
    demand(pread(file, bytes.data(), bytes.size(), 0) == ssize_t(bytes.size()), "not read");
    close(file);
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static test::FakePlatform shown;
    createMesh();
    if (size == 0) return 0;
    std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if ((data[0] & 2) != 0) bytes = streamOf(tablesOf(data + 1, data + size));
    const std::vector<char> exact(bytes.begin(), bytes.end()); // so that an overrun is seen
    StreamView view;
    if (readStream(exact, view)) {
        for (int times = 1 + (data[0] & 1); times > 0; --times) {
            std::string missing;
            const auto looks = looksIn(view, "/nowhere/mesh.x", missing);
            static_cast<void>(takeStream(*OB, view, looks, times == 1));
            const char* const fault = check(*OB);
            demand(fault == nullptr, fault);
        }
    }
    fuzz::emptyMesh();
    setMaterialLooks(nullptr);
    demand(storeBlocks() == 1, "blocks stay behind");
    shown.log.clear();
    return 0;
}
