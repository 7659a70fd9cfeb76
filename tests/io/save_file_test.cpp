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

unsigned modeOf(const fs::path& path) {
    struct stat status = {};
    ::stat(path.c_str(), &status);
    return status.st_mode & 07777;
}

class SaveFileTest : public testing::Test {
  protected:
    std::string path(const std::string& name) const { return folder.path(name); }
    std::string makeOld(const std::string& name = "old") const {
        return folder.write(name, oldText);
    }

    /// Entries of the folder: temporary files would show up here.
    int entries() const {
        return static_cast<int>(
            std::distance(fs::directory_iterator(path("")), fs::directory_iterator()));
    }

    test::TempFolder folder;
};

/// Lets permission checks apply while it lives, also when the tests are run by root.
class Unprivileged {
  public:
    Unprivileged() : root(::geteuid() == 0 && ::seteuid(nobody) == 0) {}
    ~Unprivileged() {
        if (root && ::seteuid(0) != 0) std::abort();
    }
    bool works() const { return ::geteuid() != 0; }

  private:
    static constexpr uid_t nobody = 65534;
    bool root;
};

TEST_F(SaveFileTest, WritesToTheNamedFile) {
    makeOld();
    const std::string longName(255, 'x');
    fs::create_directory(path("sub"));
    fs::create_symlink("../old", path("sub/link"));
    fs::create_symlink("sub/link", path("chain"));
    fs::create_symlink("sub/made", path("dangling"));
    struct {
        std::string name, target;
    } const cases[] = {
        {"new", "new"},           {"old", "old"},      {longName, longName}, {"chain", "old"},
        {"dangling", "sub/made"}, {"sub/link", "old"}, {"sub/../b", "b"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(save(path(row.name)));
        EXPECT_TRUE(folder.read(row.target) == newText);
        EXPECT_TRUE(save(path(row.name), oldText));
        EXPECT_EQ(folder.read(row.target), oldText);
    }
    for (const char* link : {"sub/link", "chain", "dangling"}) {
        EXPECT_TRUE(fs::is_symlink(path(link))) << link;
    }
    EXPECT_EQ(entries(), 7); // new, old, the long name, two links, b and sub
}

TEST_F(SaveFileTest, WritesToARelativeName) {
    const fs::path before = fs::current_path();
    fs::current_path(path(""));
    EXPECT_TRUE(save("here"));
    fs::current_path(before);
    EXPECT_TRUE(folder.read("here") == newText);
}

TEST_F(SaveFileTest, KeepsPermissions) {
    makeOld();
    for (const unsigned mode : {0600U, 0644U, 0666U, 0755U}) {
        ::chmod(path("old").c_str(), mode);
        EXPECT_TRUE(save(path("old")));
        EXPECT_EQ(modeOf(path("old")), mode);
    }
    const mode_t before = ::umask(027);
    EXPECT_TRUE(save(path("new")));
    ::umask(before);
    EXPECT_EQ(modeOf(path("new")), 0640U);
}

TEST_F(SaveFileTest, KeepsTheOwner) {
    makeOld();
    if (::chown(path("old").c_str(), 1234, 5678) != 0) GTEST_SKIP() << "only root may do this";
    EXPECT_TRUE(save(path("old")));
    struct stat status = {};
    ASSERT_EQ(::stat(path("old").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 1234U);
    EXPECT_EQ(status.st_gid, 5678U);
}

TEST_F(SaveFileTest, Refuses) {
    fs::create_symlink("loop", path("loop"));
    fs::create_symlink("missing/file", path("nowhere"));
    for (const std::string& name : {path(""), path("missing/file"), path("missing/"), path("loop"),
                                    path("nowhere"), path(std::string(256, 'x')), std::string()}) {
        SaveFile file;
        EXPECT_FALSE(file.open(name)) << name;
        EXPECT_FALSE(file.commit()) << name;
    }
    EXPECT_EQ(entries(), 2);
}

TEST_F(SaveFileTest, RefusesWithoutPermission) {
    fs::create_directory(path("closed"));
    ::chmod(makeOld("closed/file").c_str(), 0666);
    ::chmod(makeOld("locked").c_str(), 0444);
    ::chmod(path("closed").c_str(), 0555);
    ::chmod(path("").c_str(), 0777);
    {
        const Unprivileged user;
        if (!user.works()) GTEST_SKIP() << "permission checks cannot be had";
        for (const char* name : {"locked", "closed/file", "closed/new"}) {
            EXPECT_FALSE(save(path(name))) << name;
        }
        EXPECT_TRUE(save(path("open")));
    }
    EXPECT_EQ(folder.read("locked"), oldText);
    EXPECT_EQ(folder.read("closed/file"), oldText);
    EXPECT_EQ(entries(), 3);
    ::chmod(path("closed").c_str(), 0755);
}

TEST_F(SaveFileTest, FileSizeLimitKeepsTheOldFile) {
    makeOld();
    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit limit = {100000, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    const bool replaced = save(path("old"));
    const bool made = save(path("new"));
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_FALSE(replaced);
    EXPECT_FALSE(made);
    EXPECT_EQ(folder.read("old"), oldText);
    EXPECT_EQ(entries(), 1);
}

TEST_F(SaveFileTest, FailedRenameLeavesNothing) {
    SaveFile file;
    ASSERT_TRUE(file.open(path("name")));
    file.append(newText);
    fs::create_directory(path("name"));
    EXPECT_FALSE(file.commit());
    EXPECT_EQ(entries(), 1);
}

TEST_F(SaveFileTest, AbandonedLeavesNothing) {
    makeOld();
    try {
        SaveFile file;
        ASSERT_TRUE(file.open(path("old")));
        file.append(newText);
        EXPECT_EQ(entries(), 2);
        throw 0;
    } catch (int) {
    }
    EXPECT_EQ(entries(), 1);
    EXPECT_EQ(folder.read("old"), oldText);
}

TEST_F(SaveFileTest, WritesDirectlyToWhatIsNoFile) {
    EXPECT_FALSE(save("/dev/full"));
    EXPECT_FALSE(save("/dev/full", "x"));
    EXPECT_TRUE(save("/dev/null"));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));

    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    const int reader = ::open(path("pipe").c_str(), O_RDWR | O_NONBLOCK);
    EXPECT_TRUE(save(path("pipe"), "through"));
    char text[8] = {};
    EXPECT_EQ(::read(reader, text, sizeof text), 7);
    EXPECT_STREQ(text, "through");
    EXPECT_TRUE(fs::is_fifo(path("pipe")));
    ::close(reader);
}

// As /dev/stdout does when the output is redirected.
TEST_F(SaveFileTest, WritesToAnOpenFile) {
    makeOld();
    const int handle = ::open(path("old").c_str(), O_WRONLY);
    EXPECT_TRUE(save("/proc/self/fd/" + std::to_string(handle), "more\n"));
    struct stat opened = {};
    struct stat named = {};
    ASSERT_EQ(::fstat(handle, &opened), 0);
    ASSERT_EQ(::stat(path("old").c_str(), &named), 0);
    EXPECT_EQ(opened.st_ino, named.st_ino);
    EXPECT_EQ(folder.read("old"), "old\nmore\n");
    ::close(handle);
}

TEST_F(SaveFileTest, KilledAnyTimeTheFileIsWhole) {
    constexpr int rounds = 60;
    makeOld();
    ASSERT_TRUE(save(path("old"), oldText));
    int sawNew = 0;
    for (int round = 0; round < rounds; ++round) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (bool big = true;; big = !big) {
                if (!save(path("old"), big ? std::string_view(newText) : oldText)) ::_exit(1);
            }
        }
        ::usleep(static_cast<useconds_t>(100 * round));
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
