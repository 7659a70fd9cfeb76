// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/import_offer.h"

#include "io/read_file.h"
#include "workbench/notes.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <string_view>

namespace polyfab {
namespace {

/// What the import library reads besides the common ones and holds surfaces.
constexpr const char* otherFormats =
    "*.AC;*.AMF;*.ASE;*.B3D;*.BLEND;*.COB;*.IFC;*.IQM;*.LWO;*.LWS;*.LXO;*.MD2;*.MD3;"
    "*.MD5MESH;*.MS3D;*.NFF;*.OFF;*.OGEX;*.PMX;*.SMD;*.X3DB;*.XGL;*.ZGL";

std::string importable() { return std::string(commonFormats) + ";" + otherFormats; }

/// The beginning of the file, "" when there is none to be read.
std::string beginning(const std::string& path, std::size_t most) {
    PieceReader file(path);
    std::string_view text;
    if (!file.isOpen() || !file.next(0, text)) return "";
    return std::string(text.substr(0, most));
}

} // namespace

bool hasSuffixOf(const std::string& pattern, const std::string& path) {
    std::string wanted = "*" + std::filesystem::path(path).extension().string() + ";";
    std::transform(wanted.begin(), wanted.end(), wanted.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return (pattern + ";").find(wanted) != std::string::npos;
}

bool isImportable(const std::string& path) { return hasSuffixOf(importable(), path); }

std::vector<FileFilter> withReadable(std::vector<FileFilter> filters) {
    if (platform().isWatched()) {
        filters.insert(filters.begin(), {"everything that I can read", importable()});
    }
    return filters;
}

bool isBinary(const std::string& path) {
    constexpr std::size_t looked = std::size_t{1} << 16;
    constexpr std::string_view inTexts = "\t\n\v\f\r\x1a\x1b";
    const std::string text = beginning(path, looked);
    return std::any_of(text.begin(), text.end(), [&](char c) {
        return static_cast<unsigned char>(c) < ' ' && inTexts.find(c) == inTexts.npos;
    });
}

bool isOrdinary3ds(const std::string& path) {
    constexpr std::size_t header = 6;
    const std::string text = beginning(path, header);
    if (text.size() < header || !text.starts_with("MM")) return false;
    std::uint32_t length = 0;
    for (std::size_t i = header; i-- > 2;) {
        length = length << 8 | static_cast<unsigned char>(text[i]);
    }
    std::error_code failure;
    return length == std::filesystem::file_size(path, failure) && !failure;
}

bool offerImport(const std::string& path, const std::string& why) {
    const std::string reason = why.empty() ? "" : why + "; ";
    if (!platform().isWatched()) {
        note(reason + "import reads this file");
        return false;
    }
    return platform().question("shall I import it?", path + (why.empty() ? "" : "\n" + why),
                               Buttons::yesNo)
           == Choice::yes;
}

} // namespace polyfab
