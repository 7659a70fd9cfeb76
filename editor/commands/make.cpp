// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/make.h"

#include "display/backgrounds.h"
#include "display/box.h"
#include "display/view.h"
#include "mesh/faces.h"

namespace polyfab {

void makeAndShow(void (*make)(Mesh&)) {
    const auto isEmpty = [] {
        const auto faces = liveFaces(*OB);
        return faces.begin() == faces.end();
    };
    const bool first = isEmpty();
    make(*OB);
    if (!first || isEmpty()) return;
    fitView(*OB);
    fitBox(*OB, false);
    refitBackgrounds();
}

} // namespace polyfab
