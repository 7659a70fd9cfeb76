// SPDX-License-Identifier: GPL-3.0-or-later
// Turns one file into another by import and export, which lose least.
#include "platform/batch/arguments.h"
#include "platform/batch/batch_platform.h"
#include "platform/batch/script.h"

#include <nlohmann/json.hpp>

namespace polyfab {
namespace {

/// Nothing is written in place of an old file when nothing was read.
std::string wantFaces(BatchPlatform& window, const Step& step) {
    const auto state = nlohmann::json::parse(window.runs().stateJson());
    if (state["liveFaces"] != 0) return "";
    window.message(step.path + " has no faces that I can read", step.path, Icon::exclamation);
    return "";
}

bool hasSuffix(const std::string& path) {
    return path.find('.', path.find_last_of('/') + 1) != std::string::npos;
}

} // namespace

Script convertScript(const std::vector<CommandInfo>& commands, const std::string& input,
                     const std::string& output) {
    Script script;
    if (!hasSuffix(output)) {
        script.error = output + ": the suffix names the format, and there is none";
        return script;
    }
    script = parseScript(commands, {"--command", std::to_string(commandid::importMesh), "--answer",
                                    input, "--answer", "no", "--command",
                                    std::to_string(commandid::exportMesh), "--answer", output});
    if (!script.error.empty()) return script;
    Step check;
    check.run = wantFaces;
    check.words = "reading " + input;
    check.path = input;
    check.afterFailure = true;
    script.steps.insert(script.steps.begin() + 1, check);
    script.stopAfterFailure = true;
    script.agrees = true;
    return script;
}

} // namespace polyfab
