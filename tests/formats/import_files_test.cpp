// SPDX-License-Identifier: GPL-3.0-or-later
// What an importer gets where the system has no locks: the names alone keep it in.
#include "formats/exchange/import_files.h"

#include "tests/support/temp_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace polyfab {
namespace {

TEST(ImportFiles, NamesAloneKeepAnImporterInTheFolder) {
    const test::TempFolder folder;
    std::filesystem::create_directories(folder.path("own/below"));
    for (const char* const name : {"outside", "own/file", "own/below/file"}) folder.write(name, "");
    std::filesystem::create_symlink("../outside", folder.path("own/out"));
    std::filesystem::create_symlink("..", folder.path("own/up"));
    std::filesystem::create_symlink("below/file", folder.path("own/in"));
    ASSERT_EQ(::mkfifo(folder.path("own/pipe").c_str(), 0600), 0);
    const struct {
        const char* name;
        const char* why; ///< null: it is opened
    } rows[] = {{"main", nullptr},
                {"file", nullptr},
                {"below/file", nullptr},
                {"below/../file", nullptr},
                {"in", nullptr},
                {"../outside", "lies outside its folder"},
                {"below/../../outside", "lies outside its folder"},
                {"out", "lies outside its folder"},
                {"up/outside", "lies outside its folder"},
                {"pipe", "is no regular file"},
                {"below", "is no regular file"},
                {"none", "is not there"}};
    std::string text;
    for (const auto& row : rows) text += std::string(" ") + row.name;
    const std::string path = folder.write("own/main", text);
    for (const auto& [name, why] : rows) {
        ImportFiles files(path);
        aiFileIO* const io = files.operations();
        aiFile* const file =
            io->OpenProc(io, folder.path(std::string("own/") + name).c_str(), "rb");
        EXPECT_EQ(file != nullptr, why == nullptr) << name;
        if (file != nullptr) io->CloseProc(io, file);
        const std::string told = files.notes().empty() ? "" : files.notes().front();
        EXPECT_EQ(told, why == nullptr ? ""
                                       : "the file asks for " + std::string(name) + ", which " + why
                                             + ": left out");
    }
}

} // namespace
} // namespace polyfab
