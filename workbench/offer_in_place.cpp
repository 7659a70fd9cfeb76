// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/offer_in_place.h"

#include "io/save_in_place.h"
#include "io/state_folder.h"
#include "platform/platform.h"
#include "workbench/notes.h"

#include <filesystem>

namespace polyfab {
namespace {

constexpr const char* closed = "the folder of this file takes no new files";

std::string askForFolder(const std::string& path) {
    // Some writers try a second time.
    if (notes().find(closed) != std::string::npos) return "";
    const std::string question =
        std::string(closed) + ". do you want me to write into the file itself?";
    const std::string text = path + "\na copy of what it holds is kept until that is done";
    if (!platform().isWatched()
        || platform().question(question, text, Buttons::yesNo) != Choice::yes) {
        note(closed);
        return "";
    }
    std::error_code ignored;
    return stateFolder.empty() ? std::filesystem::temp_directory_path(ignored).string()
                               : stateFolder;
}

void tellOfCopy(const std::string& copy) { note("what the file held is now in " + copy); }

} // namespace

void offerSavingInPlace() { inPlaceOffer = {askForFolder, tellOfCopy}; }

} // namespace polyfab
