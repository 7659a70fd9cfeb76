// SPDX-License-Identifier: GPL-3.0-or-later
// The commands of the make object menu.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Makes an object in OB. When it is the first in an empty scene the view and the box are fitted to
/// it.
void makeAndShow(void (*make)(Mesh&));

} // namespace polyfab
