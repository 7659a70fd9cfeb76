// SPDX-License-Identifier: GPL-3.0-or-later
// The modelled window of batch mode.
#include "platform/batch/batch_platform.h"

#include "platform/batch/text.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

namespace polyfab {
namespace {

using Json = nlohmann::ordered_json;

/// Texts may hold bytes that are no UTF-8 (file names may): those are replaced.
std::string text(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string eventLine(const char* name) { return text({{"event", name}}); }

/// FNV-1a over red, green and blue of each pixel, rows from the top, in 16 hexadecimal digits.
std::string pixelHash(const Bitmap& picture) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const std::uint32_t pixel : picture.pixels) {
        for (const int shift : {16, 8, 0}) hash = (hash ^ (pixel >> shift & 255)) * 0x100000001B3U;
    }
    char digits[20];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return digits;
}

struct ChoiceRow {
    const char* word;
    Choice choice;
};

constexpr ChoiceRow choiceRows[] = {
    {"yes", Choice::yes}, {"no", Choice::no}, {"cancel", Choice::cancel}};

const char* choiceWord(Choice choice) {
    for (const ChoiceRow& row : choiceRows) {
        if (row.choice == choice) return row.word;
    }
    return "";
}

/// What this answer means to a box with these buttons; nothing when there is none of the right
/// kind. A box without a cancel button is left by its close box as by "no".
std::optional<Choice> toChoice(const std::optional<Answer>& answer, Buttons buttons) {
    if (!answer) return std::nullopt;
    const bool hasCancel = buttons == Buttons::yesNoCancel;
    if (answer->kind == Answer::Kind::cancel || answer->kind == Answer::Kind::escape) {
        return hasCancel ? Choice::cancel : Choice::no;
    }
    for (const ChoiceRow& row : choiceRows) {
        if (answer->kind != Answer::Kind::text || answer->text != row.word) continue;
        if (row.choice == Choice::cancel && !hasCancel) return std::nullopt;
        return row.choice;
    }
    return std::nullopt;
}

/// Fills one field. False when the answer is of the wrong kind.
bool fill(DialogField& field, const Answer& answer) {
    if (answer.kind == Answer::Kind::keepDefault) return true;
    if (field.checkBox && answer.text != "0" && answer.text != "1") return false;
    field.text = answer.text;
    return true;
}

const char* resultWord(DialogResult result) {
    if (result == DialogResult::escape) return "escape";
    return result == DialogResult::accept ? "accept" : "cancel";
}

/// One prompt while it is being answered, and the line that tells of it.
struct PromptRecord {
    explicit PromptRecord(const Dialog& dialog)
        : json{{"event", "prompt"},
               {"dialog", dialog.name},
               {"title", dialog.title},
               {"fields", Json::array()},
               {"result", nullptr}} {
        for (const DialogField& field : dialog.fields) {
            json["fields"].push_back(
                {{"label", field.label}, {"default", field.text}, {"answer", nullptr}});
        }
    }
    void answer(std::size_t field, const std::string& answered) {
        json["fields"][field]["answer"] = answered;
    }
    Json json;
};

/// Counts the handlers that run, which an unanswered question leaves early.
struct Handling {
    explicit Handling(int& handlers) : depth(handlers) { ++depth; }
    ~Handling() { --depth; }
    int& depth;
};

} // namespace

BatchPlatform::BatchPlatform(const Program& runProgram, Size clientSize)
    : program(runProgram), size(clientSize) {}

void BatchPlatform::send(const Event& event) {
    const bool down = event.kind == EventKind::keyDown;
    if (event.key == key::escape && (down || event.kind == EventKind::keyUp)) escapeKey = down;
    if (event.kind == EventKind::deactivate || event.kind == EventKind::menuOpening) {
        escapeKey = false;
    }
    {
        const Handling handling{depth};
        program.handle(event);
    }
    sendDueClose();
}

void BatchPlatform::sendDueClose() {
    if (depth > 0 || !open || !std::exchange(closeDue, false)) return;
    send({.kind = EventKind::close});
}

void BatchPlatform::print(const std::string& line) {
    printPiece(line);
    printPiece("\n");
}

void BatchPlatform::printPiece(std::string_view piece) {
    if (!quiet) std::fwrite(piece.data(), 1, piece.size(), stdout);
}

void BatchPlatform::resize(Size newSize) {
    size = newSize;
    paintDue = true;
    send({.kind = EventKind::resize});
}

void BatchPlatform::finish() {
    quiet = true;
    answers.clear();
    closeDue = false;
    destroyWindow();
}

const Bitmap& BatchPlatform::currentPicture() {
    if (paintDue) {
        paintDue = false;
        send(Event{});
    }
    return picture;
}

void BatchPlatform::setTitle(const std::string& newTitle) {
    windowTitle = newTitle;
    print(text({{"event", "title"}, {"text", newTitle}}));
}

void BatchPlatform::setMenuBar(const std::string&, const MenuBar& menus) { bar = menus; }

void BatchPlatform::setMenuItem(int id, bool enabled, bool checked) {
    if (MenuItem* const item = findItem(bar, id)) {
        item->enabled = enabled;
        item->checked = checked;
    }
}

void BatchPlatform::searchCommands() { print(eventLine("search")); }

