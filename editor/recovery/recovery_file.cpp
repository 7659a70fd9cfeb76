// SPDX-License-Identifier: GPL-3.0-or-later
// Magic, version, size of all; the editor's part, the mesh and, if there are any, the looks of its
// materials; a checksum of everything before it.
// The checksum is FNV-1a in 64 bits (Fowler, Noll and Vo), which one changed byte always changes.
#include "editor/recovery/recovery_file.h"

#include "io/bytes.h"
#include "io/read_file.h"
#include "io/save_file.h"
#include "mesh/check.h"
#include "mesh/pack_snapshot.h"
#include "mesh/stale.h"
#include "mesh/store.h"
#include "platform/platform.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <map>
#include <memory>
#include <new>
#include <system_error>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

constexpr std::string_view magic = "polyfabR";
constexpr std::uint64_t version = 1;
constexpr int versionBytes = 4, sizeBytes = 8, checksumBytes = 8;
static_assert(recoveryHeadBytes == magic.size() + versionBytes + sizeBytes);

std::uint64_t checksumOf(std::string_view bytes) {
    std::uint64_t sum = 0xcbf29ce484222325;
    for (const char byte : bytes) {
        sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    }
    return sum;
}

const RecoveryFault noMemory{"there is not enough memory", false};

template <typename Act>
void eachFigure(View& view, Act act) {
    for (auto& row : view.rotation) {
        for (double& figure : row) act(figure);
    }
    for (double* const figure : {&view.scale, &view.offset.x, &view.offset.y, &view.offset.z}) {
        act(*figure);
    }
}

template <typename Act>
void eachFigure(EditorPart& part, Act act) {
    for (Vec3* const place :
         {&part.settable[0], &part.settable[1], &part.box.left, &part.box.right}) {
        for (double* const figure : {&place->x, &place->y, &place->z}) act(*figure);
    }
}

bool isUsable(View& view) {
    bool usable = view.scale >= 1e-305 && view.scale <= 1e305;
    eachFigure(view, [&](double figure) { usable = usable && std::isfinite(figure); });
    return usable;
}

void unpackEditor(ByteReader& in, EditorPart& part) {
    part.fileName = in.text();
    part.lastChosen = in.text();
    const auto unpack = [&](double& figure) { figure = in.real(); };
    eachFigure(part, unpack);
    eachFigure(part.view, unpack);
    constexpr int mostPixels = 0xFFFF;
    for (int* const side : {&part.view.client.width, &part.view.client.height}) {
        *side = static_cast<int>(in.signedWithin(0, mostPixels));
    }
    for (int* const number : {&part.edgeFace, &part.edgeCorner}) {
        *number = static_cast<int>(in.signedWithin(-1, INT32_MAX));
    }
}

// Looks. Of a picture in a file only its path is kept, of one that came inside of a file all of it;
// what several materials share is there once.

void packLooks(ByteWriter& out, const MaterialLooks& looks) {
    std::map<const PictureSource*, std::uint64_t> numbers{{nullptr, 0}};
    out.number(looks.byName.size());
    for (const auto& [name, look] : looks.byName) {
        out.text(name);
        const PicturePlacing& placing = look.placing;
        for (const double figure :
             {placing.uScale, placing.vScale, placing.uOffset, placing.vOffset, look.opacity}) {
            out.real(figure);
        }
        const PictureSource* const picture = look.picture.get();
        const auto [entry, isNew] = numbers.try_emplace(picture, numbers.size());
        out.number(entry->second);
        if (!isNew) continue;
        out.text(picture->path());
        out.text(picture->bytes());
    }
    out.number(looks.libraries.size());
    for (const auto& library : looks.libraries) {
        for (const std::string* const text : {&library->line, &library->name, &library->path,
                                              &library->meshFolder, &library->text}) {
            out.text(*text);
        }
    }
}

