// SPDX-License-Identifier: GPL-3.0-or-later
// The files that the exporter writes. The library does not look whether its writes succeed, so a
// full disk would pass for a complete file; here every failure is noted.
#pragma once

#include <assimp/cfileio.h>

#include <string>

namespace polyfab {

class ExportFiles {
  public:
    ExportFiles();
    ExportFiles(const ExportFiles&) = delete;
    ExportFiles& operator=(const ExportFiles&) = delete;

    /// For the library, which must be done with them before this object goes.
    aiFileIO* operations() { return &io; }
    /// Whether a file could not be made or not be written to its end.
    [[nodiscard]] bool failed() const { return broken; }

  private:
    static aiFile* open(aiFileIO* io, const char* path, const char* mode);
    static void close(aiFileIO* io, aiFile* file);

    aiFileIO io;
    bool broken = false;
};

/// Whether a little more can be written beside this path: some exporters use operations of their
/// own, and where there is no room left there may not have been room for all.
[[nodiscard]] bool roomIsLeft(const std::string& path);

} // namespace polyfab
