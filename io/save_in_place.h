// SPDX-License-Identifier: GPL-3.0-or-later
// Saving into a file whose folder takes no new ones. Its bytes are replaced one after the other,
// which a crash can interrupt: a copy of the old ones is kept until that is done.
#pragma once

#include <string>

namespace polyfab {

/// Whether the file can be written, but none be put in its place.
[[nodiscard]] bool canOnlyBeWrittenInPlace(const std::string& path);

/// How the user is asked and told. Set when there is somebody to ask; before, nothing is ever
/// written in place.
struct InPlaceOffer {
    /// The folder for the copy; "": the file must not be written in place.
    std::string (*folderFor)(const std::string& path) = nullptr;
    /// The file could not be written, nor its old bytes put back: this copy has them.
    void (*copyStays)(const std::string& copy) = nullptr;
};
inline InPlaceOffer inPlaceOffer;

/// Makes the bytes of the file `to` those of `from`. False when that fails: the old bytes are back,
/// or else in a copy in the folder, which the offer tells.
[[nodiscard]] bool writeInPlace(const std::string& from, const std::string& to,
                                const std::string& folder);

} // namespace polyfab
