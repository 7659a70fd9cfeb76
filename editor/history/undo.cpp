// SPDX-License-Identifier: GPL-3.0-or-later
// States and the steps between them. Steps that change nothing that is saved lead to a state of the
// same version, so that with one all states of its version are those on disk.
#include "editor/history/undo.h"

#include "display/box.h"
#include "display/view.h"
#include "geometry/affine.h"
#include "mesh/snapshot.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <deque>
#include <new>
#include <unistd.h>
#include <utility>

namespace polyfab {
namespace {

struct State {
    SnapshotRef mesh; ///< null: the present one, and the mesh stands as it shall show it
    int version;
    bool asRead;    ///< all states of this version are what a file held that was read
    bool unaltered; ///< nothing to lose: so the mark was, or this version was the last one written
};

/// Leads from a state to the next one.
struct Step {
    std::string label;
    EditorPart before, after; ///< as they were when the state was left last
    // What else than the mesh, the settable points and the current edge it changed. The rest is as
    // the user has it now.
    bool movesBox, namesFile;
};

struct History {
    std::deque<State> states; ///< empty: nothing is recorded
    std::deque<Step> steps;   ///< one less
    std::size_t at = 0;       ///< the present state
    int lastVersion = 0;
    EditorPart before{};  ///< when the events began of which the next step will come
    bool altered = false; ///< these events changed something that is saved
    bool onDisk = false;  ///< a file holds what was written last whole
};

History history;

std::uint64_t memory = defaultUndoMemory();

/// While an event is handled: the mark was set when it began, or is where it has gone back to. The
/// mesh's own mark then tells what the event itself does.
bool alteredBefore = false;

/// To the last bit, not-a-numbers included.
template <typename T>
bool same(const T& a, const T& b) {
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}

/// The part's box around what it was around, as that view shows it. Turning leaves the box alone,
/// moving and magnifying carries it along.
Box boxInView(const EditorPart& part, const View& to) {
    const View& from = part.view;
    if (same(from.scale, to.scale) && same(from.offset, to.offset)) return part.box;
    if (same(from.rotation, to.rotation)) return carried(part.box, from, to);
    return carried(part.box, turnedLike(from, to), to);
}

/// Whether the box is around something else, by more than the rounding of the view.
bool boxMoved(const EditorPart& a, const EditorPart& b) {
    const Box carried = boxInView(a, b.view);
    const double factor = b.view.scale / a.view.scale;
    for (const auto corner : {&Box::left, &Box::right}) {
        for (int i = 0; i < 3; ++i) {
            const double now = along(b.box.*corner, i);
            const double before =
                std::abs(along(a.box.*corner, i)) + std::abs(along(a.view.offset, i));
            const double size =
                std::max({1.0, std::abs(now), std::abs(along(b.view.offset, i)), factor * before});
            if (!(std::abs(along(carried.*corner, i) - now) <= 1e-9 * size))
                return !same(carried, b.box);
        }
    }
    return false;
}

/// Whether the user would want to come back from one to the other: not from what only moves the
/// view, and the box with it.
bool differ(const EditorPart& a, const EditorPart& b) {
    return !same(a.settable, b.settable) || a.edgeFace != b.edgeFace || a.edgeCorner != b.edgeCorner
           || boxMoved(a, b);
}

/// Brings back what the step changed.
void restorePart(const Step& step, const EditorPart& to) {
    restorePicks(to);
    if (step.namesFile) restoreFileName(to);
    if (step.movesBox) box = boxInView(to, view);
}

/// Works out what the altered marks of the states are now. `content`: the present one holds
/// another content than the one before.
void settleMarks(bool content) {
    History& h = history;
    State& present = h.states[h.at];
    // What cleared the mark may have altered the mesh before: a read of nothing, a write.
    const bool cleared = content && (OB->np == 0 || workbench.wholeMeshWritten);
    if (std::exchange(h.altered, false) || cleared) {
        present.version = ++h.lastVersion;
        present.asRead = workbench.meshRead;
    }
    present.unaltered = !isAltered();
    const bool wasOnDisk = std::exchange(h.onDisk, !workbench.wholeFile.path.empty());
    const bool overwritten = wasOnDisk && !h.onDisk;
    if (!overwritten && !(workbench.wholeMeshWritten && present.unaltered)) return;
    for (State& state : h.states) {
        state.unaltered = present.unaltered && state.version == present.version;
    }
}

void dropOldest(std::size_t count) {
    History& h = history;
    const auto many = static_cast<std::ptrdiff_t>(count);
    h.states.erase(h.states.begin(), h.states.begin() + many);
    h.steps.erase(h.steps.begin(), h.steps.begin() + many);
    h.at -= count;
}

void dropWhatIsTooMuch() {
    History& h = history;
    constexpr std::size_t each = sizeof(Step) + sizeof(State) + sizeof(Snapshot);
    while (h.at > 1 && snapshotBytes() + h.steps.size() * each > memory) dropOldest(1);
}

/// The new state follows the present one; what came after that is gone.
void push(SnapshotRef mesh, Step step) {
    History& h = history;
    h.states.resize(h.at + 1);
    h.steps.resize(h.at);
    const State& before = h.states[h.at];
    h.states.push_back({std::move(mesh), before.version, before.asRead, false});
    h.steps.push_back(std::move(step));
    ++h.at;
    dropWhatIsTooMuch();
}

/// Takes the snapshot of the present state, if that is still to be done.
void takeDueSnapshot() {
    History& h = history;
    if (h.states[h.at].mesh != nullptr) return;
    SnapshotRef mesh = takeSnapshot(*OB, h.at > 0 ? h.states[h.at - 1].mesh : nullptr);
    h.states[h.at].mesh =
        std::move(mesh); // not before: it tells of progress, and that lets events in
    dropWhatIsTooMuch();
}

Step stepTo(const EditorPart& now, bool content, const std::string& label) {
    const EditorPart& before = history.before;
    const bool pointsOnly = !content && !same(before.settable, now.settable);
    const std::string& named = label.empty() ? "box" : label; // what no mode has done
    return {pointsOnly ? "settable points" : named, before, now, boxMoved(before, now),
            before.fileName != now.fileName || before.home != now.home};
}

struct Entered {
    bool step = false;
    bool content = false; ///< of which the mesh is another
};

/// The step, if it is one, that leads from the present state to this mesh; null: to one that holds
/// certainly other elements, and of which the snapshot is due.
Entered enterStep(SnapshotRef mesh, const EditorPart& now, const std::string& label) {
    State& present = history.states[history.at];
    const bool content =
        mesh == nullptr || differenceOf(*mesh, *present.mesh) == Difference::content;
    const bool step = content || differ(history.before, now);
    if (step) {
        push(std::move(mesh), stepTo(now, content, label));
    } else {
        present.mesh = std::move(mesh);
    }
    return {step, content};
}

bool record(const std::string& label, Snap snap, Changed changed) {
    const EditorPart now = presentPart();
    Entered entered;
    // As long as a snapshot is due the mesh is what it was.
    if (history.states[history.at].mesh != nullptr || differ(history.before, now)) {
        takeDueSnapshot();
        const SnapshotRef before = history.states[history.at].mesh;
        const bool waits = snap == Snap::beforeTheNextChange && countsDiffer(*OB, *before);
        entered = enterStep(waits ? nullptr : takeSnapshot(*OB, before, changed), now, label);
    }
    settleMarks(entered.content);
    history.before = now;
    return entered.step;
}

/// Does this, which takes memory, with fewer and fewer steps, or starts anew.
template <typename Act>
void inMemory(Act act) {
    for (;;) {
        try {
            return act();
        } catch (const std::bad_alloc&) {
            if (history.at == 0) break;
            dropOldest((history.at + 1) / 2);
        }
    }
    startHistory();
    platform().message("undo", "I can't get enough memory, so I forget what you did so far",
                       Icon::exclamation);
}

/// Goes one state back (-1) or forward (1), if there is one.
void goTo(int direction) {
    completeNewestStep();
    recordStep("change", Snap::now); // the history ends with what is there, whoever made it
    History& h = history;
    const bool back = direction < 0;
    if (h.at == (back ? 0 : h.steps.size())) {
        platform().beep();
        return note(back ? "there is nothing to undo" : "there is nothing to redo");
    }
    const std::size_t state = back ? h.at - 1 : h.at + 1;
    if (!restoreSnapshot(*OB, *h.states[state].mesh, *h.states[h.at].mesh)) return;
    Step& step = h.steps[std::min(state, h.at)];
    (back ? step.after : step.before) = presentPart();
    h.at = state;
    restorePart(step, back ? step.before : step.after);
    alteredBefore = !h.states[state].unaltered;
    OB->changed = 0;
    stale = Stale();
    updateTitle();
    note((back ? "undone: " : "done again: ") + step.label);
}

} // namespace

bool isAltered() { return OB != nullptr && (OB->changed != 0 || alteredBefore); }

void startHistory() {
    endHistory();
    if (memory == 0) return;
    try {
        history.states.push_back({takeSnapshot(*OB, nullptr), 0, false, !isAltered()});
        history.before = presentPart();
        history.onDisk = !workbench.wholeFile.path.empty();
    } catch (const std::bad_alloc&) {
        endHistory();
    }
}

void endHistory() { history = History(); }

std::uint64_t defaultUndoMemory() {
    const auto pages = static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES));
    return pages * static_cast<std::uint64_t>(sysconf(_SC_PAGE_SIZE)) / 4;
}

