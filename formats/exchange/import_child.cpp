// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/import_child.h"

#include "formats/exchange/3ds_scene.h"
#include "formats/exchange/assimp_library.h"
#include "formats/exchange/child_locks.h"
#include "formats/exchange/dxf_scene.h"
#include "formats/exchange/import_stream.h"
#include "formats/exchange/scenes.h"
#include "formats/obj/material_lines.h"
#include "io/read_file.h"
#include "mesh/names.h"

#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <string>
#include <strings.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace polyfab {
namespace {

constexpr const char* noLibrary =
    "the library for other formats, " POLYFAB_ASSIMP ", is not installed";

constexpr std::uint64_t gigabyte = 1'000'000'000;
constexpr std::uint64_t maxWritten = 16 * gigabyte; ///< to one file of an export

/// The memory that the importer gets, and whether it wanted more. The library may swallow the
/// error.
std::uint64_t allowed = 0;
bool wantedMore = false;

void noteNoMemory() {
    wantedMore = true;
    throw std::bad_alloc();
}

/// A file's importer gets 20 times what it reads, small ones a gigabyte.
void allowMemoryFor(std::uint64_t bytes) { allowed = limitMemory(std::max(gigabyte, 20 * bytes)); }

void prepareProcess(bool imports) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // nobody waits for the result of a dead editor's child
    // Where memory runs out all the same, this process shall be the one that goes.
    std::ofstream("/proc/self/oom_score_adj") << "1000";
    std::set_new_handler(noteNoMemory);
    limitProcess(imports ? 0 : maxWritten);
    imports ? allowMemoryFor(0) : static_cast<void>(limitMemory(~std::uint64_t{0}));
}

std::string tooMuch() {
    return "it takes more than " + std::to_string(allowed / 1'000'000)
           + " MB of memory, which is too much for such a file";
}

/// Standard output for the stream alone: what a library prints goes nowhere.
int takeStandardOutput() {
    const int stream = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(nowhere, STDOUT_FILENO);
    return stream;
}

/// The whole of standard input, which is a file.
std::span<const char> mapStandardInput() {
    struct stat status {};
    if (::fstat(STDIN_FILENO, &status) != 0 || status.st_size <= 0) return {};
    const auto size = static_cast<std::size_t>(status.st_size);
    void* const bytes = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, STDIN_FILENO, 0);
    if (bytes == MAP_FAILED) return {};
    return {static_cast<const char*>(bytes), size};
}

StreamTables failure(const std::string& reason) {
    StreamTables tables;
    tables.failure = reason;
    return tables;
}

/// Why this can be no PLY file of so many bytes; "" when it may be one. The library makes room for
/// what the header counts, and then looks for it for long.
std::string faultOfPly(const std::string& path, std::uint64_t size) {
    PieceReader file(path);
    std::string_view head;
    if (!file.isOpen() || !file.next(0, head) || !head.starts_with("ply")) return "";
    head = head.substr(0, head.find("end_header"));
    double elements = 0; // each of which takes a byte at least
    eachLine(head, [&](std::string_view line) {
        constexpr std::string_view keyword = "element ";
        double count = 0;
        if (!line.starts_with(keyword)) return;
        line = trimTrailingBlanks(line);
        line.remove_prefix(line.find_last_of(" \t") + 1);
        std::from_chars(line.data(), line.data() + line.size(), count);
        elements += count;
    });
    return elements <= static_cast<double>(size) ? ""
                                                 : "it is too short for all that its header counts";
}

/// Why this is no file that can be imported; "" when it may be one.
std::string faultOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return "there is no such file";
    if (S_ISDIR(status.st_mode)) return "it is a folder";
    if (!S_ISREG(status.st_mode)) return "it is no regular file";
    const auto size = static_cast<std::uint64_t>(status.st_size);
    allowMemoryFor(size);
    return faultOfPly(path, size);
}

/// What the library reads of these files is less than they have, or turned.
struct OwnReader {
    const char* suffix;
    StreamTables (*import)(const std::string& path);
};
constexpr OwnReader ownReaders[] = {{".dxf", importDxf}, {".3ds", import3ds}};

const OwnReader* ownReader(const std::string& path) {
    const std::string suffix = std::filesystem::path(path).extension();
    const auto* const row =
        std::find_if(std::begin(ownReaders), std::end(ownReaders), [&](const auto& reader) {
            return ::strcasecmp(suffix.c_str(), reader.suffix) == 0;
        });
    return row == std::end(ownReaders) ? nullptr : row;
}

/// Without the library for files that are read by ourselves.
StreamTables import(const AssimpLibrary* assimp, const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path();
    lockIn({{folder.empty() ? "." : folder, path}, ""});
    const std::string fault = faultOf(path);
    if (!fault.empty()) return failure(fault);
    const OwnReader* const own = ownReader(path);
    return own != nullptr ? own->import(path) : importScene(*assimp, path, allowMemoryFor);
}

std::string exportTo(const AssimpLibrary& assimp, const std::string& path) {
    lockIn({{}, std::filesystem::path(path).parent_path()});
    StreamView mesh;
    if (!readStream(mapStandardInput(), mesh)) return "the mesh did not arrive";
    return exportScene(assimp, mesh, path);
}

StreamTables carryOut(const std::vector<std::string>& args) try {
    if (args.size() != 2) return failure("it was started wrongly");
    const bool imports = args[0] == "import";
    prepareProcess(imports);
    const bool byLibrary = !imports || ownReader(args[1]) == nullptr;
    const AssimpLibrary* const assimp = byLibrary ? openAssimp() : nullptr;
    if (byLibrary && assimp == nullptr) return failure(noLibrary);
    if (!imports) return failure(exportTo(*assimp, args[1]));
    StreamTables tables = import(assimp, args[1]);
    if (wantedMore && !tables.failure.empty()) tables.failure = tooMuch();
    return tables;
} catch (const std::bad_alloc&) {
    return failure(args[0] == "import" ? tooMuch() : "there is not enough memory");
} catch (const std::exception& caught) {
    return failure(caught.what());
}

} // namespace

void runExchangeChild(const std::vector<std::string>& args) {
    const int stream = takeStandardOutput();
    const bool written = writeStream(stream, carryOut(args));
    ::_exit(written ? 0 : 1); // takes nothing apart that the end of the process does as well
}

} // namespace polyfab
