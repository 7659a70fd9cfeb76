// SPDX-License-Identifier: GPL-3.0-or-later
// Menu commands on the box and on how faces lie in the left pane.
#pragma once

namespace polyfab {

/// Selects (unselects) the live faces in or out of the box. A face that is not wholly in the box is
/// out of it.
void selectInBox();
void unselectInBox();
void selectOutOfBox();
void unselectOutOfBox();

/// Unselects the live faces that the left pane shows clockwise (anticlockwise). Faces seen edge-on
/// are neither.
void unselectClockwise();
void unselectAnticlockwise();

/// Puts the box around the selected faces, or says that there are none.
void fitBoxToSelected();

/// Asks for some of x, y and z, and moves the selected faces, and the box with them, so that the
/// middle of the box comes to lie on 0 of those world coordinates.
void centerBox();

/// Says how far the box extends along the screen's axes, in world units.
void tellBoxSize();

/// Says between which world coordinates the corners of the box lie.
void tellBoxRange();

} // namespace polyfab
