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
    ~RecentFiles() override {
        stateFolder.clear();
        loadRecentFiles();
    }

    /// An imported one after a "+"; of those in the folder the names.
    std::vector<std::string> paths() const {
        std::vector<std::string> list;
        loadRecentFiles();
        for (const auto& [path, imported, missing] : recentFiles()) {
            const bool here = path.starts_with(folder.path(""));
            const std::string name = here ? path.substr(folder.path("").size()) : path;
            list.push_back((imported ? "+" : "") + name);
        }
        return list;
    }

    TempFolder folder;
};

TEST_F(RecentFiles, TheLatestTenEachOnce) {
    EXPECT_EQ(paths(), std::vector<std::string>());
    const auto note = [&](const std::string& name, bool imported) {
        noteRecentFile(folder.write(name, ""), imported);
    };
    for (int i = 0; i < 12; ++i) note(std::to_string(i), i % 2 == 1);
    std::filesystem::create_symlink(folder.path("."), folder.path("link"));
    noteRecentFile(folder.path("link/5"), false); // was imported before
    note("bad\nname", false);
    noteRecentFile(folder.path("not there"), false);
    EXPECT_EQ(paths(),
              (std::vector<std::string>{"5", "+11", "10", "+9", "8", "+7", "6", "4", "+3", "2"}));
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
