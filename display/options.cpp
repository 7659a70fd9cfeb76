// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/options.h"

namespace polyfab {
namespace {

/// Twice the area that the face takes in the pane, negative for one that runs anticlockwise.
double doubledArea(const Face& face, double Point::*across) {
    double area = 0;
    const Point* from = face.q[face.n - 1].p;
    for (int k = 0; k < face.n; ++k) {
        const Point* const to = face.q[k].p;
        area -= (to->*across - from->*across) * (to->sy + from->sy);
        from = to;
    }
    return area;
}

} // namespace

bool isShown(const Face& face, bool leftPane) {
    if (face.q == nullptr) return false;
    if (!displayOptions.hideFacingAway || face.n <= 0) return true;
    return !(doubledArea(face, leftPane ? &Point::sx : &Point::sz) > 0);
}

} // namespace polyfab
