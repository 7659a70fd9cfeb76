// SPDX-License-Identifier: GPL-3.0-or-later
// A folder of its own for one test, removed with everything in it.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdlib.h>
#include <string>

namespace polyfab::test {

class TempFolder {
  public:
    TempFolder() {
        std::string name = std::filesystem::temp_directory_path() / "polyfab-test-XXXXXX";
        if (mkdtemp(name.data()) != nullptr) root = name;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string path(const std::string& name) const { return root / name; }

    /// Writes a file of this content and gives its path.
    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(root / name, std::ios::binary) << content;
        return path(name);
    }

    std::string read(const std::string& name) const {
        std::stringstream content;
        content << std::ifstream(root / name, std::ios::binary).rdbuf();
        return content.str();
    }

    bool has(const std::string& name) const { return std::filesystem::exists(root / name); }

  private:
    std::filesystem::path root;
};

} // namespace polyfab::test
