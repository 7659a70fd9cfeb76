// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/options.h"

#include "mesh/faces.h"

namespace polyfab {

double areaInPane(const Face& face, bool leftPane) {
    double Point::*const across = leftPane ? &Point::sx : &Point::sz;
    double area = 0;
    for (int k = 0; k < face.n; ++k) {
        const Point& from = *face.q[k].p;
        const Point& to = *face.q[k + 1 < face.n ? k + 1 : 0].p;
        area -= (to.*across - from.*across) * (to.sy + from.sy) / 2;
    }
    return area;
}

bool isShown(const Face& face, bool leftPane) {
    if (!isLive(face)) return false;
    if (!displayOptions.hideFacingAway || face.n <= 0) return true;
    return !(areaInPane(face, leftPane) > 0);
}

} // namespace polyfab
