// SPDX-License-Identifier: GPL-3.0-or-later
// Reads a batch command line by a table of step words and carries out what each of them means.
#include "platform/batch/script.h"

#include "io/memory_left.h"
#include "picture/write_png.h"
#include "platform/batch/arguments.h"
#include "platform/batch/batch_platform.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace polyfab {
namespace {

// What the steps do.

std::string runEvent(BatchPlatform& window, const Step& step) {
    window.send(step.event);
    return "";
}

std::string runCommand(BatchPlatform& window, const Step& step) {
    const MenuItem* const item = window.menuItem(step.event.command);
    if (!item) return "the present menu has no such command";
    // One that is built is greyed while there is nothing to do: a press of its key beeps.
    if (!item->enabled) {
        window.beep();
        return "";
    }
    runEvent(window, step);
    window.setAbort(std::nullopt);
    return "";
}

std::string runAbort(BatchPlatform& window, const Step& step) {
    window.setAbort(step.looks);
    return "";
}

std::string runResize(BatchPlatform& window, const Step& step) {
    window.resize(step.size);
    return "";
}

std::string runState(BatchPlatform& window, const Step&) {
    window.print(window.runs().stateJson());
    return "";
}

std::string runDump(BatchPlatform& window, const Step&) {
    window.runs().writeDump([&](std::string_view piece) { window.printPiece(piece); });
    window.print("");
    return "";
}

std::string runPicture(BatchPlatform& window, const Step& step) {
    const Bitmap& picture = window.currentPicture();
    if (picture.pixels.empty()) return "nothing is drawn";
    Image image{picture.width, picture.height, picture.pixels};
    for (std::uint32_t& pixel : image.pixels) pixel |= 0xFF000000; // a window has no holes
    return writePngFile(image, step.path);
}

// What the words after a step mean. Each returns an empty text, or what is wrong with the word.

using Commands = std::vector<CommandInfo>;

std::string plainLabel(std::string label) {
    std::erase(label, '&');
    return lowerCase(label);
}

std::string readCommand(Step& step, const std::string& word, const Commands& commands) {
    const std::optional<int> id = parseInt(word);
    const std::string label = lowerCase(word);
    const auto found = std::find_if(commands.begin(), commands.end(), [&](const CommandInfo& row) {
        return id ? row.id == *id : plainLabel(row.label) == label;
    });
    if (found == commands.end()) return "unknown command";
    if (!found->ready) return "this command is not built yet";
    step.event.command = found->id;
    return "";
}

std::string readDrop(Step& step, const std::string& word, const Commands&) {
    step.event.paths = splitText(word, ':');
    return step.event.paths.empty() ? "no file is named" : "";
}

std::string readMouse(Step& step, const std::string& word, const Commands&) {
    const std::optional<Event> event = parseMouse(word);
    if (!event) return "expected X,Y or X,Y,BUTTONS with left, right, left+right or none";
    step.event = *event;
    return "";
}

std::string readKey(Step& step, const std::string& word, const Commands&) {
    const std::optional<int> code = parseKey(word);
    if (!code) return "unknown key";
    step.event.key = *code;
    return "";
}

std::string readSize(Step& step, const std::string& word, const Commands&) {
    const std::optional<Size> size = parseSize(word);
    if (!size) return "expected WIDTHxHEIGHT, each from 1 to 32767";
    // What it takes is known before any of it is asked for.
    constexpr std::uint64_t bytesOfPixel = 16, megabyte = 1'000'000;
    const std::uint64_t needed = bytesOfPixel * static_cast<std::uint64_t>(size->width)
                                 * static_cast<std::uint64_t>(size->height);
    if (needed > memoryLeft()) {
        return "that takes " + std::to_string(needed / megabyte) + " MB of memory, and "
               + std::to_string(memoryLeft() / megabyte) + " MB are left";
    }
    step.size = *size;
    return "";
}

std::string readCount(Step& step, const std::string& word, const Commands&) {
    const std::optional<int> count = parseInt(word);
    if (!count || *count < 0) return "expected a whole number from 0 on";
    step.looks = *count;
    return "";
}

std::string readPath(Step& step, const std::string& word, const Commands&) {
    step.path = word;
    return "";
}

std::string readFolder(Step& step, const std::string& word, const Commands&) {
    std::error_code failure;
    step.path = std::filesystem::absolute(word, failure);
    return std::filesystem::is_directory(step.path, failure) ? "" : "there is no such folder";
}

struct StepRow {
    std::string_view word;
    std::string (*read)(Step&, const std::string&, const Commands&); ///< null: no argument follows
    std::string (*run)(BatchPlatform&, const Step&);
    EventKind kind;
    bool takesAnswers;
};

constexpr StepRow stepRows[] = {
    {"--command", readCommand, runCommand, EventKind::command, true},
    {"--drop", readDrop, runEvent, EventKind::drop, true},
    {"--mouse", readMouse, runEvent, EventKind::mouse, true},
    {"--keydown", readKey, runEvent, EventKind::keyDown, true},
    {"--keyup", readKey, runEvent, EventKind::keyUp, true},
    {"--close", nullptr, runEvent, EventKind::close, true},
    {"--deactivate", nullptr, runEvent, EventKind::deactivate, false},
    {"--menu-open", nullptr, runEvent, EventKind::menuOpening, false},
    {"--resize", readSize, runResize, EventKind::resize, false},
    {"--abort-after", readCount, runAbort, EventKind::paint, false},
    {"--state", nullptr, runState, EventKind::paint, false},
    {"--dump", nullptr, runDump, EventKind::paint, false},
    {"--picture", readPath, runPicture, EventKind::paint, false},
};

/// What stands before all steps, in any order.
struct OptionRow {
    std::string_view word;
    std::string (*read)(Step&, const std::string&, const Commands&);
    void (*take)(Script&, const Step&);
};

constexpr OptionRow optionRows[] = {
    {"--size", readSize, [](Script& script, const Step& read) { script.size = read.size; }},
    {"--state-folder", readFolder,
     [](Script& script, const Step& read) { script.stateFolder = read.path; }},
    {"--recovery-seconds", readCount,
     [](Script& script, const Step& read) { script.recoverySeconds = read.looks; }},
};

struct AnswerRow {
    std::string_view word;
    Answer::Kind kind;
};

constexpr AnswerRow answerRows[] = {
    {"--answer", Answer::Kind::text},
    {"--default", Answer::Kind::keepDefault},
    {"--cancel", Answer::Kind::cancel},
    {"--escape", Answer::Kind::escape},
};

template <typename Row, std::size_t count>
const Row* findRow(const Row (&table)[count], std::string_view word) {
    for (const Row& row : table) {
        if (row.word == word) return &row;
    }
    return nullptr;
}

/// Takes the words off a command line one after the other.
class Reader {
  public:
    Reader(const Commands& known, std::vector<std::string> list)
        : commands(known), args(std::move(list)) {}