MaterialLook unpackLook(ByteReader& in, std::vector<std::shared_ptr<PictureSource>>& pictures) {
    MaterialLook look;
    PicturePlacing& placing = look.placing;
    for (double* const figure :
         {&placing.uScale, &placing.vScale, &placing.uOffset, &placing.vOffset, &look.opacity}) {
        *figure = in.real();
    }
    const std::uint64_t number = in.number();
    if (number > pictures.size()) in.fail();
    if (number == pictures.size()) {
        std::string path(in.text()), bytes(in.text());
        pictures.push_back(std::make_shared<PictureSource>(std::move(path), std::move(bytes)));
    }
    if (in.ok()) look.picture = pictures[number];
    return look;
}

LooksRef unpackLooks(ByteReader& in) {
    auto looks = std::make_shared<MaterialLooks>();
    std::vector<std::shared_ptr<PictureSource>> pictures{nullptr};
    for (std::uint64_t left = in.number(); left > 0 && in.ok(); --left) {
        std::string name(in.text());
        looks->byName[std::move(name)] = unpackLook(in, pictures);
    }
    for (std::uint64_t left = in.number(); left > 0 && in.ok(); --left) {
        MaterialLibrary library;
        for (std::string* const text :
             {&library.line, &library.name, &library.path, &library.meshFolder, &library.text}) {
            *text = in.text();
        }
        looks->libraries.push_back(std::make_shared<const MaterialLibrary>(std::move(library)));
    }
    return looks;
}

bool isTerminated(const char (&name)[nameSize]) {
    return std::memchr(name, '\0', nameSize) != nullptr;
}

/// Null when the mesh is sound and its names, which the check does not look at, are texts.
const char* faultOf(const Mesh& mesh) {
    if (const char* const fault = check(mesh)) return fault;
    const bool groups = std::all_of(mesh.groups, mesh.groups + mesh.ng, [](const Group& group) {
        return isTerminated(group.name) && group.texture < 8;
    });
    const bool materials =
        std::all_of(mesh.materials, mesh.materials + mesh.nmat,
                    [](const Material& material) { return isTerminated(material.name); });
    const bool faces = std::all_of(mesh.faces, mesh.faces + mesh.nf, [](const Face& face) {
        return face.q == nullptr || face.n >= 0;
    });
    return groups && materials && faces ? nullptr : "a name or a face is damaged";
}

/// A number that leads to no element is made to lead to none.
template <typename T>
void intoRange(T& current, std::int32_t count) {
    if (current < -1 || current >= std::max(count, 1)) current = -1;
}

void settleCurrents(Mesh& mesh) {
    intoRange(mesh.curvertex, mesh.np);
    intoRange(mesh.curtexcoord, mesh.nt);
    intoRange(mesh.curface, mesh.nf);
    intoRange(mesh.curgroup, mesh.ng);
    intoRange(mesh.curmat, mesh.nmat);
    intoRange(mesh.curtma, mesh.ntma);
    intoRange(mesh.curprt, mesh.nprt);
}

/// What is wrong with a file of so many bytes that begins like this; "": nothing so far.
std::string faultOfHead(std::string_view begin, std::uint64_t bytes) {
    ByteReader in(begin);
    if (in.raw(magic.size()) != magic) return "it is no recovery file";
    if (in.fixed(versionBytes) != version) return "another version of the editor wrote it";
    const std::uint64_t size = in.fixed(sizeBytes);
    if (bytes < recoveryHeadBytes + checksumBytes || size > bytes) return "its end is missing";
    return size < bytes ? "there is something behind its end" : "";
}

} // namespace

RecoveryRecord recoveryRecord(SnapshotRef mesh, EditorPart part) {
    std::error_code failure;
    const auto absolute = std::filesystem::absolute(part.fileName, failure);
    if (!part.fileName.empty() && !failure) part.fileName = absolute;
    return {std::move(mesh), std::time(nullptr), std::move(part)};
}

