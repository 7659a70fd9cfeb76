// SPDX-License-Identifier: GPL-3.0-or-later
#ifdef POLYFAB_QT
#include "platform/qt/folders.h"

#include "tests/support/temp_folder.h"

#include <QDir>
#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

TEST(Folders, EachKindOfDialogBeginsWhereItEndedAlsoInTheNextRun) {
    const TempFolder state, read, write;
    const auto name = [](const TempFolder& folder) {
        return QString::fromStdString(folder.path(""));
    };
    const std::string reading = "file to read mesh from?", writing = "file=to/write;mesh to?";
    {
        Folders folders(state.path(""));
        EXPECT_EQ(folders.of(reading), QDir::currentPath());
        folders.use(reading, name(read));
        EXPECT_EQ(folders.of(writing), name(read)); // has none of its own yet
        folders.use(writing, name(write));
        folders.use("/"); // a file that was dropped
        EXPECT_EQ(folders.of("another"), "/");
    }
    Folders next(state.path(""));
    EXPECT_EQ(next.of(reading), name(read));
    EXPECT_EQ(next.of(writing), name(write));
    EXPECT_EQ(Folders("").of(reading), QDir::currentPath());
    next.use(reading, "/a folder that is gone");
    next.use(name(write));
    EXPECT_EQ(next.of(reading), name(write));
}

} // namespace
} // namespace polyfab::test
#endif