    Script read() {
        readHead();
        while (script.error.empty() && next < args.size()) readStep();
        return std::move(script);
    }

  private:
    void readHead() {
        while (script.error.empty() && next < args.size()) {
            const OptionRow* const row = findRow(optionRows, args[next]);
            if (row == nullptr) break;
            ++next;
            Step read;
            if (readArgument(read, std::string(row->word), row->read)) row->take(script, read);
        }
        const bool file = next < args.size() && !args[next].starts_with("--");
        if (file || !script.stateFolder.empty()) addStart(file ? args[next++] : "");
    }

    void addStart(const std::string& file) {
        Step step;
        step.run = runEvent;
        step.words = file.empty() ? "start" : file;
        step.event.kind = EventKind::start;
        if (!file.empty()) step.event.paths = {file};
        step.takesAnswers = true;
        script.steps.push_back(std::move(step));
    }

    void readStep() {
        const std::string word = args[next++];
        if (const AnswerRow* const row = findRow(answerRows, word)) {
            addAnswer(*row);
        } else if (const StepRow* const found = findRow(stepRows, word)) {
            addStep(*found);
        } else {
            script.error = "unknown step " + word;
        }
    }

    void addAnswer(const AnswerRow& row) {
        const std::string word(row.word);
        if (script.steps.empty() || !script.steps.back().takesAnswers) {
            script.error = word + " follows no step that asks";
            return;
        }
        Answer answer{row.kind, ""};
        if (row.kind == Answer::Kind::text) {
            if (next == args.size()) {
                script.error = word + " needs an argument";
                return;
            }
            answer.text = args[next++];
        }
        script.steps.back().answers.push_back(std::move(answer));
    }

    void addStep(const StepRow& row) {
        Step step;
        step.run = row.run;
        step.words = row.word;
        step.event.kind = row.kind;
        step.takesAnswers = row.takesAnswers;
        if (row.read && !readArgument(step, step.words, row.read)) return;
        script.steps.push_back(std::move(step));
    }

    bool readArgument(Step& step, const std::string& word, decltype(StepRow::read) parse) {
        if (next == args.size()) {
            script.error = word + " needs an argument";
            return false;
        }
        const std::string& argument = args[next++];
        step.words = word + " " + argument;
        const std::string wrong = parse(step, argument, commands);
        if (!wrong.empty()) script.error = step.words + ": " + wrong;
        return wrong.empty();
    }

    const Commands& commands;
    std::vector<std::string> args;
    std::size_t next = 0;
    Script script;
};

} // namespace

Script parseScript(const std::vector<CommandInfo>& commands, const std::vector<std::string>& args) {
    return Reader(commands, args).read();
}

} // namespace polyfab
