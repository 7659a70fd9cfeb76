// SPDX-License-Identifier: GPL-3.0-or-later
// Snapshots as bytes: lossless, and a fraction of what the arrays take.
#pragma once

#include "io/bytes.h"
#include "mesh/snapshot.h"

namespace polyfab {

/// Appends the snapshot. Touches nothing but its arguments, so that a thread may do it. Of the room
/// behind the elements of an array a step of growth is kept at most; a reference to an element that
/// is not in use becomes none. May throw std::bad_alloc.
void packSnapshot(ByteWriter& out, const Snapshot& snapshot);

/// Reads a snapshot back. Null when these bytes are none. All references in it lead to elements
/// that are there, and the memory that it takes is in proportion to the bytes; whether the mesh is
/// sound shows the check once it is restored. May throw std::bad_alloc.
[[nodiscard]] SnapshotRef unpackSnapshot(ByteReader& in);

} // namespace polyfab
