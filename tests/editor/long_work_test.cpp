// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/long_work.h"

#include "editor/history/undo.h"
#include "mesh/edges.h"
#include "mesh/garbage.h"
#include "mesh/snapshot.h"
#include "tests/editor/window_fixture.h"
#include "tests/support/temp_folder.h"

#include <functional>

namespace polyfab::test {
namespace {

class Progress : public WindowEvents {
  protected:
    /// What the strip showed since the last time; all else is left out.
    Log taken() {
        std::erase_if(shown.log,
                      [](const std::string& line) { return !line.starts_with("progress|"); });
        return std::exchange(shown.log, {});
    }
    Log at(double seconds, double done, double all) {
        shown.seconds = seconds;
        tellProgress(done, all);
        return taken();
    }
};

TEST_F(Progress, ShowsAfterHalfASecondAndNotTooOften) {
    EXPECT_EQ(at(5, 1, 4), Log{}); // nobody waits
    {
        const LongWork work("sums", Escape::stops);
        EXPECT_EQ(at(5.49, 1, 4), Log{});
        EXPECT_EQ(at(5.5, 1, 4), Log{"progress|sums (Escape stops it)|0.25"});
        EXPECT_EQ(at(5.59, 2, 4), Log{});
        shown.seconds = 5.61;
        shown.escapeAfter = 2;
        EXPECT_FALSE(abortRequested() || abortRequested()); // looks that also move the strip
        EXPECT_TRUE(abortRequested());
        EXPECT_EQ(taken(), Log{"progress|sums (Escape stops it)|0.50"});
        EXPECT_EQ(at(6, 5, 4), Log{"progress|sums (Escape stops it)|1.00"}); // miscounted
        tellTooLateToStop();
        EXPECT_EQ(at(7, 0, 0), Log{"progress|sums (it can't be stopped)|-1.00"});
    }
    EXPECT_EQ(taken(), Log{"progress||0.00"});
    EXPECT_EQ(at(20, 1, 4), Log{});
    try {
        const LongWork work("sums", Escape::stopsNothing);
        at(30, 0, 0);
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(taken(), Log{"progress||0.00"});
    { const LongWork brief("sums", Escape::stops); }
    EXPECT_EQ(taken(), Log{});
}

TEST_F(Progress, CommandsAndDropsAreLongWork) {
    TempFolder folder;
    const std::string path = folder.write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    shown.secondsPerLook = 1;
    const auto said = [&](const Event& event) {
        shown.log.clear();
        shown.dialogAnswers = {{"0.1"}};
        handleEvent(event);
        const Log lines = taken();
        EXPECT_TRUE(lines.size() >= 2 && lines.back() == "progress||0.00");
        return lines.empty() ? "" : lines.front().substr(0, lines.front().rfind('|'));
    };
    const Event drop{.kind = EventKind::drop, .paths = {path}};
    EXPECT_EQ(said(drop), "progress|read mesh file (Escape stops it and undo brings the old mesh "
                          "back)");
    EXPECT_EQ(said({.kind = EventKind::command, .command = 390}),
              "progress|weld all very close points (Escape stops it)");
    setUndoMemory(0);
    EXPECT_EQ(said(drop), "progress|read mesh file (Escape stops it)");
    setUndoMemory(defaultUndoMemory());
    shown.log.clear();
    mouse(5, 5, 0);
    EXPECT_EQ(taken(), Log{});
}

TEST_F(Progress, LoopsOverTheMeshMoveIt) {
    constexpr int faces = 70'000;
    for (int i = 0; i < faces + 2; ++i) OB->addPoint(i, i % 2, 0, false);
    for (int i = 0; i < faces; ++i) addFace({i, i + 1, i + 2});
    OB->curface = 0;
    SnapshotRef whole;
    struct Row {
        const char* name;
        int passes; ///< that it makes at least over all corners
        std::function<void()> run;
    };
    const Row rows[] = {
        {"check", 1, [] { EXPECT_EQ(check(*OB), nullptr); }},
        {"snapshot", 1, [&] { whole = takeSnapshot(*OB, nullptr); }},
        {"collection", 5, [] { EXPECT_TRUE(collectGarbage(*OB)); }},
        {"edges", 4, [] { EXPECT_TRUE(buildEdges(*OB)); }},
        {"orientation", 4 + 1 + 5 + 4, [] { EXPECT_TRUE(checkEdges(*OB, true, true, false)); }},
        {"restoring", 5,
         [&] {
             emptyMesh();
             EXPECT_TRUE(restoreSnapshot(*OB, *whole, *takeSnapshot(*OB, nullptr)));
         }},
    };
    for (const auto& [name, passes, run] : rows) {
        SCOPED_TRACE(name);
        shown.seconds = 0;
        const LongWork work("sums", Escape::stops);
        at(1, 1, 2);
        shown.secondsPerLook = 1;
        run();
        shown.secondsPerLook = 0;
        const Log lines = taken();
        EXPECT_GE(lines.size(), static_cast<std::size_t>(3 * passes));
        EXPECT_EQ(std::set(lines.begin(), lines.end()),
                  std::set<std::string>{"progress|sums (Escape stops it)|0.50"});
    }
    freeEdges(*OB);
}

} // namespace
} // namespace polyfab::test