std::string packEditor(EditorPart part) {
    ByteWriter out;
    out.text(part.fileName);
    out.text(part.lastChosen);
    const auto pack = [&](double figure) { out.real(figure); };
    eachFigure(part, pack);
    eachFigure(part.view, pack);
    for (const int number :
         {part.view.client.width, part.view.client.height, part.edgeFace, part.edgeCorner}) {
        out.signedNumber(number);
    }
    return std::move(out.bytes);
}

std::string packRecovery(const RecoveryRecord& record) {
    ByteWriter out;
    out.bytes.resize(recoveryHeadBytes);
    out.signedNumber(record.time);
    out.bytes += packEditor(record.editor);
    packSnapshot(out, *record.mesh);
    if (record.editor.looks != nullptr) packLooks(out, *record.editor.looks);
    sealRecovery(out.bytes);
    return std::move(out.bytes);
}

void sealRecovery(std::string& bytes) {
    ByteWriter head;
    head.bytes = magic;
    head.fixed(version, versionBytes);
    head.fixed(bytes.size() + checksumBytes, sizeBytes);
    bytes.replace(0, recoveryHeadBytes, head.bytes);
    ByteWriter checksum;
    checksum.fixed(checksumOf(bytes), checksumBytes);
    bytes += checksum.bytes;
}

std::string unpackRecovery(std::string_view bytes, RecoveryRecord& record) {
    if (std::string wrong = faultOfHead(bytes, bytes.size()); !wrong.empty()) return wrong;
    const std::string_view summed = bytes.substr(0, bytes.size() - checksumBytes);
    ByteReader sum(bytes.substr(summed.size()));
    if (sum.fixed(checksumBytes) != checksumOf(summed)) return "its checksum is wrong";
    ByteReader body(summed.substr(recoveryHeadBytes));
    record.time = body.signedNumber();
    unpackEditor(body, record.editor);
    record.mesh = unpackSnapshot(body);
    record.editor.looks = body.ok() && body.left() > 0 ? unpackLooks(body) : nullptr;
    return body.ok() && body.left() == 0 ? "" : "it makes no sense";
}

RecoveryFault restoreMesh(const RecoveryRecord& record) {
    if (!restoreSnapshot(*OB, *record.mesh, *takeSnapshot(*OB, nullptr))) return noMemory;
    settleCurrents(*OB);
    const char* const fault = faultOf(*OB);
    if (fault == nullptr) return {};
    RecoveryFault found{fault}; // the text may stand in the mesh
    dropMesh();
    return found;
}

void dropMesh() {
    farfree(&OB->groups);
    OB->clear(true);
    stale = Stale();
}

void restoreEditor(const RecoveryRecord& record) {
    const EditorPart& part = record.editor;
    restoreFileName(part);
    restorePicks(part);
    dropStaleEdge();
    View saved = part.view;
    isUsable(saved) ? restoreView(part) : fitView(*OB);
    stale = Stale();
}

bool writeRecoveryFile(const std::string& path, const RecoveryRecord& record) {
    SaveFile file;
    if (!file.open(path, FileKind::state)) return false;
    file.append(packRecovery(record));
    return file.commit();
}

RecoveryFault readRecoveryFile(const std::string& path, RecoveryRecord& record) try {
    PieceReader reader(path, Links::refused);
    if (!reader.isOpen()) return {"it can't be opened", false};
    const auto size = static_cast<std::uint64_t>(reader.size());
    std::string bytes;
    for (std::string_view piece; reader.next(0, piece); bytes += piece) {
        if (!bytes.empty()) continue;
        // What is something else may be of any size.
        if (std::string wrong = faultOfHead(piece, size); !wrong.empty()) return {wrong};
        bytes.reserve(size);
    }
    if (reader.failed()) return {"it can't be read", false};
    return {unpackRecovery(bytes, record)};
} catch (const std::bad_alloc&) {
    return noMemory;
}

} // namespace polyfab
