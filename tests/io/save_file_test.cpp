// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/save_file.h"

#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace polyfab {
namespace {

namespace fs = std::filesystem;

constexpr const char* oldText = "old\n";

/// More than the buffer holds, so that part of it is written before the commit.
const std::string newText = [] {
    std::string text;
    for (int i = 0; i < 30000; ++i) text += "line " + std::to_string(i) + "\n";
    return text;
}();

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
    struct {
        std::string name, target;
    } const cases[] = {
        {"new", "new"},           {folder.path("old"), "old"}, {longName, longName},
        {"chain", "old"},         {"sub/link", "old"},         {folder.path("chain"), "old"},
        {"dangling", "sub/made"}, {"sub/../b", "b"},
    };
    for (const auto& row : cases) {
        EXPECT_TRUE(save(row.name)) << row.name;
        EXPECT_TRUE(folder.read(row.target) == newText) << row.name;
        EXPECT_TRUE(save(row.name, oldText)) << row.name;
        EXPECT_EQ(folder.read(row.target), oldText) << row.name;
    }
    for (const char* link : {"sub/link", "chain", "dangling"}) EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(entries(), 7); // new, old, the long name, two links, b and sub
}

TEST_F(SaveFileTest, KeepsPermissionsAndOwner) {
    const bool given = ::chown("old", 1234, 5678) == 0; // only root may do this
    for (const unsigned mode : {0600U, 0644U, 0666U, 0755U}) {
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

TEST_F(SaveFileTest, Refuses) {
    fs::create_symlink("loop", "loop");
    fs::create_symlink("missing/file", "nowhere");
    const std::string longName(256, 'x');
    for (const char* name :
         {"", ".", "missing/file", "missing/", "loop", "nowhere", longName.c_str()}) {
        SaveFile file;
        EXPECT_FALSE(file.open(name)) << name;
        EXPECT_FALSE(file.commit()) << name;
    }
    EXPECT_EQ(entries(), 3);
}

TEST_F(SaveFileTest, RefusesWithoutPermission) {
    fs::create_directory("closed");
    ::chmod(folder.write("closed/file", oldText).c_str(), 0666);
    ::chmod("old", 0444);
    ::chmod("closed", 0555);
    ::chmod(".", 0777);
    const bool root = ::seteuid(65534) == 0; // permission checks do not bind root
    if (::geteuid() == 0) GTEST_SKIP() << "permission checks cannot be had";
    for (const char* name : {"old", "closed/file", "closed/new"}) EXPECT_FALSE(save(name)) << name;
    EXPECT_TRUE(save("open"));
    if (root && ::seteuid(0) != 0) std::abort();
    EXPECT_EQ(folder.read("old"), oldText);
    EXPECT_EQ(folder.read("closed/file"), oldText);
    EXPECT_EQ(entries(), 3);
    ::chmod("closed", 0755);
}

TEST_F(SaveFileTest, AFailureLeavesTheOldFileAndNothingElse) {
    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit limit = {100000, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    const bool replaced = save("old");
    const bool made = save("new");
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_FALSE(replaced || made);
    {
        SaveFile abandoned;
        ASSERT_TRUE(abandoned.open("old"));
        abandoned.append(newText);
        EXPECT_EQ(entries(), 2);
    }
    EXPECT_EQ(entries(), 1);
    EXPECT_EQ(folder.read("old"), oldText);

    SaveFile cannotRename;
    ASSERT_TRUE(cannotRename.open("name"));
    fs::create_directory("name");
    EXPECT_FALSE(cannotRename.commit());
    EXPECT_EQ(entries(), 2);
}

TEST_F(SaveFileTest, WritesDirectlyToWhatIsNoFile) {
    EXPECT_FALSE(save("/dev/full"));
    EXPECT_FALSE(save("/dev/full", "x"));
    EXPECT_TRUE(save("/dev/null"));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));

    ASSERT_EQ(::mkfifo("pipe", 0600), 0);
    const int reader = ::open("pipe", O_RDWR | O_NONBLOCK);
    EXPECT_TRUE(save("pipe", "through"));
    char text[8] = {};
    EXPECT_EQ(::read(reader, text, sizeof text), 7);
    EXPECT_STREQ(text, "through");
    EXPECT_TRUE(fs::is_fifo("pipe"));
    ::close(reader);

    // As /dev/stdout is when the output is redirected.
    const int handle = ::open("old", O_WRONLY);
    const ino_t number = statusOf("old").st_ino;
    EXPECT_TRUE(save("/proc/self/fd/" + std::to_string(handle), "more\n"));
    EXPECT_EQ(statusOf("old").st_ino, number);
    EXPECT_EQ(folder.read("old"), "old\nmore\n");
    ::close(handle);
}

TEST_F(SaveFileTest, KilledAnyTimeTheFileIsWhole) {
    int sawNew = 0;
    for (useconds_t round = 0; round < 60; ++round) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        while (child == 0) {
            if (!save("old") || !save("old", oldText)) ::_exit(1);
        }
        ::usleep(100 * round);
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << "a save failed";
        const std::string text = folder.read("old");
        ASSERT_TRUE(text == oldText || text == newText) << text.size();
        sawNew += text == newText;
    }
    EXPECT_GT(sawNew, 0) << "no child got as far as one save";
}

} // namespace
} // namespace polyfab