void BatchPlatform::note(const std::string& told) {
    status.left = told;
    print(text({{"event", "note"}, {"text", told}}));
}

void BatchPlatform::requestClose() {
    closeDue = true;
    sendDueClose();
}

void BatchPlatform::destroyWindow() {
    if (!open) return;
    open = false;
    send({.kind = EventKind::destroy});
    print(eventLine("closed"));
}

std::optional<Answer> BatchPlatform::takeAnswer() {
    if (answers.empty()) return std::nullopt;
    Answer first = std::move(answers.front());
    answers.pop_front();
    return first;
}

void BatchPlatform::stop(const std::string& question) {
    quiet = true; // the question is the last word of the run
    throw Unanswered{question};
}

void BatchPlatform::message(const std::string& title, const std::string& shown, Icon icon) {
    const bool exclamation = icon == Icon::exclamation;
    if (exclamation) ++exclamations;
    print(text({{"event", "message"},
                {"title", title},
                {"text", shown},
                {"icon", exclamation ? "exclamation" : "none"}}));
}

Choice BatchPlatform::question(const std::string& title, const std::string& asked, Buttons buttons,
                               Choice marked) {
    std::optional<Choice> choice = toChoice(takeAnswer(), buttons);
    if (!choice && agrees) choice = marked;
    Json json{{"event", "question"},
              {"title", title},
              {"text", asked},
              {"buttons", buttons == Buttons::yesNo ? "yes-no" : "yes-no-cancel"},
              {"answer", nullptr}};
    if (choice) json["answer"] = choiceWord(*choice);
    print(text(json));
    if (!choice) stop("the question \"" + asked + "\"");
    return *choice;
}

std::optional<std::string> BatchPlatform::fileDialog(const FileRequest& request) {
    const std::optional<Answer> answer = takeAnswer();
    const bool keeps = answer && answer->kind == Answer::Kind::keepDefault;
    const bool fits = answer && !(keeps && request.initial.empty());
    Json filters = Json::array();
    for (const FileFilter& filter : request.filters) {
        filters.push_back(Json::array({filter.description, filter.pattern}));
    }
    Json json{{"event", "file"},
              {"mode", request.save ? "save" : "open"},
              {"prompt", request.prompt},
              {"filters", filters},
              {"initial", request.initial},
              {"answer", nullptr}};
    const bool chosen = fits && (keeps || answer->kind == Answer::Kind::text);
    const std::string path = chosen && !keeps ? answer->text : request.initial;
    if (chosen) json["answer"] = path;
    print(text(json));
    if (!fits) stop("the file dialog \"" + request.prompt + "\"");
    if (!chosen) return std::nullopt;
    return path;
}

DialogResult BatchPlatform::dialog(Dialog& dialog) {
    PromptRecord record(dialog);
    const std::vector<DialogField> defaults = dialog.fields;
    DialogResult result = DialogResult::accept;
    for (std::size_t i = 0; i < dialog.fields.size() && result == DialogResult::accept; ++i) {
        const std::optional<Answer> answer = takeAnswer();
        if (answer && answer->kind == Answer::Kind::cancel) {
            result = DialogResult::cancel;
        } else if (answer && answer->kind == Answer::Kind::escape) {
            result = DialogResult::escape;
        } else if (answer && fill(dialog.fields[i], *answer)) {
            record.answer(i, dialog.fields[i].text);
            if (dialog.onChange) dialog.onChange(dialog.fields);
        } else {
            print(text(record.json));
            stop("the field \"" + dialog.fields[i].label + "\" of the prompt " + dialog.name);
        }
    }
    if (result == DialogResult::cancel) dialog.fields = defaults;
    record.json["result"] = resultWord(result);
    // The fields after the one that left the dialog hold what they held before.
    for (std::size_t i = 0; i < dialog.fields.size(); ++i) record.answer(i, dialog.fields[i].text);
    print(text(record.json));
    if (result == DialogResult::escape && dialog.onKey) {
        dialog.onKey({.kind = EventKind::keyDown, .key = key::escape});
        dialog.onKey({.kind = EventKind::keyUp, .key = key::escape});
    }
    return result;
}

void BatchPlatform::showBusy(const std::string& notice) {
    print(text({{"event", "busy"}, {"text", notice}}));
}

void BatchPlatform::beep() { print(eventLine("beep")); }

bool BatchPlatform::escapeDown() {
    if (abortAfter && *abortAfter > 0) {
        --*abortAfter;
        return escapeKey;
    }
    return abortAfter || escapeKey;
}

void BatchPlatform::openHelp(const std::string&) { print(eventLine("help")); }

void BatchPlatform::showPage(const std::string& pageTitle, const std::string& page) {
    print(text({{"event", "page"}, {"title", pageTitle}, {"text", page}}));
}

void BatchPlatform::copyToClipboard(const Bitmap& copied) {
    clipboard = copied;
    print(text({{"event", "clipboard"},
                {"width", copied.width},
                {"height", copied.height},
                {"hash", pixelHash(copied)}}));
}

void BatchPlatform::drawText(Bitmap& drawn, int x, int y, const std::string& shown,
                             const Font& font, std::uint32_t color) {
    layText(drawn, x, y, shown, font, color);
}

int BatchPlatform::textWidth(const std::string& shown, const Font& font) {
    return laidWidth(shown, font);
}

} // namespace polyfab
