// SPDX-License-Identifier: GPL-3.0-or-later
// A batch run as data: the whole command line is read into steps before the first one is carried
// out, so that a mistake anywhere in it changes nothing.
#pragma once

#include "platform/platform.h"

#include <deque>
#include <string>
#include <vector>

namespace polyfab {

class BatchPlatform;

/// One answer step; answers belong to the step before them.
struct Answer {
    enum class Kind { text, keepDefault, cancel, escape };
    Kind kind = Kind::text;
    std::string text;
};

struct Step {
    /// Carries the step out. Returns an empty text, or why it cannot be done.
    std::string (*run)(BatchPlatform& window, const Step& step) = nullptr;
    std::string words; ///< as given, for diagnostics
    std::string path;  ///< of a picture, or of what was read
    Size size;         ///< of a resize
    int looks = 0;     ///< at Escape, until it counts as down
    Event event;
    bool takesAnswers = false;
    bool afterFailure = false; ///< carried out also where the script stops after one
    std::deque<Answer> answers;
};

struct Script {
    Size size{1024, 512};
    std::string stateFolder; ///< "": nothing is kept from run to run
    int recoverySeconds = usualRecoverySeconds;
    std::vector<Step> steps;
    bool stopAfterFailure = false; ///< an exclamation box ends the run after its step
    bool agrees = false;           ///< boxes get the answer that is marked in them
    std::string error;             ///< why the command line is wrong; empty: it is sound
};

/// Reads [--size WxH] [--state-folder DIR] [--recovery-seconds N] [FILE] [STEP ...].
/// Commands are looked up in this list, by number or by label without the "&".
Script parseScript(const std::vector<CommandInfo>& commands, const std::vector<std::string>& args);

/// The script that imports one file and exports another, each in the format of its suffix. What has
/// no face is not exported, and whatever is asked on the way gets the marked answer.
Script convertScript(const std::vector<CommandInfo>& commands, const std::string& input,
                     const std::string& output);

} // namespace polyfab
