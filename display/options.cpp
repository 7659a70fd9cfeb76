// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/options.h"

#include "mesh/face_area.h"
#include "mesh/faces.h"

namespace polyfab {

double areaInPane(const Face& face, bool leftPane) {
    return screenArea(face, leftPane ? &Point::sx : &Point::sz);
}

bool isShown(const Face& face, bool leftPane) {
    if (!isLive(face)) return false;
    if (!displayOptions.hideFacingAway || face.n <= 0) return true;
    return !(areaInPane(face, leftPane) > 0);
}

} // namespace polyfab
