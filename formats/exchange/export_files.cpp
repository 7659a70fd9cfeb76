// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/export_files.h"

#include "formats/exchange/library_file.h"

#include <cstdio>
#include <filesystem>
#include <unistd.h>
#include <vector>

namespace polyfab {

ExportFiles::ExportFiles() : io{open, close, reinterpret_cast<aiUserData>(&broken)} {}

aiFile* ExportFiles::open(aiFileIO* io, const char* path, const char* mode) {
    aiFile* const file = libraryFile(std::fopen(path, mode));
    // The library also looks in this way whether a file exists.
    if (file == nullptr && *mode != 'r') *reinterpret_cast<bool*>(io->UserData) = true;
    return file;
}

void ExportFiles::close(aiFileIO* io, aiFile* file) {
    if (!closeLibraryFile(file)) *reinterpret_cast<bool*>(io->UserData) = true;
}

bool roomIsLeft(const std::string& path) {
    const std::vector<char> some(std::size_t{1} << 16, 'x');
    const std::string name = std::filesystem::path(path).replace_filename("room.polyfab");
    std::FILE* const probe = std::fopen(name.c_str(), "wb");
    if (probe == nullptr) return false;
    const bool written = std::fwrite(some.data(), 1, some.size(), probe) == some.size();
    const bool closed = std::fclose(probe) == 0;
    ::unlink(name.c_str());
    return written && closed;
}

} // namespace polyfab
