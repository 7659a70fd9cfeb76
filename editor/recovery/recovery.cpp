// SPDX-License-Identifier: GPL-3.0-or-later
// A snapshot of the mesh costs little where nothing has changed, and once it is taken a thread can
// write it while the user goes on. One thread at a time writes.
#include "editor/recovery/recovery.h"

#include "editor/history/undo.h"
#include "editor/recovery/recovery_file.h"
#include "editor/recovery/recovery_folder.h"
#include "io/state_folder.h"
#include "mesh/check.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/state.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <exception>
#include <future>
#include <new>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

using Clock = std::chrono::steady_clock;

std::chrono::seconds pause(120);

struct Recovery {
    RecoveryFolder folder; ///< of this editor, once something was saved
    std::weak_ptr<const Snapshot> saved;
    std::string savedEditor; ///< the rest of what was saved
    Clock::time_point lastSave = Clock::now();
    bool sessionEnds = false;  ///< with something that was not saved by the user
    bool savedForWork = false; ///< what this event began with
    std::string failure;       ///< why nothing could be saved the last time; "": it could
    bool failureShown = false; ///< since the last time that it could
    std::future<bool> writing; ///< last, so that it is waited for before anything goes
};

Recovery recovery;

bool isWriting() {
    return recovery.writing.valid()
           && recovery.writing.wait_for(std::chrono::seconds(0)) != std::future_status::ready;
}

void noteWritten(bool done) {
    recovery.failure = done ? "" : stateFolder;
    if (done) recovery.failureShown = false;
    if (!done) recovery.saved.reset();
}

/// Waits for the thread. Meanwhile the window may tell of the session's end, which waits for it
/// too.
void finishWriting() {
    constexpr std::chrono::milliseconds untilMoved(50);
    std::future<bool>& writing = recovery.writing;
    if (!writing.valid()) return;
    do moveProgress();
    while (writing.valid() && writing.wait_for(untilMoved) != std::future_status::ready);
    if (writing.valid()) noteWritten(writing.get());
}

bool write(const std::string& path, const RecoveryRecord& record) noexcept try {
    return writeRecoveryFile(path, record);
} catch (const std::exception&) {
    return false; // memory, most likely
}

/// Begins to write the record, or writes it, where no thread can be had.
void startWriting(RecoveryRecord record) {
    if (!recovery.folder.isThere()) recovery.folder = RecoveryFolder::make(stateFolder);
    if (!recovery.folder) return noteWritten(false);
    recovery.saved = record.mesh;
    recovery.savedEditor = packEditor(record.editor);
    const auto task = [path = recovery.folder.file(), record = std::move(record)] {
        return write(path, record);
    };
    try {
        recovery.writing = std::async(std::launch::async, task);
    } catch (const std::system_error&) {
        noteWritten(task());
    }
}

/// Begins to save this, unless that has been done. A mesh with nothing in it, such as a read that
/// failed leaves, takes no work's place.
void save(RecoveryRecord record) {
    if (!hasPoints(*record.mesh)) return;
    const bool same = recovery.saved.lock() == record.mesh && recovery.folder.holdsFile();
    if (same && packEditor(record.editor) == recovery.savedEditor) return;
    startWriting(std::move(record));
}

/// While nothing works on the mesh: all of it, unless it is unsound; the file that is there is
/// better then.
void saveAll() {
    if (const char* const fault = check(*OB)) {
        recovery.failure = fault;
    } else {
        save(recoveryRecord(takeSnapshot(*OB, presentMesh()), presentPart()));
    }
}

/// While something may be in the midst of its work: the newest step of the history. Without one all
/// that is there, unless what the work began with was saved.
void saveNewestStep() {
    if (const SnapshotRef mesh = presentMesh()) {
        save(recoveryRecord(mesh, partBefore()));
    } else if (!recovery.savedForWork) {
        saveAll();
    }
}

/// Saves in this way what is altered.
void saveAltered(void (*saveIt)()) try {
    finishWriting();
    recovery.lastSave = Clock::now();
    recovery.sessionEnds = false;
    recovery.failure.clear();
    if (!stateFolder.empty() && isAltered()) saveIt();
} catch (const std::bad_alloc&) {
    recovery.failure = "there is not enough memory";
}

void tellFailure() {
    if (recovery.failure.empty() || std::exchange(recovery.failureShown, true)) return;
    platform().message("I can't write a recovery file, so save your work yourself",
                       recovery.failure, Icon::exclamation);
}

