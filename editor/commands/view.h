// SPDX-License-Identifier: GPL-3.0-or-later
// Menu commands on the attitude of the view, and those that mirror and turn the selected faces.
#pragma once

namespace polyfab {

/// Whether the rotate modes turn the view or the selected faces: one of the two always holds.
void letRotationTurnView();
void letRotationTurnObjects();
[[nodiscard]] bool rotationTurnsView();
[[nodiscard]] bool rotationTurnsObjects();

/// Whether a new rotation comes after the existing ones (about the screen's axes) or before them.
void toggleRotationAfter();
[[nodiscard]] bool rotationComesAfter();

/// Turns the view upright and fits the mesh in both panes.
void showUpright();

/// Asks for a screen axis and mirrors the selected faces along it, in the middle of the box around
/// them on the screen. Here and below a mirrored face is turned over, so that its outside stays
/// outside; without a selected face a message says so.
void mirrorOnScreen();

/// Asks for a world axis and changes the sign of that coordinate of the selected faces.
void changeSign();

/// The world y of the selected faces becomes their z, and the other way about.
void swopYAndZ();

/// Turns the selected faces by 90 degrees about the world's y axis, clockwise when one looks down
/// it from above.
void rotateAboutY();

} // namespace polyfab
