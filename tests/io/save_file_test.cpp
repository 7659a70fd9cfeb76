// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/save_file.h"

#include "tests/support/temp_folder.h"

#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace polyfab {
namespace {

namespace fs = std::filesystem;

constexpr const char* oldText = "old\n";
/// More than the buffer holds, so that part of it is written before the commit.
const std::string newText(300000, 'n');

bool save(const std::string& path, std::string_view text = newText) {
    SaveFile file;
    if (!file.open(path)) return false;
    file.append(text);
    return file.commit();
}

struct stat statusOf(const std::string& name) {
    struct stat status = {};
    EXPECT_EQ(::stat(name.c_str(), &status), 0) << name;
    return status;
}

/// Works in a folder of its own with one old file.
class SaveFileTest : public testing::Test {
  protected:
    SaveFileTest() {
        folder.write("old", oldText);
        fs::current_path(folder.path(""));
    }
    ~SaveFileTest() override { fs::current_path(home); }

    /// Entries of the folder: temporary files would show up here.
    static auto entries() {
        return std::distance(fs::directory_iterator("."), fs::directory_iterator());
    }

    const fs::path home = fs::current_path();
    const test::TempFolder folder;
};

TEST_F(SaveFileTest, WritesToTheNamedFile) {
    const std::string longName(255, 'x');
    fs::create_directory("sub");
    fs::create_symlink("../old", "sub/link");
    fs::create_symlink("sub/link", "chain");
    fs::create_symlink("sub/made", "dangling");
    const std::pair<std::string, std::string> cases[] = {
        {"new", "new"},   {longName, longName},     {"sub/../b", "b"},
        {"chain", "old"}, {"dangling", "sub/made"}, {folder.path("sub/link"), "old"}};
    for (const auto& [name, target] : cases) {
        EXPECT_TRUE(save(name)) << name;
        EXPECT_TRUE(folder.read(target) == newText) << name;
        EXPECT_TRUE(save(name, oldText)) << name;
        EXPECT_EQ(folder.read(target), oldText) << name;
    }
    for (const char* link : {"sub/link", "chain", "dangling"}) EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(entries(), 7); // new, old, the long name, two links, b and sub
}

TEST_F(SaveFileTest, KeepsPermissionsAndOwner) {
    const bool given = ::chown("old", 1234, 5678) == 0; // only root may do this
    for (const unsigned mode : {0600U, 0666U, 0755U}) {
        ::chmod("old", mode);
        EXPECT_TRUE(save("old"));
        EXPECT_EQ(statusOf("old").st_mode & 07777, mode);
    }
    EXPECT_EQ(statusOf("old").st_uid, given ? 1234U : ::getuid());
    EXPECT_EQ(statusOf("old").st_gid, given ? 5678U : ::getgid());
    const mode_t before = ::umask(027);
    EXPECT_TRUE(save("new"));
    ::umask(before);
    EXPECT_EQ(statusOf("new").st_mode & 07777, 0640U);
}

TEST_F(SaveFileTest, RefusesWhatCannotBeWritten) {
    fs::create_symlink("loop", "loop");
    fs::create_directory("closed");
    ::chmod(folder.write("closed/file", oldText).c_str(), 0666);
    ::chmod("old", 0444);
    ::chmod("closed", 0555);
    ::chmod(".", 0777);
    for (const char* name : {"", ".", "missing/file", "missing/", "loop"}) {
        SaveFile file;
        EXPECT_FALSE(file.open(name) || file.commit()) << name;
    }
    const bool root = ::seteuid(65534) == 0; // permission checks do not bind root
    if (::geteuid() != 0) {
        for (const char* name : {"old", "closed/file", "closed/new"}) EXPECT_FALSE(save(name));
        EXPECT_TRUE(save("open"));
        EXPECT_EQ(entries(), 4);
    }
    if (root && ::seteuid(0) != 0) std::abort();
    EXPECT_EQ(folder.read("old") + folder.read("closed/file"), "old\nold\n");
    ::chmod("closed", 0755);
}

TEST_F(SaveFileTest, AFailureLeavesTheOldFileAndNothingElse) {
    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit limit = {100000, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    EXPECT_FALSE(save("old") || save("new"));
    ::setrlimit(RLIMIT_FSIZE, &before);
    {
        SaveFile abandoned;
        ASSERT_TRUE(abandoned.open("old"));
        abandoned.append(newText);
        EXPECT_EQ(folder.read("old"), oldText); // whole at any time
    }
    SaveFile cannotRename;
    ASSERT_TRUE(cannotRename.open("name"));
    fs::create_directory("name");
    EXPECT_FALSE(cannotRename.commit());
    EXPECT_EQ(entries(), 2);
    EXPECT_EQ(folder.read("old"), oldText);
}

TEST_F(SaveFileTest, WritesDirectlyToWhatIsNoFile) {
    EXPECT_FALSE(save("/dev/full"));
    EXPECT_TRUE(save("/dev/null"));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    // As /dev/stdout is when the output is redirected.
    const int handle = ::open("old", O_WRONLY);
    const ino_t number = statusOf("old").st_ino;
    EXPECT_TRUE(save("/proc/self/fd/" + std::to_string(handle), "more\n"));
    ::close(handle);
    EXPECT_EQ(statusOf("old").st_ino, number);
    EXPECT_EQ(folder.read("old"), "old\nmore\n");
}

} // namespace
} // namespace polyfab
