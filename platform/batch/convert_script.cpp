// SPDX-License-Identifier: GPL-3.0-or-later
// Turns one file into another by the steps that read and write files of their formats.
#include "platform/batch/arguments.h"
#include "platform/batch/script.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace polyfab {
namespace {

struct WriterRow {
    std::string_view suffix;
    int command;
};

/// The writer commands. The OBJ writer takes its two variants by a longer suffix; files of any
/// other go to the exporter.
constexpr WriterRow writerRows[] = {
    {".obj", commandid::writeObj}, {".obj-", commandid::writeObj}, {".obj#", commandid::writeObj},
    {".dxf", commandid::writeDxf}, {".3ds", commandid::write3ds},  {"", commandid::exportMesh},
};

constexpr std::string_view ownSuffixes[] = {".obj", ".dxf", ".3ds"};

/// The steps that read a file in place of the mesh. What has no suffix of ours is imported.
std::vector<std::string> readingSteps(const std::string& input) {
    const std::string name = lowerCase(input);
    const bool own = std::any_of(std::begin(ownSuffixes), std::end(ownSuffixes),
                                 [&](std::string_view suffix) { return name.ends_with(suffix); });
    const int command = own ? commandid::readMesh : commandid::importMesh;
    std::vector<std::string> steps{"--command", std::to_string(command), "--answer", input};
    if (!own) steps.insert(steps.end(), {"--answer", "no"});
    return steps;
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
    const std::string name = lowerCase(output);
    const WriterRow* const writer =
        std::find_if(std::begin(writerRows), std::end(writerRows),
                     [&](const WriterRow& row) { return name.ends_with(row.suffix); });
    std::vector<std::string> steps = readingSteps(input);
    steps.insert(steps.end(), {"--command", std::to_string(writer->command), "--answer", output});
    script = parseScript(commands, steps);
    script.stopAfterFailure = true;
    return script;
}

} // namespace polyfab
