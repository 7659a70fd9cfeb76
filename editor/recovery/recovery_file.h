// SPDX-License-Identifier: GPL-3.0-or-later
// The file from which work comes back after the editor was killed: the mesh, bit by bit, and what
// the user sees of it. A reader refuses a file of which a byte is missing or another one.
#pragma once

#include "editor/history/editor_part.h"
#include "mesh/snapshot.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace polyfab {

struct RecoveryRecord {
    SnapshotRef mesh;
    std::int64_t time = 0; ///< when it was saved, in seconds since 1970
    EditorPart editor;
};

/// Why a mesh does not come back.
struct RecoveryFault {
    std::string text;    ///< "": it does
    bool lasting = true; ///< it will not come back another time either
    explicit operator bool() const { return !text.empty(); }
};

/// The mesh and the editor around it, saved now. The next start may be in another folder: the file
/// name becomes absolute.
[[nodiscard]] RecoveryRecord recoveryRecord(SnapshotRef mesh, EditorPart part);

/// The editor's part of the file but for the looks, to be compared.
[[nodiscard]] std::string packEditor(EditorPart part);

[[nodiscard]] std::string packRecovery(const RecoveryRecord& record);

/// What a file begins with, before what it tells.
inline constexpr std::size_t recoveryHeadBytes = 20;

/// Makes a file of bytes that have room for the head before what they tell: puts it there, and the
/// checksum behind.
void sealRecovery(std::string& bytes);

/// What is wrong with the bytes; "": nothing, and `record` is filled.
[[nodiscard]] std::string unpackRecovery(std::string_view bytes, RecoveryRecord& record);

/// Makes OB, which must be empty, the mesh of the record; the mark of altered meshes stays as it
/// is. After a fault OB is empty.
[[nodiscard]] RecoveryFault restoreMesh(const RecoveryRecord& record);

/// Makes OB empty again. Needs no memory.
void dropMesh();

/// The view, the box and all else of the record but the mesh, which must be there already. A view
/// that no arithmetic can use is fitted to the mesh.
void restoreEditor(const RecoveryRecord& record);

/// Replaces the file, or leaves it as it was. Touches nothing else, so that a thread may do it.
[[nodiscard]] bool writeRecoveryFile(const std::string& path, const RecoveryRecord& record);

/// Fills the record from the file.
[[nodiscard]] RecoveryFault readRecoveryFile(const std::string& path, RecoveryRecord& record);

} // namespace polyfab
