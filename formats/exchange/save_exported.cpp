// SPDX-License-Identifier: GPL-3.0-or-later
// A target and the files beside it can't be replaced in one step. So the new ones come under new
// names first, with a target that refers to these; when they are in place under the names that they
// are to have, the target itself follows. Each step leaves a pair that fits.
#include "formats/exchange/save_exported.h"

#include "formats/mesh_formats.h"
#include "io/names_in.h"
#include "io/read_file.h"
#include "io/save_file.h"
#include "io/temporary_file.h"
#include "platform/platform.h"

#include <algorithm>
#include <ctime>
#include <deque>
#include <fcntl.h>
#include <functional>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace polyfab {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view scratchPrefix = "polyfab-export-";

/// How a format refers to a file beside it: the name stands between these words.
struct Reference {
    std::string_view suffix, before, after;
    bool isJson; ///< where quotation marks stand behind a backslash
};

constexpr Reference references[] = {{".gltf", "\"uri\": \"", "\"", true},
                                    {".obj", "mtllib ", "\n", false}};

constexpr const char* cannotWrite = "can't write the file";

/// Fills the new file with the exporter's; only the replacing is left.
bool fill(const fs::path& from, SaveFile& to) {
    PieceReader source(from);
    std::string_view text;
    while (source.isOpen() && source.next(0, text)) to.append(text);
    return source.isOpen() && !source.failed() && to.finish();
}

/// The same with a text.
bool fill(const std::string& text, SaveFile& to) {
    to.append(text);
    return to.finish();
}

bool copyTo(const fs::path& target, const auto& content) {
    SaveFile file;
    return file.open(target) && fill(content, file) && file.commit();
}

/// Whether a file that the user has not named may be replaced.
bool mayReplace(const fs::path& path) {
    std::error_code ignored;
    return !fs::exists(path, ignored)
           || platform().question("do you want to replace this file too?", path, Buttons::yesNo)
                  == Choice::yes;
}

/// Makes the text refer to another file. False when it does not refer to the first.
bool redirect(std::string& text, const Reference& row, const std::string& from,
              const std::string& to) {
    const auto around = [&](std::string name) {
        for (std::size_t i = 0; row.isJson && i < name.size(); ++i) {
            if (name[i] == '"') name.insert(i++, 1, '\\');
        }
        return std::string(row.before) + name + std::string(row.after);
    };
    const std::string old = around(from);
    const std::size_t at = text.find(old);
    if (at == std::string::npos) return false;
    text.replace(at, old.size(), around(to));
    return true;
}

constexpr int mostPassing = 100;

/// The names that a file has for a while, 1 to mostPassing. Where its own leaves no room for more
/// a number takes its place.
fs::path passingName(const fs::path& path, int i) {
    constexpr std::size_t longest = 200;
    const std::string stem = path.stem();
    const bool fits = stem.size() <= longest;
    const std::string start = fits ? stem : std::to_string(std::hash<std::string>()(stem));
    return path.parent_path()
           / (start + ".polyfab-new-" + std::to_string(i) + path.extension().string());
}

/// Such a name that nothing in the folder has; "" when there is none.
fs::path freePassingName(const fs::path& path) {
    for (int i = 1; i <= mostPassing; ++i) {
        fs::path name = passingName(path, i);
        if (isFreeName(name)) return name;
    }
    return {};
}

/// One file beside the target.
struct Beside {
    fs::path written; ///< by the exporter
    fs::path name;    ///< that it is to have
    fs::path passing; ///< that it has until the target is in place
};

/// Names the passing files, and makes the target's text refer to them. Those that it does not refer
/// to, as a picture may be one, need no such name. Empty when it is so with all, or the format's
/// way to refer is not known.
std::string passingText(std::vector<Beside>& beside, const fs::path& main, const fs::path& target) {
    const auto row = std::find_if(std::begin(references), std::end(references),
                                  [&](const auto& r) { return endsIn(target.native(), r.suffix); });
    if (row == std::end(references)) return "";
    std::string text = wholeFile(main).value_or("");
    bool any = false;
    for (Beside& file : beside) {
        const fs::path passing = freePassingName(file.name);
        if (passing.empty()) return "";
        if (!redirect(text, *row, file.name.filename(), passing.filename())) continue;
        file.passing = passing;
        any = true;
    }
    return any ? text : "";
}

