// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/mesh_formats.h"

#include "formats/3ds/3ds_reader.h"
#include "formats/3ds/3ds_writer.h"
#include "formats/dxf/dxf_reader.h"
#include "formats/dxf/dxf_writer.h"
#include "formats/obj/obj_reader.h"
#include "formats/obj/obj_writer.h"
#include "mesh/mesh.h"
#include "workbench/state.h"

#include <algorithm>
#include <cctype>

namespace polyfab {
namespace {

Written outcomeOf(int written) { return written != 0 ? Written::yes : Written::no; }

/// `digits` is objPlain or objLossless.
template <unsigned digits>
Written writeObjVariant(Mesh& mesh, const std::string& chosen) {
    const std::string path = objFileOf(chosen);
    const auto write = [&](unsigned flags) { return writeObjFile(mesh, path, flags | digits); };
    workbench.fileName = path;
    if (endsIn(chosen, ".obj#")) {
        const int written = write(objTrace);
        if (!written) mesh.changed = 1;
        return outcomeOf(written);
    }
    if (endsIn(chosen, ".obj") && write(objPlain)) return Written::yes;
    if (endsIn(chosen, ".obj-") && write(objRelative)) return Written::yes;
    return write(objPlain) ? Written::yes : Written::told;
}

Written writeDxf(Mesh& mesh, const std::string& path) {
    return outcomeOf(writeDxfFile(mesh, path));
}

Written write3ds(Mesh& mesh, const std::string& path) {
    return outcomeOf(write3dsFile(mesh, path));
}

} // namespace

constexpr Format dxfFormat = {.suffix = ".dxf",
                              .filter = "DXF files",
                              .pattern = "*.DXF",
                              .read = readDxfFile,
                              .write = writeDxf,
                              .saveAs = writeDxf,
                              .save = [](Mesh& mesh, const std::string& path) {
                                  return writeDxfFile(mesh, path, Wanted::all);
                              }};

constexpr Format threeDsFormat = {.suffix = ".3ds",
                                  .filter = "3DS files",
                                  .pattern = "*.3DS",
                                  .read = read3dsFile,
                                  .write = write3ds,
                                  .saveAs = write3ds,
                                  .save = [](Mesh& mesh, const std::string& path) {
                                      return write3dsFile(mesh, path, Wanted::all);
                                  }};

constexpr Format objFormat = {.suffix = ".obj",
                              .filter = "OBJ files",
                              .pattern = "*.OBJ",
                              .read = readObjFile,
                              .write = writeObjVariant<objPlain>,
                              .saveAs = writeObjVariant<objLossless>,
                              .save = [](Mesh& mesh, const std::string& path) {
                                  return writeObjFile(mesh, path, objLossless, Wanted::all);
                              }};

const Format* formatOf(std::string_view path) {
    for (const Format* const format : {&dxfFormat, &threeDsFormat, &objFormat}) {
        if (endsIn(path, format->suffix)) return format;
    }
    return nullptr;
}

bool endsIn(std::string_view path, std::string_view suffix) {
    const auto same = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == b;
    };
    return path.size() >= suffix.size()
           && std::equal(suffix.begin(), suffix.end(), path.end() - std::ssize(suffix),
                         [&](char wanted, char c) { return same(c, wanted); });
}

std::string objFileOf(const std::string& chosen) {
    const bool variant = endsIn(chosen, ".obj-") || endsIn(chosen, ".obj#");
    return chosen.substr(0, chosen.size() - (variant ? 1 : 0));
}

} // namespace polyfab