void setUndoMemory(std::uint64_t bytes) {
    memory = bytes;
    if (bytes == 0) endHistory();
}

bool undoIsOn() { return memory != 0; }

void beginEvent(bool continues) {
    alteredBefore = isAltered();
    if (OB == nullptr) return;
    OB->changed = 0;
    if (!continues) history.before = presentPart();
}

bool endEvent() {
    const bool before = std::exchange(alteredBefore, false);
    if (OB == nullptr) return false;
    const bool altered = OB->changed != 0;
    // Whoever cleared the mesh has not saved what was in it.
    OB->changed = altered || (before && !workbench.wholeMeshWritten);
    history.altered = history.altered || altered;
    return altered;
}

bool recordStep(const std::string& label, Snap snap, Changed changed) {
    if (OB == nullptr) return false;
    bool isStep = false;
    if (history.states.empty()) {
        startHistory();
    } else {
        inMemory([&] { isStep = record(label, snap, changed); });
    }
    return isStep;
}

void completeNewestStep() {
    if (!history.states.empty()) inMemory(takeDueSnapshot);
}

bool isAsRead() { return !history.states.empty() && history.states[history.at].asRead; }

void undo() { goTo(-1); }

void redo() { goTo(1); }

SnapshotRef presentMesh() {
    if (history.states.empty()) return nullptr;
    takeDueSnapshot();
    return history.states[history.at].mesh;
}

const EditorPart& partBefore() { return history.before; }

std::string undoLabel() { return history.at > 0 ? history.steps[history.at - 1].label : ""; }

std::string redoLabel() {
    return history.at < history.steps.size() ? history.steps[history.at].label : "";
}

} // namespace polyfab
