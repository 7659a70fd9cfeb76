// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/recent_files.h"

#include "io/state_folder.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

class RecentFiles : public testing::Test {
  protected:
    RecentFiles() { stateFolder = folder.path(""); }
    ~RecentFiles() override {
        stateFolder.clear();
        loadRecentFiles();
    }

    /// The names, an imported one after a "+".
    static std::vector<std::string> names() {
        std::vector<std::string> list;
        loadRecentFiles();
        for (const RecentFile& file : recentFiles()) {
            list.push_back((file.imported ? "+" : "") + file.path.substr(file.path.rfind('/') + 1));
        }
        return list;
    }

    TempFolder folder;
};

TEST_F(RecentFiles, TheLatestTenEachOnce) {
    EXPECT_EQ(names(), std::vector<std::string>());
    const auto note = [&](const std::string& name, bool imported) {
        noteRecentFile(folder.write(name, ""), imported);
    };
    for (int i = 0; i < 12; ++i) note(std::to_string(i), i % 2 == 1);
    std::filesystem::create_symlink(folder.path("."), folder.path("link"));
    noteRecentFile(folder.path("link/5"), false); // was imported before
    note("bad\nname", false);
    noteRecentFile(folder.path("not there"), false);
    EXPECT_EQ(names(),
              (std::vector<std::string>{"5", "+11", "10", "+9", "8", "+7", "6", "4", "+3", "2"}));
}

TEST_F(RecentFiles, DamageCostsOnlyTheLineThatItIsIn) {
    folder.write("recent-files", "read /one.obj\n\xFF\nimport \n\nimport /two words.stl\nread");
    EXPECT_EQ(names(), (std::vector<std::string>{"one.obj", "+two words.stl"}));
    stateFolder.clear();
    noteRecentFile("/three.obj", false);
    EXPECT_EQ(names(), std::vector<std::string>());
}

} // namespace
} // namespace polyfab::test
