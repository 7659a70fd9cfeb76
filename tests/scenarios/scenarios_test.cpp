// SPDX-License-Identifier: GPL-3.0-or-later
// The scenarios of this folder: what batch mode shows at each step. A file holds
//   # a comment
//   == a scenario, which begins with an empty editor in a window of 251 x 125 pixels, in a folder
//      that holds cube.obj only
//   file NAME: text; in lines, in that folder; before the first scenario: for all of the file
//   ; more lines of it
//   > a step: the events follow, each behind four blanks
//   . a step whose events are no matter; more steps; in one line
//   . a step => KEY=VALUE KEY=VALUE, fields afterwards; behind "    =" in a line of their own, too
// A step is the label or number of a command, with its answers behind " | " (also <default>,
// <cancel> and <escape>); the words of batch mode; or a short form of `shortForms`.
// scripts/scenarios.sh makes events and values anew; look at what changed before it is kept.
#include "display/box.h"
#include "display/options.h"
#include "display/view.h"
#include "editor/editor_state.h"
#include "editor/modes/transform_modes.h"
#include "editor/window.h"
#include "platform/batch/arguments.h"
#include "platform/batch/batch.h"
#include "tests/scenarios/rendering.h"
#include "tests/support/temp_folder.h"
#include "workbench/prompts.h"

#include <gtest/gtest.h>
#include <map>

