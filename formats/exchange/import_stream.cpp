// SPDX-License-Identifier: GPL-3.0-or-later
// Header and tables in the order of StreamHeader's counts. Tables of eight-byte values come first,
// so that each lies aligned. Texts end in NUL: groups, materials, their
// pictures, notes. The pictures that are embedded come last, after their sizes among the tables.
#include "formats/exchange/import_stream.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace polyfab {
namespace {

struct StreamHeader {
    char magic[8];
    std::int64_t points, normals, texcoords, corners, faces, groups, materials, notes, texts,
        failure, embedded;
};

constexpr char magic[8] = {'p', 'f', 'm', 'e', 's', 'h', '0', '3'};

bool writeAll(int file, const void* data, std::size_t size) {
    const char* next = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t count = ::write(file, next, size);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        next += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

template <typename T>
bool writeTable(int file, const std::vector<T>& table) {
    return writeAll(file, table.data(), table.size() * sizeof(T));
}

/// Takes `count` elements off the front of `bytes`. False when there are not so many.
template <typename T>
bool take(std::span<const char>& bytes, std::int64_t count, std::span<const T>& table) {
    if (count < 0 || static_cast<std::uint64_t>(count) > bytes.size() / sizeof(T)) return false;
    const auto elements = static_cast<std::size_t>(count);
    table = {reinterpret_cast<const T*>(bytes.data()), elements};
    bytes = bytes.subspan(elements * sizeof(T));
    return true;
}

/// Takes `count` texts off the front of `text`.
bool takeTexts(std::string_view& text, std::int64_t count, std::vector<std::string_view>& list) {
    if (count < 0 || static_cast<std::uint64_t>(count) > text.size()) return false;
    for (std::int64_t i = 0; i < count; ++i) {
        const std::size_t end = text.find('\0');
        if (end == std::string_view::npos) return false;
        list.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    return true;
}

/// Takes the pictures of these sizes, which are all there is.
bool takeEmbedded(std::span<const char> bytes, std::span<const std::int64_t> sizes,
                  std::vector<std::string_view>& list) {
    for (const std::int64_t size : sizes) {
        std::span<const char> picture;
        if (!take(bytes, size, picture)) return false;
        list.emplace_back(picture.data(), picture.size());
    }
    return bytes.empty();
}

/// Whether -1 or 0 (`lowest`) <= index < size.
bool inRange(std::int32_t index, std::int32_t lowest, std::size_t size) {
    return index >= lowest && (index < 0 || static_cast<std::size_t>(index) < size);
}

bool referencesAreSound(const StreamView& view) {
    const auto cornerIsSound = [&](const StreamCorner& corner) {
        return inRange(corner.point, 0, view.points.size())
               && inRange(corner.texcoord, -1, view.texcoords.size())
               && inRange(corner.normal, -1, view.normals.size());
    };
    std::size_t cornersLeft = view.corners.size();
    const auto faceIsSound = [&](const StreamFace& face) {
        if (face.corners < 3 || static_cast<std::size_t>(face.corners) > cornersLeft) return false;
        cornersLeft -= static_cast<std::size_t>(face.corners);
        return inRange(face.group, 0, view.groups.size())
               && inRange(face.material, 0, view.materials.size());
    };
    const auto lookIsSound = [&](const StreamLook& look) {
        return look.embedded >= -1 && look.embedded < std::ssize(view.embedded);
    };
    return std::all_of(view.looks.begin(), view.looks.end(), lookIsSound)
           && std::all_of(view.corners.begin(), view.corners.end(), cornerIsSound)
           && std::all_of(view.faces.begin(), view.faces.end(), faceIsSound) && cornersLeft == 0;
}

} // namespace

bool writeStream(int file, const StreamTables& tables) {
    std::string texts;
    std::vector<StreamLook> looks = tables.looks;
    std::vector<std::string> pictures = tables.pictures;
    looks.resize(tables.materials.size());
    pictures.resize(tables.materials.size());
    std::vector<std::int64_t> sizes;
    for (const std::string& picture : tables.embedded) sizes.push_back(std::ssize(picture));
    const std::vector<std::string>* const lists[] = {&tables.groups, &tables.materials, &pictures,
                                                     &tables.notes};
    for (const auto* const list : lists) {
        for (const std::string& text : *list) texts += text.substr(0, text.find('\0')) + '\0';
    }
    const auto count = [](const auto& table) { return static_cast<std::int64_t>(table.size()); };
    StreamHeader header = {{},
                           count(tables.points),
                           count(tables.normals),
                           count(tables.texcoords),
                           count(tables.corners),
                           count(tables.faces),
                           count(tables.groups),
                           count(tables.materials),
                           count(tables.notes),
                           count(texts),
                           count(tables.failure),
                           count(tables.embedded)};
    std::copy_n(magic, sizeof magic, header.magic);
    return writeAll(file, &header, sizeof header) && writeTable(file, tables.points)
           && writeTable(file, tables.normals) && writeTable(file, tables.texcoords)
           && writeTable(file, looks) && writeTable(file, sizes) && writeTable(file, tables.corners)
           && writeTable(file, tables.faces) && writeTable(file, tables.colors)
           && writeAll(file, texts.data(), texts.size())
           && writeAll(file, tables.failure.data(), tables.failure.size())
           && std::all_of(tables.embedded.begin(), tables.embedded.end(),
                          [file](const std::string& picture) {
                              return writeAll(file, picture.data(), picture.size());
                          });
}

bool readStream(std::span<const char> bytes, StreamView& view) {
    StreamHeader header;
    if (bytes.size() < sizeof header) return false;
    std::memcpy(&header, bytes.data(), sizeof header);
    if (!std::equal(magic, magic + sizeof magic, header.magic)) return false;
    bytes = bytes.subspan(sizeof header);
    std::span<const char> texts;
    std::span<const char> failure;
    std::span<const std::int64_t> sizes;
    if (!take(bytes, header.points, view.points) || !take(bytes, header.normals, view.normals)
        || !take(bytes, header.texcoords, view.texcoords)
        || !take(bytes, header.materials, view.looks) || !take(bytes, header.embedded, sizes)
        || !take(bytes, header.corners, view.corners) || !take(bytes, header.faces, view.faces)
        || !take(bytes, header.materials, view.colors) || !take(bytes, header.texts, texts)
        || !take(bytes, header.failure, failure) || !takeEmbedded(bytes, sizes, view.embedded)) {
        return false;
    }
    std::string_view text(texts.data(), texts.size());
    view.failure = {failure.data(), failure.size()};
    return takeTexts(text, header.groups, view.groups)
           && takeTexts(text, header.materials, view.materials)
           && takeTexts(text, header.materials, view.pictures)
           && takeTexts(text, header.notes, view.notes) && text.empty() && referencesAreSound(view);
}

} // namespace polyfab
