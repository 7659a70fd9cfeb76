// SPDX-License-Identifier: GPL-3.0-or-later
// Where the manual lies.
#pragma once

class QWidget;

namespace polyfab {

/// Opens the manual with the user's own viewer; where there is none, a box says where it lies.
void showManual(QWidget* owner);

} // namespace polyfab
