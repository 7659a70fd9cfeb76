// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/own_exchange.h"

#include "display/material_looks.h"
#include "formats/3ds/3ds_writer.h"
#include "formats/before_append.h"
#include "formats/dxf/dxf_writer.h"
#include "formats/exchange/stream_looks.h"
#include "formats/file_command.h"
#include "formats/left_out.h"
#include "formats/mesh_formats.h"
#include "formats/obj/library_writer.h"
#include "formats/obj/material_library.h"
#include "formats/obj/obj_reader.h"
#include "formats/obj/obj_writer.h"
#include "formats/written_parts.h"
#include "io/save_file.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "mesh/store.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>
#include <tuple>

namespace polyfab {
namespace {

namespace fs = std::filesystem;

constexpr const char* noMemory = "there is not enough memory";
constexpr const char* noRoom = "there is no room for temporary files";

/// What an export is to be.
struct Target {
    std::string chosen;
    fs::path path; ///< that it is to have in the end
    fs::path file; ///< that it is written to, with others beside it
    bool onlySelected;
    Sentences& lost;
};

std::string addObj(Mesh& mesh, const std::string& path) {
    return addObjFile(mesh, path, objImport);
}

/// Makes a file with what `fill` appends. Returns "" or what went wrong.
template <typename Fill>
std::string makeFile(const fs::path& path, Fill fill) {
    SaveFile file;
    return file.open(path) && fill(file) && file.commit() ? "" : noRoom;
}

/// Tells which of the materials have no picture there because theirs can't be read.
void tellUnreadPictures(const Mesh& mesh, const std::vector<std::string>& names, Sentences& list) {
    std::int64_t unread = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const MaterialLook* const look = lookOf(mesh.materials[i].name);
        unread += look != nullptr && look->picture != nullptr && names[i].empty();
    }
    addCount(list, unread, pictureUnread);
}

std::string writeObj(const Mesh& mesh, const Target& target) {
    const bool keeps = looksUntold(mesh, target.path) == 0;
    const std::string library = keeps ? mesh.mtllib : newLibraryName(target.path);
    // Before the file that names it: whenever this ends, what names a library has it.
    if (keeps) writeMaterialLibrary(mesh, target.path);
    if (!keeps) {
        const fs::path scratch = target.file.parent_path();
        const std::vector<std::string> pictures = picturesBeside(mesh, target.path, scratch);
        tellUnreadPictures(mesh, pictures, target.lost);
        std::string fault = makeFile(scratch / library, [&](SaveFile& file) {
            file.append(libraryText(mesh, target.path, pictures));
            return true;
        });
        if (!fault.empty()) return fault;
    }
    const unsigned variant = endsIn(target.chosen, ".obj-")   ? objRelative
                             : endsIn(target.chosen, ".obj#") ? objTrace
                                                              : objPlain;
    addCount(target.lost, writtenParts(mesh, target.onlySelected).doubleNames, doubleNamesLost);
    return makeFile(target.file, [&](SaveFile& file) {
        return appendObj(file, mesh, target.onlySelected, objLossless | variant, library);
    });
}

/// Tells what this format does not have of the looks of the materials.
void tellLostLooks(const Mesh& mesh, bool onlySelected, Sentences& list) {
    std::vector<bool> used = writtenParts(mesh, onlySelected).materials;
    used.resize(static_cast<std::size_t>(mesh.nmat));
    std::int64_t pictures = 0, opacities = 0;
    for (int i = 0; i < mesh.nmat; ++i) {
        const MaterialLook* const look = lookOf(mesh.materials[i].name);
        if (look == nullptr || !used[static_cast<std::size_t>(i)]) continue;
        opacities += look->opacity != 1;
        pictures += look->picture != nullptr;
    }
    addCount(list, opacities, opacityLost);
    addCount(list, pictures, pictureLost);
}

std::string writeDxf(const Mesh& mesh, const Target& target) {
    std::string fault = makeFile(target.file, [&](SaveFile& file) {
        appendDxf(file, mesh, target.onlySelected, target.lost);
        return true;
    });
    tellLostLooks(mesh, target.onlySelected, target.lost);
    return fault;
}

std::string write3ds(const Mesh& mesh, const Target& target) {
    const fs::path scratch = target.file.parent_path();
    const std::vector<std::string> pictures = picturesBeside(mesh, target.path, scratch);
    std::string fault;
    const std::string written = makeFile(target.file, [&](SaveFile& file) {
        fault = append3ds(file, mesh, target.onlySelected, pictures, target.lost);
        return fault.empty();
    });
    tellUnreadPictures(mesh, pictures, target.lost);
    return fault.empty() ? written : fault;
}

struct OwnFormat {
    std::string_view suffix;
    std::string (*add)(Mesh& mesh, const std::string& path); ///< to the mesh; null: by the child
    std::string (*write)(const Mesh& mesh, const Target& target);
};

constexpr OwnFormat formats[] = {{".obj", addObj, writeObj},
                                 {".obj-", nullptr, writeObj},
                                 {".obj#", nullptr, writeObj},
                                 {".dxf", nullptr, writeDxf},
                                 {".3ds", nullptr, write3ds}};

const OwnFormat* ownFormat(const std::string& path) {
    const auto* const row = std::find_if(std::begin(formats), std::end(formats),
                                         [&](const auto& f) { return endsIn(path, f.suffix); });
    return row == std::end(formats) ? nullptr : row;
}

/// Adds the file. Arrays that could not grow are empty then.
std::string add(Mesh& mesh, const std::string& path) {
    const std::string reason = ownFormat(path)->add(mesh, path);
    const auto counts = [&] { return std::tuple(mesh.np, mesh.nq, mesh.nf, mesh.nd, mesh.nt); };
    const auto before = counts();
    mesh.settleLostArrays();
    return !reason.empty() || counts() == before ? reason : noMemory;
}

std::string addToMesh(Mesh& mesh, const std::string& path) {
    const BeforeAppend before(mesh);
    const std::string library = mesh.mtllib;
    const auto changed = mesh.changed;
    std::string reason = add(mesh, path);
    if (reason.empty()) return reason;
    before.restore(mesh);
    std::strcpy(mesh.mtllib, library.c_str());
    mesh.changed = changed;
    return reason;
}

std::string replaceMesh(Mesh& mesh, const std::string& path) {
    Mesh old;
    mesh.swapWith(old);
    std::string reason = add(mesh, path);
    if (reason.empty()) {
        old.clear(true);
    } else {
        farfree(&mesh.groups);
        mesh.clear(true);
        mesh.swapWith(old);
    }
    return reason;
}

} // namespace

bool importsItself(const std::string& path) {
    const OwnFormat* const format = ownFormat(path);
    return format != nullptr && format->add != nullptr;
}

bool exportsItself(const std::string& path) { return ownFormat(path) != nullptr; }

std::string importOwn(Mesh& mesh, const std::string& path, bool append) {
    stale.edges = true;
    std::string reason = append ? addToMesh(mesh, path) : replaceMesh(mesh, path);
    stale.edges = true;
    return reason;
}

std::string exportOwn(const Mesh& mesh, const std::string& chosen, const fs::path& folder,
                      bool onlySelected, Sentences& lost) {
    const fs::path path = objFileOf(chosen);
    if (countFaces(mesh, onlySelected) == 0) return "there is no face to write";
    return ownFormat(chosen)->write(mesh,
                                    {chosen, path, folder / path.filename(), onlySelected, lost});
}

} // namespace polyfab
