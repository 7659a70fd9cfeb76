// SPDX-License-Identifier: GPL-3.0-or-later
// Fontconfig names the font file. It crashes where it gets no memory, and so it does that in a
// process of its own, which writes the number of the face and the path into a pipe.
#include "platform/batch/font_file.h"

#include "platform/batch/destroy.h"

#include <fontconfig/fontconfig.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace polyfab {
namespace {

using Config = std::unique_ptr<FcConfig, Destroy<FcConfigDestroy>>;
using Pattern = std::unique_ptr<FcPattern, Destroy<FcPatternDestroy>>;

struct Answer {
    int index;
    std::array<char, PATH_MAX> path;
};
static_assert(sizeof(Answer) <= 1 << 16); // which a pipe holds

/// Nothing in it throws.
bool askFontconfig(int weight, Answer& answer) {
    // A configuration of our own: the one of the process may be in use elsewhere.
    const Config config(FcInitLoadConfigAndFonts());
    const Pattern wanted(FcPatternBuild(nullptr, FC_FAMILY, FcTypeString, "sans-serif", FC_WEIGHT,
                                        FcTypeInteger, FcWeightFromOpenType(weight), FC_SCALABLE,
                                        FcTypeBool, FcTrue, nullptr));
    if (!config || !wanted) return false;
    FcConfigSubstitute(config.get(), wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    const Pattern found(FcFontMatch(config.get(), wanted.get(), &result));
    FcChar8* file = nullptr;
    if (!found || FcPatternGetString(found.get(), FC_FILE, 0, &file) != FcResultMatch) return false;
    FcPatternGetInteger(found.get(), FC_INDEX, 0, &answer.index);
    const std::string_view path = reinterpret_cast<const char*>(file);
    if (path.size() >= answer.path.size()) return false;
    path.copy(answer.path.data(), path.size());
    return true;
}

/// What the child does.
[[noreturn]] void answerInto(int pipe, int weight) {
    const rlimit none = {0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    static Answer answer;
    const bool done = askFontconfig(weight, answer)
                      && ::write(pipe, &answer, sizeof answer) == ssize_t{sizeof answer};
    ::_exit(done ? 0 : 1);
}

bool readAnswer(int pipe, Answer& answer) {
    std::size_t got = 0;
    while (got < sizeof answer) {
        const ssize_t count =
            ::read(pipe, reinterpret_cast<char*>(&answer) + got, sizeof answer - got);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        got += static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

FontFile findFontFile(int weight) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return {};
    const pid_t child = ::fork();
    if (child == 0) answerInto(ends[1], weight);
    ::close(ends[1]);
    static Answer answer;
    const bool answered = child > 0 && readAnswer(ends[0], answer);
    ::close(ends[0]);
    while (child > 0 && ::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    return answered ? FontFile{answer.path.data(), answer.index} : FontFile{};
}

} // namespace polyfab