namespace polyfab::test {
namespace {

using Words = std::vector<std::string>;

/// What stands for several steps; $1 and $2 are the words behind the first.
const std::map<std::string, std::string> shortForms = {
    {"key", "--keydown $1 --keyup $1"},
    {"click", "--mouse $1,left --mouse $1"},
    {"drag", "--mouse $1,left --mouse $2,left --mouse $2"},
    {"rdrag", "--mouse $1,right --mouse $2,right --mouse $2"},
};

Words argumentsOf(std::string step) {
    if (const std::size_t end = step.find("; "); end != step.npos) {
        Words args = argumentsOf(step.substr(0, end)), more = argumentsOf(step.substr(end + 2));
        args.insert(args.end(), more.begin(), more.end());
        return args;
    }
    for (std::size_t bar = 0; (bar = step.find(" | ")) != step.npos;) step.replace(bar, 3, "\n");
    const Words answers = splitText(step, '\n', true), words = splitText(answers[0], ' ');
    Words args = words;
    if (const auto form = shortForms.find(words[0]); form != shortForms.end()) {
        args = splitText(form->second, ' ');
        for (std::string& arg : args) {
            const std::size_t at = arg.find('$');
            if (at != arg.npos) arg.replace(at, 2, words.at(std::size_t(arg[at + 1] - '0')));
        }
    } else if (!words[0].starts_with("--") && words[0].find('.') == words[0].npos) {
        args = {"--command", answers[0]};
    }
    for (std::size_t i = 1; i < answers.size(); ++i) {
        const std::string& answer = answers[i];
        if (answer[0] != '<') args.push_back("--answer");
        args.push_back(answer[0] == '<' ? "--" + answer.substr(1, answer.size() - 2) : answer);
    }
    return args;
}

/// A key that no keyboard has: parts the lines of one step from those of the next.
constexpr int parting = 255;

void handlePart(const Event& event) {
    if (event.key != parting) editorProgram().handle(event);
    if (event.key == parting || event.kind == EventKind::create) std::putchar('\n');
}

void resetEditor() {
    resetEditorState();
    resetPrompts();
    turnOptions = TurnOptions();
    displayOptions = DisplayOptions();
    box = Box();
    view.client = {};
    resetView();
}

/// What each of these steps printed; last, how the run ended, if that tells.
Words run(const std::vector<Words>& steps) {
    Program program = editorProgram();
    program.handle = handlePart;
    Words args{"--size", "251x125"};
    for (const Words& step : steps) {
        if (args.size() > 2) args.insert(args.end(), {"--keyup", std::to_string(parting)});
        args.insert(args.end(), step.begin(), step.end());
    }
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runBatch(program, args);
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string err = testing::internal::GetCapturedStderr();
    resetEditor();
    Words parts;
    for (const std::string& line : splitText(out, '\n', true)) {
        if (line.empty()) parts.emplace_back();
        if (!line.empty() && !parts.empty()) parts.back() += line + '\n';
    }
    parts.resize(steps.size());
    parts.push_back(status < 2 ? "" : "    exit " + std::to_string(status) + ' ' + err);
    return parts;
}

bool isStep(const std::string& line) { return line.starts_with("> ") || line.starts_with(". "); }

/// Where the fields begin that the line tells of.
std::size_t fieldsIn(const std::string& line) {
    if (line.starts_with("    = ")) return 5;
    const std::size_t arrow = isStep(line) ? line.find(" => ") : line.npos;
    return arrow == line.npos ? line.size() : arrow + 3;
}

/// The lines of one scenario, with what its steps show now.
std::string play(const Words& lines) {
    std::vector<Words> steps;
    for (const std::string& line : lines) {
        if (isStep(line)) steps.push_back(argumentsOf(line.substr(2, line.find(" => ") - 2)));
        if (fieldsIn(line) < line.size()) steps.push_back({"--state", "--dump"});
    }
    if (steps.empty()) steps.emplace_back();
    const Words parts = run(steps);
    auto part = parts.begin();
    std::string text;
    for (const std::string& line : lines) {
        const std::size_t fields = fieldsIn(line);
        if (line.starts_with("  ") && fields == line.size()) continue; // an event of before
        const std::string events = isStep(line) ? renderEvents(*part++) : "";
        text += line.substr(0, fields);
        if (fields < line.size()) text += renderFields(line.substr(fields), *part++);
        text += line[0] == '>' ? '\n' + events : "\n";
    }
    return text + parts.back();
}

void writeFiles(const Words& lines) {
    std::string name;
    for (const std::string& line : lines) {
        const bool begins = line.starts_with("file ");
        if (begins) name = line.substr(5, line.find(':') - 5);
        if (!begins && line[0] != ';') continue;
        std::string text = line.substr(begins ? line.find(':') + 1 : 1) + '\n';
        std::replace(text.begin(), text.end(), ';', '\n');
        std::ofstream(name, std::ios::app) << text;
    }
}

/// A folder to work in.
struct WorkingFolder {
    WorkingFolder() { std::filesystem::current_path(folder.path(".")); }
    ~WorkingFolder() { std::filesystem::current_path(before); }
    std::filesystem::path before = std::filesystem::current_path();
    TempFolder folder;
};

using Scenarios = testing::TestWithParam<std::string>;

TEST_P(Scenarios, ShowWhatTheyTell) {
    const std::string path = POLYFAB_SCENARIOS "/" + GetParam() + ".txt";
    Words lines, now;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    const auto isHead = [](const std::string& line) { return line.starts_with("== "); };
    const auto first = std::find_if(lines.begin(), lines.end(), isHead);
    const Words common(lines.begin(), first);
    std::string text;
    for (const std::string& line : common) text += line + '\n';
    for (auto from = first; from != lines.end();) {
        const auto to = std::find_if(from + 1, lines.end(), isHead);
        const WorkingFolder here;
        std::filesystem::copy(POLYFAB_SCENARIOS "/cube.obj", ".");
        writeFiles(common);
        writeFiles({from, to});
        text += play({from, to});
        from = to;
    }
    if (std::getenv("POLYFAB_REFRESH_SCENARIOS") != nullptr) {
        std::ofstream(path) << text;
        return;
    }
    now = splitText(text, '\n', true);
    now.pop_back(); // behind the last line's end
    if (now == lines) return;
    ADD_FAILURE() << path << " (-) and what is shown now (+):\n"
                  << testing::internal::edit_distance::CreateUnifiedDiff(lines, now);
}

INSTANTIATE_TEST_SUITE_P(All, Scenarios, testing::ValuesIn(splitText(POLYFAB_SCENARIO_NAMES, ' ')),
                         [](const auto& file) { return file.param; });

} // namespace
} // namespace polyfab::test
