// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/library_file.h"

#include <memory>

namespace polyfab {
namespace {

/// An open file of the library: its operations, and what they work on.
struct OpenFile {
    aiFile operations;
    std::FILE* stream;
};

OpenFile& opened(aiFile* file) { return *reinterpret_cast<OpenFile*>(file->UserData); }

std::size_t readFrom(aiFile* file, char* to, std::size_t size, std::size_t count) {
    return std::fread(to, size, count, opened(file).stream);
}

std::size_t writeTo(aiFile* file, const char* from, std::size_t size, std::size_t count) {
    return std::fwrite(from, size, count, opened(file).stream);
}

std::size_t tell(aiFile* file) { return static_cast<std::size_t>(std::ftell(opened(file).stream)); }

std::size_t sizeOf(aiFile* file) {
    std::FILE* const stream = opened(file).stream;
    const long at = std::ftell(stream);
    std::fseek(stream, 0, SEEK_END);
    const long size = std::ftell(stream);
    std::fseek(stream, at, SEEK_SET);
    return static_cast<std::size_t>(size);
}

aiReturn seek(aiFile* file, std::size_t offset, aiOrigin origin) {
    constexpr int origins[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    const auto distance = static_cast<long>(offset);
    return std::fseek(opened(file).stream, distance, origins[origin]) == 0 ? aiReturn_SUCCESS
                                                                           : aiReturn_FAILURE;
}

void flush(aiFile* file) { std::fflush(opened(file).stream); }

} // namespace

aiFile* libraryFile(std::FILE* stream) {
    if (stream == nullptr) return nullptr;
    auto* const file =
        new OpenFile{{readFrom, writeTo, tell, sizeOf, seek, flush, nullptr}, stream};
    file->operations.UserData = reinterpret_cast<aiUserData>(file);
    return &file->operations;
}

bool closeLibraryFile(aiFile* file) {
    const std::unique_ptr<OpenFile> owner(&opened(file));
    const bool wrong = std::ferror(owner->stream) != 0;
    return std::fclose(owner->stream) == 0 && !wrong;
}

} // namespace polyfab