/// Makes the passing files, and `first`, with the text that refers to them, ready to take the place
/// of the target.
bool makePassing(const std::vector<Beside>& beside, const std::string& text, const fs::path& target,
                 SaveFile& first) {
    const bool made = std::all_of(beside.begin(), beside.end(), [](const Beside& file) {
        if (file.passing.empty()) return true;
        rememberTemporary(file.passing);
        return copyTo(file.passing, file.written);
    });
    return made && first.open(target) && fill(text, first);
}

/// The target now refers to the passing files, or they are removed.
void settlePassing(const std::vector<Beside>& beside, bool stay) {
    std::error_code ignored;
    for (const Beside& file : beside) {
        if (file.passing.empty()) continue;
        forgetTemporary(file.passing);
        if (!stay) fs::remove(file.passing, ignored);
    }
}

/// Removes the files with passing names, also those of exports that were killed: the target refers
/// to none of them.
void removePassing(const std::vector<Beside>& beside) {
    for (const Beside& file : beside) {
        for (int i = 1; i <= mostPassing; ++i) ::unlink(passingName(file.name, i).c_str());
    }
}

/// Lists the files beside the target that are to be written, and those that are there already.
std::string listBeside(const fs::path& folder, const fs::path& main, const fs::path& target,
                       std::vector<Beside>& beside, std::vector<Beside>& same) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path() == main || !fs::is_regular_file(entry->symlink_status())) continue;
        const fs::path name = target.parent_path() / entry->path().filename();
        const bool isSame = haveSameBytes(name, entry->path());
        if (!isSame && !mayReplace(name)) return name.string().append(wasKept);
        (isSame ? same : beside).push_back({entry->path(), name, {}});
    }
    const bool there = fs::is_regular_file(fs::symlink_status(main, error));
    return there ? "" : "the exporter wrote nothing";
}

} // namespace

ScratchFolder::ScratchFolder() {
    std::error_code ignored;
    const fs::path start = fs::temp_directory_path(ignored) / scratchPrefix;
    std::string name;
    if (!makeTemporaryFolder(start, name)) return;
    path = name;
    lock = ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (lock >= 0) ::flock(lock, LOCK_EX | LOCK_NB);
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    if (!path.empty()) fs::remove_all(path, ignored);
    forgetTemporary(path);
    if (lock >= 0) ::close(lock);
}

void removeDeadScratchFolders() {
    constexpr std::time_t untilLocked = 60; // seconds that a new one is left alone
    std::error_code ignored;
    const fs::path temporary = fs::temp_directory_path(ignored);
    for (const std::string& name : namesIn(temporary)) {
        if (!name.starts_with(scratchPrefix)) continue;
        const fs::path path = temporary / name;
        const int folder = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (folder < 0) continue;
        struct stat status {};
        if (::fstat(folder, &status) == 0 && status.st_uid == ::geteuid()
            && status.st_mtime < std::time(nullptr) - untilLocked
            && ::flock(folder, LOCK_EX | LOCK_NB) == 0) {
            fs::remove_all(path, ignored);
        }
        ::close(folder);
    }
}

std::string saveExported(const fs::path& folder, const fs::path& target, SaveFile& file) {
    const fs::path main = folder / target.filename();
    std::vector<Beside> beside, same;
    std::string wrong = listBeside(folder, main, target, beside, same);
    if (!wrong.empty()) return wrong;
    std::deque<SaveFile> files;
    for (const Beside& one : beside) {
        if (!files.emplace_back().open(one.name) || !fill(one.written, files.back())) {
            return "can't write " + one.name.string();
        }
    }
    if (!fill(main, file)) return cannotWrite;
    std::error_code none;
    const bool replaces = !beside.empty() && fs::exists(target, none);
    const std::string text = replaces ? passingText(beside, main, target) : "";
    SaveFile first;
    bool ready = text.empty() || makePassing(beside, text, target, first);
    // From here on the target needs the passing files, until it is replaced once more.
    const HeldSignals held;
    ready = ready && (text.empty() || first.commit());
    settlePassing(beside, ready);
    if (!ready) return cannotWrite;
    const bool done =
        std::all_of(files.begin(), files.end(), [](SaveFile& f) { return f.commit(); })
        && file.commit();
    if (!done) return cannotWrite;
    removePassing(beside);
    removePassing(same);
    return "";
}

} // namespace polyfab
