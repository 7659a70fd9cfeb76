// SPDX-License-Identifier: GPL-3.0-or-later
// The file from which work comes back after the editor was killed: the mesh, bit by bit, and what
// the user sees of it. A reader refuses a file of which a byte is missing or another one.
#pragma once

#include "editor/editor_part.h"
#include "mesh/snapshot.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace polyfab {

struct RecoveryRecord {
    SnapshotRef mesh;
    std::int64_t time = 0; ///< when it was saved, in seconds since 1970
    EditorPart editor;
};

/// The editor as it is now, around this mesh.
[[nodiscard]] RecoveryRecord recoveryRecord(SnapshotRef mesh);

/// The editor's part of the file, to be compared.
[[nodiscard]] std::string packEditor(EditorPart part);

[[nodiscard]] std::string packRecovery(const RecoveryRecord& record);

/// What is wrong with the bytes; "": nothing, and `record` is filled.
[[nodiscard]] std::string unpackRecovery(std::string_view bytes, RecoveryRecord& record);

/// Makes OB the mesh of the record; the mark of altered meshes stays as it is. What is wrong with
/// it; "": nothing. If something is, OB is as it was.
[[nodiscard]] std::string restoreMesh(const RecoveryRecord& record);

/// The view, the box and all else of the record but the mesh, which must be there already.
void restoreEditor(const RecoveryRecord& record);

/// Replaces the file, or leaves it as it was. Touches nothing else, so that a thread may do it.
[[nodiscard]] bool writeRecoveryFile(const std::string& path, const RecoveryRecord& record);

/// As unpackRecovery. May throw std::bad_alloc.
[[nodiscard]] std::string readRecoveryFile(const std::string& path, RecoveryRecord& record);

} // namespace polyfab
