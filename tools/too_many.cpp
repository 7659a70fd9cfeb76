// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/too_many.h"

#include "mesh/mesh.h"
#include "platform/platform.h"

namespace polyfab {

void tellIfTooMany(std::int32_t found, const std::string& what) {
    if (found <= maxIndexed) return;
    platform().message("too many " + what,
                       "I found " + std::to_string(found) + " " + what + ", but I can only number "
                           + std::to_string(maxIndexed)
                           + ": the last number stands for all the rest",
                       Icon::exclamation);
}

} // namespace polyfab
