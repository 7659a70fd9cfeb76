// SPDX-License-Identifier: GPL-3.0-or-later
// Where a running editor keeps its recovery file: a folder of its own in the state folder, named
// after its process. A lock that the system takes away with the process, however that ends, tells
// the folders of the living from those of the dead.
#pragma once

#include <string>
#include <vector>

namespace polyfab {

/// Holds the lock of one such folder, or nothing.
class RecoveryFolder {
  public:
    RecoveryFolder() = default;
    RecoveryFolder(RecoveryFolder&& other) noexcept;
    RecoveryFolder& operator=(RecoveryFolder&& other) noexcept;
    ~RecoveryFolder();

    /// A new one for this process, with the state folder if need be; nothing when none can be made.
    [[nodiscard]] static RecoveryFolder make(const std::string& stateFolder);

    /// Those of editors that live no more and left a file, the newest file first. As long as one is
    /// held here, no other editor finds it. Folders without a file are removed.
    [[nodiscard]] static std::vector<RecoveryFolder> leftBehind(const std::string& stateFolder);

    explicit operator bool() const { return lock >= 0; }

    /// Whether something is held here and nobody has removed it.
    [[nodiscard]] bool isThere() const;
    /// Whether the recovery file is there, too.
    [[nodiscard]] bool holdsFile() const;

    /// Path of the recovery file.
    [[nodiscard]] std::string file() const { return path + "/mesh"; }

    /// Removes the folder with the file; this then holds nothing.
    void remove();

    /// The same, but the file is kept beside the folder. Its path; "" and nothing done when it
    /// can't be moved.
    [[nodiscard]] std::string removeButKeepFile();

  private:
    RecoveryFolder(std::string folder, int lockFile) : path(std::move(folder)), lock(lockFile) {}
    static RecoveryFolder lockOf(std::string folder);
    void release();

    std::string path;
    int lock = -1;
};

} // namespace polyfab
