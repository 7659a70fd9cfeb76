// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/save_file.h"

#include "io/save_in_place.h"
#include "io/state_folder.h"
#include "io/temporary_file.h"
#include "tests/support/temp_folder.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
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

TEST_F(SaveFileTest, KeepsAttributesAndTheAccessList) {
    // Version 2: the owner may read and write, user 1234 and the mask read, nobody else anything.
    const unsigned char list[] = {2, 0,   0,   0,   1,   0,   6,  0, 255, 255, 255, 255, 2,   0,  4,
                                  0, 210, 4,   0,   0,   4,   0,  0, 0,   255, 255, 255, 255, 16, 0,
                                  4, 0,   255, 255, 255, 255, 32, 0, 0,   0,   255, 255, 255, 255};
    constexpr const char* access = "system.posix_acl_access";
    const bool attributes = ::setxattr("old", "user.origin", "here", 4, 0) == 0;
    const bool lists = ::setxattr("old", access, list, sizeof list, 0) == 0;
    EXPECT_TRUE(save("old"));
    char found[100] = {};
    EXPECT_EQ(::getxattr("old", "user.origin", found, sizeof found), attributes ? 4 : -1);
    const ssize_t size = ::getxattr("old", access, found, sizeof found);
    EXPECT_EQ(size, lists ? ssize_t{sizeof list} : -1);
    EXPECT_TRUE(!lists
                || std::equal(list, list + sizeof list, found, found + size,
                              [](auto a, auto b) { return a == static_cast<unsigned char>(b); }));
}

TEST_F(SaveFileTest, StateIsForItsUserAlone) {
    const mode_t before = ::umask(0);
    fs::create_symlink("old", "link");
    folder.write("wide", oldText);
    for (const char* const name : {"link", "wide", "new"}) {
        SaveFile file;
        ASSERT_TRUE(file.open(name, FileKind::state));
        file.append("state");
        EXPECT_TRUE(file.commit());
        EXPECT_EQ(statusOf(name).st_mode & 07777, 0600U) << name;
        EXPECT_EQ(readStateFile(name), "state");
    }
    EXPECT_EQ(folder.read("old"), oldText);
    fs::create_symlink("old", "another");
    ASSERT_EQ(::mkfifo("pipe", 0600), 0);
    for (const char* const name : {"another", "pipe", "none", "."}) {
        EXPECT_EQ(readStateFile(name), std::nullopt) << name;
    }
    makePrivateFolder(folder.path("a/b"));
    EXPECT_EQ(statusOf("a").st_mode & statusOf("a/b").st_mode & 0777, 0700U);
    ::umask(before);
}

TEST_F(SaveFileTest, NothingOfAKilledRunStays) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) {
        folder.write("until then", "");
        const pid_t child = ::fork();
        if (child == 0) {
            const rlimit none = {0, 0};
            ::setrlimit(RLIMIT_CORE, &none);
            std::signal(signal, SIG_DFL);
            removeTemporariesOnSignals();
            SaveFile file;
            std::string scratch;
            if (!file.open("old") || !makeTemporaryFolder("scratch-", scratch)) ::_exit(1);
            file.append(newText);
            folder.write(scratch + "/file", "left");
            {
                const HeldSignals held;
                ::raise(signal);
                fs::remove("until then");
            }
            ::_exit(1);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
        EXPECT_EQ(entries(), 1);
    }
    // Of a run that was killed outright: by its name, its owner and its age.
    for (const char* const name :
         {".polyfab-abcdef", ".polyfab-ghijkl", ".polyfab-Abcdef", ".polyfab-abcdefg"}) {
        folder.write(name, "left");
        const timespec ago[2] = {{0, UTIME_OMIT}, {std::time(nullptr) - 25 * 60 * 60, 0}};
        if (std::string(name) == ".polyfab-ghijkl") continue; // may still be written
        ASSERT_EQ(::utimensat(AT_FDCWD, name, ago, 0), 0);
    }
    EXPECT_TRUE(save("old"));
    EXPECT_FALSE(folder.has(".polyfab-abcdef"));
    EXPECT_EQ(entries(), 4);
}

TEST_F(SaveFileTest, WritesInPlaceWhereTheFolderTakesNoFiles) {
    fs::create_directory("copies");
    fs::create_directory("closed");
    ::chmod(folder.write("closed/file", oldText).c_str(), 0666);
    ::chmod("closed", 0555);
    ::chmod("copies", 0777);
    ::chmod(".", 0777);
    const bool root = ::seteuid(65534) == 0; // permission checks do not bind root
    if (::geteuid() != 0) {
        EXPECT_FALSE(canOnlyBeWrittenInPlace("closed/none") || canOnlyBeWrittenInPlace("."));
        inPlaceOffer.folderFor = [](const std::string&) { return std::string(); };
        EXPECT_FALSE(save("closed/file"));
        inPlaceOffer.folderFor = [](const std::string&) { return std::string("copies"); };
        const ino_t number = statusOf("closed/file").st_ino;
        EXPECT_TRUE(save("closed/file"));
        EXPECT_TRUE(folder.read("closed/file") == newText);
        EXPECT_EQ(statusOf("closed/file").st_ino, number);
        EXPECT_TRUE(save("open") && fs::is_empty("copies"));
        inPlaceOffer = {};
    }
    if (root && ::seteuid(0) != 0) std::abort();
    ::chmod("closed", 0755);
}

TEST_F(SaveFileTest, RefusesWhatCannotBeWritten) {
    fs::create_symlink("loop", "loop");
    fs::create_directory("closed");
    ::chmod(folder.write("closed/file", oldText).c_str(), 0666);
    ::chmod("old", 0444);
    ::chmod("closed", 0555);
    ::chmod(".", 0777);
    ASSERT_EQ(::mkfifo("closed/pipe", 0600), 0); // which nobody reads
    for (const char* name : {"", ".", "missing/file", "missing/", "loop", "closed/pipe"}) {
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
