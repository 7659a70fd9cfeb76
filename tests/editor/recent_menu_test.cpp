// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/recent.h"

#include "formats/exchange/import_process.h"
#include "formats/exchange/import_stream.h"
#include "io/state_folder.h"
#include "tests/editor/window_fixture.h"
#include "tests/support/temp_folder.h"
#include "workbench/recent_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace polyfab::test {
namespace {

class RecentMenu : public WindowEvents {
  protected:
    RecentMenu() { stateFolder = folder.path("."); }
    ~RecentMenu() override { stateFolder.clear(); }

    void read(const std::string& name) { drop(folder.write(name, triangle)); }
    /// What the rows say, a greyed one in brackets; the folder left out.
    Log rows() {
        Log list;
        for (const MenuItem& item : items()) {
            if (item.id < commandid::firstRecentFile || item.id > commandid::firstRecentFile + 9)
                continue;
            std::string label = item.label;
            if (const std::size_t at = label.find(folder.path("")); at != std::string::npos) {
                label.erase(at, folder.path("").size());
            }
            list.push_back(item.enabled ? label : "[" + label + "]");
        }
        return list;
    }

    TempFolder folder;
};

TEST_F(RecentMenu, RowsChangeOnlyWithWhatThisEditorReads) {
    read("a.obj");
    read("b.obj");
    EXPECT_EQ(rows(), (Log{"&1 b.obj", "&2 a.obj"}));
    const std::string other = folder.write("c.obj", triangle);
    const std::string list = folder.read("recent-files");
    folder.write("recent-files", "read " + other + "\n" + list); // by another editor
    std::filesystem::remove(folder.path("a.obj"));
    send(EventKind::menuOpening);
    EXPECT_EQ(rows(), (Log{"&1 b.obj", "[&2 a.obj]"}));
    command(commandid::firstRecentFile);
    EXPECT_EQ(workbench.fileName, folder.path("b.obj"));
    EXPECT_EQ(rows(), (Log{"&1 b.obj", "&2 c.obj", "&3 a.obj"})); // none was looked for again
}

TEST_F(RecentMenu, OfLongPathsTheEndShows) {
    std::string e60; // bytes
    for (int i = 0; i < 30; ++i) e60 += "\u00E9";
    const struct {
        std::string name, row;
    } cases[] = {
        {std::string(70, 'n') + ".obj", "&1 ..." + std::string(56, 'n') + ".obj"},
        {e60 + "n.obj", "&1 ..." + e60.substr(6) + "n.obj"}, // 60 bytes would begin within a letter
        {"R&D\t.obj", "&1 R&&D .obj"},
    };
    for (const auto& [name, row] : cases) {
        read(name);
        EXPECT_EQ(rows()[0], row);
    }
    std::filesystem::create_directory(folder.path(std::string(50, 'd')));
    read(std::string(50, 'd') + "/" + std::string(40, 'n') + ".obj");
    EXPECT_EQ(rows()[0], "&1 .../" + std::string(40, 'n') + ".obj");
}

TEST_F(RecentMenu, ExportsAreThereWhenTheyCanBeImported) {
    const int reply = ::open(folder.path("reply").c_str(), O_WRONLY | O_CREAT, 0600);
    ASSERT_TRUE(writeStream(reply, {}));
    ::close(reply);
    const std::string before = exchangeProgram;
    exchangeProgram = folder.write("child", "#!/bin/sh\necho > $3\ncat " + folder.path("reply"));
    ASSERT_EQ(chmod(exchangeProgram.c_str(), 0700), 0);
    addCube();
    for (const char* const name : {"a.PLY", "b.assjson", "c", "d."}) {
        shown.files = {folder.path(name)};
        command(2002);
        EXPECT_TRUE(folder.has(name));
    }
    EXPECT_EQ(rows(), Log{"&1 a.PLY"});
    EXPECT_EQ(plainCommand(commandid::firstRecentFile), 2001);
    exchangeProgram = folder.write("child", "#!/bin/sh\nexit 1");
    shown.files = {folder.path("e.ply")};
    command(2002);
    EXPECT_EQ(rows().size(), 1U);
    exchangeProgram = before;
}

} // namespace
} // namespace polyfab::test
