// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/import_child.h"

#include "formats/assimp_library.h"
#include "formats/import_stream.h"
#include "formats/scenes.h"

#include <algorithm>
#include <csignal>
#include <exception>
#include <fcntl.h>
#include <fstream>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace polyfab {
namespace {

constexpr rlim_t maxSeconds = 600;
constexpr rlim_t maxMemory = rlim_t{8} << 30;
constexpr const char* noLibrary =
    "the library for other formats, " POLYFAB_ASSIMP ", is not installed";

void limit(int resource, rlim_t value) {
    const rlimit both = {value, value};
    static_cast<void>(::setrlimit(static_cast<__rlimit_resource>(resource), &both));
}

void limitProcess() {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // nobody waits for the result of a dead editor's child
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_CPU, maxSeconds);
#if !defined(__SANITIZE_ADDRESS__) // whose shadow memory is larger than any limit
    const auto pages = static_cast<rlim_t>(::sysconf(_SC_PHYS_PAGES));
    const auto pageSize = static_cast<rlim_t>(::sysconf(_SC_PAGESIZE));
    limit(RLIMIT_AS, std::min(maxMemory, pages * pageSize / 2));
#endif
    // Where memory runs out all the same, this process shall be the one that goes.
    std::ofstream("/proc/self/oom_score_adj") << "1000";
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

StreamTables carryOut(const std::vector<std::string>& args) try {
    if (args.size() != 2) return failure("it was started wrongly");
    const AssimpLibrary* const assimp = openAssimp();
    if (assimp == nullptr) return failure(noLibrary);
    if (args[0] == "import") return importScene(*assimp, args[1]);
    StreamView mesh;
    if (!readStream(mapStandardInput(), mesh)) return failure("the mesh did not arrive");
    return failure(exportScene(*assimp, mesh, args[1]));
} catch (const std::bad_alloc&) {
    return failure("there is not enough memory");
} catch (const std::exception& caught) {
    return failure(caught.what());
}

} // namespace

void runExchangeChild(const std::vector<std::string>& args) {
    limitProcess();
    const int stream = takeStandardOutput();
    const bool written = writeStream(stream, carryOut(args));
    ::_exit(written ? 0 : 1); // takes nothing apart that the end of the process does as well
}

} // namespace polyfab
