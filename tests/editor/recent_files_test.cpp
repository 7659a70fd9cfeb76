// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/recent_files.h"

#include "io/state_folder.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

class RecentFiles : public testing::Test {
  protected:
    RecentFiles() { stateFolder = folder.path(""); }
    ~RecentFiles() override { stateFolder.clear(); }

    static std::vector<std::string> paths() {
        std::vector<std::string> list;
        for (const RecentFile& file : recentFiles()) {
            list.push_back((file.imported ? "+" : "") + file.path);
        }
        return list;
    }

    TempFolder folder;
};

TEST_F(RecentFiles, TheLatestTenEachOnce) {
    EXPECT_EQ(paths(), std::vector<std::string>());
    for (int i = 0; i < 12; ++i) noteRecentFile("/a/" + std::to_string(i) + ".obj", i % 2 == 1);
    noteRecentFile("/a/b/../5.obj", false); // was imported before
    noteRecentFile("/bad\nname.obj", false);
    const std::vector<std::string> expected = {"/a/5.obj",  "+/a/11.obj", "/a/10.obj", "+/a/9.obj",
                                               "/a/8.obj",  "+/a/7.obj",  "/a/6.obj",  "/a/4.obj",
                                               "+/a/3.obj", "/a/2.obj"};
    EXPECT_EQ(paths(), expected);
}

TEST_F(RecentFiles, DamageCostsOnlyTheLineThatItIsIn) {
    folder.write("recent-files", "read /one.obj\n\xFF\nimport \n\nimport /two words.stl\nread");
    EXPECT_EQ(paths(), (std::vector<std::string>{"/one.obj", "+/two words.stl"}));
    stateFolder.clear();
    noteRecentFile("/three.obj", false);
    EXPECT_EQ(paths(), std::vector<std::string>());
}

} // namespace
} // namespace polyfab::test
