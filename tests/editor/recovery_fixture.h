// SPDX-License-Identifier: GPL-3.0-or-later
// A window with a state folder of its own. Several editors in one process: those that are gone are
// folders with a file, whose lock nobody holds; a living one is a folder held by the test.
#pragma once

#include "editor/history/undo.h"
#include "editor/recovery/recovery.h"
#include "io/state_folder.h"
#include "tests/editor/window_fixture.h"
#include "tests/support/temp_folder.h"

#include <chrono>
#include <filesystem>

namespace polyfab::test {

namespace fs = std::filesystem;

class RecoveryTest : public WindowEvents {
  protected:
    RecoveryTest() {
        stateFolder = folder.path("");
        stateFolder.pop_back();
        setRecoverySeconds(0);
    }
    ~RecoveryTest() override {
        send(EventKind::destroy);
        createMesh();
        setUndoMemory(defaultUndoMemory());
        setRecoverySeconds(120);
        stateFolder.clear();
    }

    /// What the state folder holds of recovery, in order of names.
    std::vector<std::string> kept() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(stateFolder)) {
            const std::string name = entry.path().filename();
            if (name.starts_with("recovery-")) names.push_back(name);
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    void cubeWithFaces(int faces) {
        cubeIn(358);
        for (int i = faces; i < 6; ++i) OB->faces[i].q = nullptr;
    }
    /// An editor is killed that had a cube with so many faces left, and saved it that many seconds
    /// ago.
    void leaveBehind(const std::string& name, int faces, int age) {
        const Log before = kept();
        cubeWithFaces(faces);
        OB->changed = 1;
        workbench.lastChosen = name;
        saveBeforeLongWork();
        for (const std::string& entry : kept()) {
            if (std::count(before.begin(), before.end(), entry) != 0) continue;
            const auto now = fs::file_time_type::clock::now();
            fs::last_write_time(folder.path(entry + "/mesh"), now - std::chrono::seconds(age));
        }
        reset(); // its lock is gone
    }
    /// Closes the window without a wish to save.
    void close() {
        shown.choices = {Choice::yes};
        send(EventKind::close);
        send(EventKind::destroy);
        createMesh();
    }
    /// The files that a start asks about, and what it does with these answers.
    Log start(const std::deque<Choice>& answers, const std::string& file = "") {
        reset();
        shown.choices = answers;
        Event event{.kind = EventKind::start};
        if (!file.empty()) event.paths = {file};
        handleEvent(event);
        Log asked;
        for (const std::string& line : shown.log) {
            const std::size_t at = line.find("not saved: ");
            if (line.starts_with("question|")) asked.push_back(line.substr(at + 11));
            if (line.starts_with("message")) asked.push_back(line);
        }
        for (std::string& line : asked) line = line.substr(0, line.find(','));
        return asked;
    }
    static void rest() { send(EventKind::idle); }

    TempFolder folder;
};

} // namespace polyfab::test
