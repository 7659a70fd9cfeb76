// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <unistd.h>

namespace polyfab::bench {

/// A file of this process that goes away with its owner.
struct ScratchFile {
    const std::string path =
        (std::filesystem::temp_directory_path() / ("polyfab_bench_" + std::to_string(getpid())))
            .string();
    ~ScratchFile() { std::filesystem::remove(path); }
    [[nodiscard]] double megabytes() const {
        return static_cast<double>(std::filesystem::file_size(path)) / 1e6;
    }
};

} // namespace polyfab::bench
