// SPDX-License-Identifier: GPL-3.0-or-later
// The eight texture maps: which of them is chosen, and their pictures as files.
#pragma once

#include "editor/command_table.h"
#include "platform/platform.h"

#include <vector>

namespace polyfab {

/// Chooses the texture map of this number: the list of groups gives it to groups, the commands here
/// read and write its picture.
void chooseTextureMap(int number);
[[nodiscard]] bool textureMapIsChosen(int number);
/// The label tells the file.
[[nodiscard]] Shown shownTextureMap(int number);

/// Asks for a picture to put into the chosen texture map. What can't be read leaves it as it is.
void readTextureMap();

/// Asks for a file and writes the picture of the chosen texture map to it.
void writeTextureMap();

/// Of dialogs that ask for a picture.
[[nodiscard]] std::vector<FileFilter> pictureFilters();

} // namespace polyfab
