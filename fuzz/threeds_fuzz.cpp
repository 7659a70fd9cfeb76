// SPDX-License-Identifier: GPL-3.0-or-later
// Bit 0 of the first byte reads the rest a second time, appended. With bit 1 it is no file but goes
// straight to the walk, with runs of zeros stretched to the lengths that lists of points ask for.
// The mesh must pass the check whatever came of it, and what is written must be one chunk.
#include "formats/3ds/3ds_reader.h"
#include "formats/3ds/3ds_writer.h"
#include "fuzz/fuzz_support.h"
#include "mesh/check.h"
#include "tests/support/fake_platform.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

using namespace polyfab;
using fuzz::demand;
using Bytes = std::vector<std::uint8_t>;

/// The bytes with 0xFE, n as 256 * n zeros.
Bytes stretched(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t most = 5'000'000;
    Bytes bytes;
    for (std::size_t i = 0; i < size && bytes.size() < most; ++i) {
        if (data[i] == 0xFE && i + 1 < size) {
            bytes.resize(std::min(most, bytes.size() + std::size_t{256} * data[++i]));
        } else {
            bytes.push_back(data[i]);
        }
    }
    bytes.shrink_to_fit(); // so that an overrun is seen
    return bytes;
}

void writeAndLook() {
    static const std::string path = fuzz::scratchPath(".3ds");
    demand(write3dsFile(*OB, path) == 1, "not written");
    std::ifstream file(path, std::ios::binary);
    const Bytes bytes{std::istreambuf_iterator<char>(file), {}};
    std::filesystem::remove(path);
    demand(bytes.size() > 6, "too short");
    std::size_t length = 0;
    for (std::size_t i = 6; i > 2; --i) length = length << 8 | bytes[i - 1];
    demand(length == bytes.size(), "the length is another");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static test::FakePlatform shown;
    createMesh();
    if (size == 0) return 0;
    const int times = 1 + (data[0] & 1);
    if ((data[0] & 2) != 0) {
        const Bytes bytes = stretched(data + 1, size - 1);
        for (int i = 0; i < times; ++i) (void)add3dsChunks(*OB, bytes);
    } else {
        const fuzz::MemoryFile file(data + 1, size - 1);
        for (int i = 0; i < times; ++i) (void)read3dsFile(*OB, file.path(), i > 0);
    }
    const char* const fault = check(*OB);
    demand(fault == nullptr, fault);
    writeAndLook();
    fuzz::emptyMesh();
    demand(storeBlocks() == 1, "blocks stay behind");
    shown.log.clear();
    return 0;
}
