// SPDX-License-Identifier: GPL-3.0-or-later
// The run of a batch script: the window's life around its steps, and the exit status.
#include "platform/batch/batch.h"

#include "io/temporary_file.h"
#include "platform/batch/batch_platform.h"
#include "platform/batch/script.h"
#include "platform/end_signals.h"

#include <cstdio>
#include <new>

namespace polyfab {
namespace {

constexpr int failureShown = 1, wrongCommandLine = 2, cannotGoOn = 2, unanswered = 3;

/// Standard output goes first, so that both streams tell one story on a terminal.
int complain(const std::string& text, int status) {
    std::fflush(stdout);
    std::fprintf(stderr, "polyfab: %s\n", text.c_str());
    return status;
}

/// Carries one step out. Returns an empty text, or why the run ends here.
std::string runStep(BatchPlatform& window, const Step& step) {
    if (!window.isOpen()) return step.words + ": the window is closed";
    window.setAnswers(step.answers);
    const std::string wrong = step.run(window, step);
    std::fflush(stdout);
    if (!wrong.empty()) return step.words + ": " + wrong;
    if (window.answersLeft()) return step.words + ": answers are left over";
    return "";
}

/// Whether a signal has come that ends the process, which the program has been told then.
bool endedBySignal(BatchPlatform& window, int& status) {
    const int signal = takeEndSignal();
    if (signal == 0) return false;
    if (window.isOpen()) window.send({.kind = EventKind::sessionEnd});
    status = statusOfSignal(signal);
    return true;
}

int runSteps(BatchPlatform& window, const Script& script) {
    std::string now = "start";
    int status = 0;
    try {
        window.send({.kind = EventKind::create});
        window.resize(window.clientSize());
        for (const Step& step : script.steps) {
            if (endedBySignal(window, status)) return status;
            if (script.stopAfterFailure && window.exclamationShown() && !step.afterFailure) break;
            now = step.words;
            const std::string wrong = runStep(window, step);
            if (!wrong.empty()) return complain(wrong, wrongCommandLine);
            if (window.isOpen()) window.send({.kind = EventKind::idle});
        }
        if (endedBySignal(window, status)) return status;
    } catch (const Unanswered& caught) {
        return complain(now + ": no fitting answer to " + caught.question, unanswered);
    } catch (const std::bad_alloc&) {
        if (window.isOpen()) window.send({.kind = EventKind::sessionEnd}); // which keeps the work
        return complain(now + ": I can't get enough memory", cannotGoOn);
    }
    return window.exclamationShown() ? failureShown : 0;
}

int runScript(const Program& program, const Script& script) {
    if (!script.error.empty()) return complain(script.error, wrongCommandLine);
    removeTemporariesOnSignals();
    if (!script.stateFolder.empty() && program.useStateFolder != nullptr) {
        program.useStateFolder(script.stateFolder, script.recoverySeconds);
        catchEndSignals();
    }
    BatchPlatform window(program, script.size);
    if (script.agrees) window.agree();
    Platform* const before = currentPlatform;
    setPlatform(&window);
    int status = runSteps(window, script);
    window.finish();
    setPlatform(before);
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
        status = complain("cannot write to standard output", cannotGoOn);
    }
    return status;
}

} // namespace

int runBatch(const Program& program, const std::vector<std::string>& args) {
    return runScript(program, parseScript(program.commands(), args));
}

int runConvert(const Program& program, const std::string& input, const std::string& output) {
    return runScript(program, convertScript(program.commands(), input, output));
}

std::string commandList(const Program& program) {
    std::string list;
    for (const CommandInfo& row : program.commands()) {
        list += std::to_string(row.id) + '\t' + row.menu + '\t' + row.label + '\t'
                + (row.ready ? "ready" : "later") + '\n';
    }
    return list;
}

std::string describedCommands(const Program& program) {
    std::string list;
    for (const CommandInfo& row : program.commands()) {
        list += std::to_string(row.id) + '\t' + row.menu + '\t' + row.label + '\t' + row.key + '\t'
                + row.advice + '\n';
    }
    return list;
}

} // namespace polyfab
