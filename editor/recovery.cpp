// SPDX-License-Identifier: GPL-3.0-or-later
// A snapshot of the mesh costs little where nothing has changed, and once it is taken a thread can
// write it while the user goes on. One thread at a time writes.
#include "editor/recovery.h"

#include "editor/recovery_file.h"
#include "editor/recovery_folder.h"
#include "editor/state.h"
#include "editor/undo.h"
#include "io/state_folder.h"
#include "mesh/check.h"
#include "mesh/mesh.h"
#include "platform/platform.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <future>
#include <new>
#include <system_error>
#include <utility>

namespace polyfab {
namespace {

using Clock = std::chrono::steady_clock;

std::chrono::seconds pause(120);

struct Recovery {
    RecoveryFolder folder; ///< of this editor, once something was saved
    std::weak_ptr<const Snapshot> saved;
    std::string savedEditor; ///< the rest of what was saved
    Clock::time_point lastSave = Clock::now();
    bool sessionEnds = false;
    bool failed = false; ///< the last time nothing could be written
    bool failureShown = false;
    std::future<bool> writing; ///< last, so that it is waited for before anything goes
};

Recovery recovery;

bool isWriting() {
    return recovery.writing.valid()
           && recovery.writing.wait_for(std::chrono::seconds(0)) != std::future_status::ready;
}

void finishWriting() {
    if (!recovery.writing.valid()) return;
    recovery.failed = !recovery.writing.get();
    if (recovery.failed) recovery.saved.reset();
}

bool write(const std::string& path, const RecoveryRecord& record) noexcept try {
    return writeRecoveryFile(path, record);
} catch (const std::bad_alloc&) {
    return false;
}

/// Begins to write the record, or writes it, where no thread can be had.
void startWriting(RecoveryRecord record) {
    finishWriting();
    if (!recovery.folder) recovery.folder = RecoveryFolder::make(stateFolder);
    recovery.failed = !recovery.folder;
    if (recovery.failed) return;
    recovery.saved = record.mesh;
    recovery.savedEditor = packEditor(record.editor);
    const auto task = [path = recovery.folder.file(), record = std::move(record)] {
        return write(path, record);
    };
    try {
        recovery.writing = std::async(std::launch::async, task);
    } catch (const std::system_error&) {
        recovery.failed = !task();
        if (recovery.failed) recovery.saved.reset();
    }
}

/// What is to be saved while nothing works on the mesh: all of it, unless it is unsound; the file
/// that is there is better then.
SnapshotRef meshAtRest() {
    return check(*OB) == nullptr ? takeSnapshot(*OB, presentMesh()) : nullptr;
}

/// Begins to save the mesh that `choose` gives, unless that has been done.
void save(SnapshotRef (*choose)()) try {
    recovery.lastSave = Clock::now();
    recovery.sessionEnds = false;
    if (stateFolder.empty() || OB == nullptr || OB->changed == 0) return;
    SnapshotRef mesh = choose();
    if (mesh == nullptr) return;
    const bool sameMesh = recovery.saved.lock() == mesh;
    RecoveryRecord record = recoveryRecord(std::move(mesh));
    if (sameMesh && packEditor(record.editor) == recovery.savedEditor) return;
    startWriting(std::move(record));
} catch (const std::bad_alloc&) {
    recovery.failed = true;
}

void tellFailure() {
    if (!recovery.failed || std::exchange(recovery.failureShown, true)) return;
    platform().message("I can't write a recovery file, so save your work yourself", stateFolder,
                       Icon::exclamation);
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
    const auto faces = std::count_if(OB->faces, OB->faces + OB->nf,
                                     [](const Face& face) { return face.q != nullptr; });
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

void keepDamaged(RecoveryFolder& folder, const std::string& wrong) {
    const std::string was = folder.file();
    const std::string kept = folder.removeButKeepFile();
    platform().message("I can't bring back a mesh that was not saved: " + wrong,
                       "I keep the file as " + (kept.empty() ? was : kept), Icon::exclamation);
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
    const SnapshotRef empty = takeSnapshot(*OB, nullptr);
    std::string wrong = readRecoveryFile(folder.file(), record);
    if (wrong.empty()) wrong = restoreMesh(record);
    if (!wrong.empty()) {
        keepDamaged(folder, wrong);
        return Choice::no;
    }
    const Choice choice = ask(record);
    if (choice == Choice::yes) {
        takeOver(folder, record);
        return choice;
    }
    static_cast<void>(restoreSnapshot(*OB, *empty, *takeSnapshot(*OB, nullptr)));
    if (choice == Choice::no) folder.remove();
    return choice;
}

} // namespace

void setRecoverySeconds(int seconds) { pause = std::chrono::seconds(seconds); }

void startRecovery() { recovery = Recovery(); }

Recovered offerRecovery() {
    if (stateFolder.empty()) return Recovered::nothing;
    for (RecoveryFolder& folder : RecoveryFolder::leftBehind(stateFolder)) {
        const Choice choice = offer(folder);
        if (choice != Choice::no) {
            return choice == Choice::yes ? Recovered::mesh : Recovered::nothing;
        }
    }
    return Recovered::nothing;
}

void saveAtRest() {
    if (isWriting()) return;
    finishWriting();
    // Undone back to what was written last, there is nothing to bring back any more.
    if (recovery.folder && OB != nullptr && OB->changed == 0) dropRecovery();
    if (Clock::now() - recovery.lastSave >= pause) save(meshAtRest);
    if (pause.count() == 0) finishWriting();
    tellFailure();
}

void saveBeforeLongWork() {
    save(meshAtRest);
    finishWriting();
}

void saveAtSessionEnd(bool atWork) {
    save(atWork ? presentMesh : meshAtRest);
    finishWriting();
    // What could not be saved is asked about when the window closes.
    recovery.sessionEnds = OB != nullptr && OB->changed != 0 && !recovery.failed;
}

bool sessionIsEnding() { return recovery.sessionEnds; }

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