/// Where nothing will be kept the user shall know before there is work to lose.
void tryStateFolder() {
    if (::access(stateFolder.c_str(), W_OK | X_OK) != 0) recovery.failure = stateFolder;
    tellFailure();
}

std::string timeText(std::int64_t time) {
    const std::time_t seconds = time;
    std::tm local{};
    char text[64] = "";
    if (localtime_r(&seconds, &local) != nullptr) {
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &local);
    }
    return text;
}

Choice ask(const RecoveryRecord& record) {
    const auto faces = std::count_if(OB->faces, OB->faces + OB->nf, isLive);
    const std::string name =
        record.editor.lastChosen.empty() ? "without a name" : record.editor.lastChosen;
    return platform().question("recovery",
                               "I found a mesh that was not saved: " + name + ", "
                                   + timeText(record.time) + ", " + std::to_string(faces)
                                   + (faces == 1 ? " face" : " faces")
                                   + ". shall I bring it back?\n(cancel: I ask again at the next "
                                     "start)",
                               Buttons::yesNoCancel);
}

/// A file that will never come back stands in nobody's way any more, but stays.
void tellFault(RecoveryFolder& folder, const RecoveryFault& fault) {
    const std::string was = folder.file();
    const std::string kept = fault.lasting ? folder.removeButKeepFile() : "";
    platform().message("I can't bring back a mesh that was not saved: " + fault.text,
                       kept.empty() ? "I try it again at the next start: " + was
                                    : "I keep the file as " + kept,
                       Icon::exclamation);
}

void tellOthers(std::size_t count) {
    if (count == 0) return;
    const std::string meshes = count == 1 ? "another mesh" : std::to_string(count) + " more meshes";
    platform().message(
        "recovery", "I found " + meshes + " that I ask about when you start me again", Icon::none);
}

/// The mesh of the record, which OB shows, becomes the one that the user works on.
void takeOver(RecoveryFolder& folder, const RecoveryRecord& record) {
    OB->changed = 1;
    restoreEditor(record);
    recovery.folder = std::move(folder);
    startHistory();
    recovery.saved = presentMesh();
    updateTitle();
}

/// Cancel when the file is to stay and nothing else to be asked.
Choice offer(RecoveryFolder& folder) {
    RecoveryRecord record;
    RecoveryFault fault = readRecoveryFile(folder.file(), record);
    if (!fault) fault = restoreMesh(record);
    if (fault) {
        tellFault(folder, fault);
        return Choice::no;
    }
    const Choice choice = ask(record);
    if (choice == Choice::yes) {
        takeOver(folder, record);
        return choice;
    }
    dropMesh();
    if (choice == Choice::no) folder.remove();
    return choice;
}

} // namespace

void setRecoverySeconds(int seconds) { pause = std::chrono::seconds(seconds); }

void startRecovery() { recovery = Recovery(); }

Recovered offerRecovery() {
    if (stateFolder.empty()) return Recovered::nothing;
    tryStateFolder();
    std::vector<RecoveryFolder> left = RecoveryFolder::leftBehind(stateFolder);
    for (std::size_t i = 0; i < left.size(); ++i) {
        const Choice choice = offer(left[i]);
        if (choice == Choice::cancel) break;
        if (choice == Choice::no) continue;
        tellOthers(left.size() - i - 1);
        return Recovered::mesh;
    }
    return Recovered::nothing;
}

void saveAtRest() {
    if (isWriting()) return;
    finishWriting();
    // Undone back to what was written last, there is nothing to bring back any more.
    if (recovery.folder && OB != nullptr && !isAltered()) dropRecovery();
    if (Clock::now() - recovery.lastSave >= pause) saveAltered(saveAll);
    if (pause.count() == 0) finishWriting();
    tellFailure();
}

void saveBeforeLongWork() {
    saveAltered(saveAll);
    finishWriting();
    recovery.savedForWork = recovery.failure.empty();
}

void saveAtSessionEnd(bool atWork) {
    saveAltered(atWork ? saveNewestStep : saveAll);
    finishWriting();
    recovery.sessionEnds = isAltered();
}

bool sessionIsEnding() {
    // What could not be saved is asked about when the window closes.
    return recovery.sessionEnds && recovery.failure.empty() && !stateFolder.empty();
}

void noteUser() { recovery.sessionEnds = recovery.savedForWork = false; }

void dropRecovery() {
    finishWriting();
    recovery.folder.remove();
    recovery.saved.reset();
    recovery.sessionEnds = false;
}

void endRecovery() {
    finishWriting();
    if (!recovery.sessionEnds) recovery.folder.remove();
    recovery = Recovery();
}

} // namespace polyfab
