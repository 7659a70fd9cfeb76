// SPDX-License-Identifier: GPL-3.0-or-later
// The editor's state and its mesh as JSON text, for scripts.
#pragma once

#include "platform/platform.h"

#include <string>

namespace polyfab {

/// {"event":"state", ...} on one line.
[[nodiscard]] std::string stateJson();

/// {"event":"dump", ...} on one line, without its end: the whole mesh.
void writeDump(const TextSink& sink);

} // namespace polyfab
