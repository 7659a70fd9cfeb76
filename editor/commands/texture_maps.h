// SPDX-License-Identifier: GPL-3.0-or-later
// The eight texture maps: which of them is chosen, and their pictures as files.
#pragma once

#include "editor/command_table.h"
#include "picture/image.h"

#include <optional>
#include <string>

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

struct ReadPicture {
    std::string path;
    Image image;
};

/// Asks for a picture file, with that one as it begins. Nothing when the user would have none, or
/// it can't be read, as a message has said then.
[[nodiscard]] std::optional<ReadPicture> askForPicture(const std::string& prompt,
                                                       const std::string& initial);

} // namespace polyfab
