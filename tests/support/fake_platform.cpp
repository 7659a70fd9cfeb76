// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/fake_platform.h"

#include <cstdio>
#include <utility>

namespace polyfab::test {
namespace {

template <typename T>
T take(std::deque<T>& list, T otherwise) {
    if (list.empty()) return otherwise;
    T first = std::move(list.front());
    list.pop_front();
    return first;
}

} // namespace

FakePlatform::FakePlatform() : before(currentPlatform) { setPlatform(this); }

FakePlatform::~FakePlatform() { setPlatform(before); }

void FakePlatform::setTitle(const std::string& text) {
    windowTitle = text;
    log.push_back("title|" + text);
}

void FakePlatform::setMenuBar(const std::string&, const MenuBar& menus) { bar = menus; }

void FakePlatform::setMenuItem(int id, bool enabled, bool checked) {
    if (MenuItem* const item = findItem(bar, id)) {
        item->enabled = enabled;
        item->checked = checked;
    }
}

void FakePlatform::message(const std::string& title, const std::string& text, Icon icon) {
    log.push_back((icon == Icon::exclamation ? "message!|" : "message|") + title + "|" + text);
}

Choice FakePlatform::question(const std::string& title, const std::string& text, Buttons,
                              Choice answerMarked) {
    marked = answerMarked;
    log.push_back("question|" + title + "|" + text);
    return take(choices, Choice::no);
}

std::optional<std::string> FakePlatform::fileDialog(const FileRequest& request) {
    log.push_back("file|" + request.prompt + "|" + request.initial);
    return take(files, std::optional<std::string>());
}

DialogResult FakePlatform::dialog(Dialog& dialog) {
    for (const DialogField& field : dialog.fields) {
        log.push_back("dialog|" + dialog.name + "|" + field.label + "=" + field.text);
    }
    if (dialogAnswers.empty()) return DialogResult::cancel;
    const std::vector<std::string> answers = take(dialogAnswers, {});
    const DialogResult result = take(dialogResults, DialogResult::accept);
    if (result == DialogResult::cancel) return result;
    for (std::size_t i = 0; i < answers.size() && i < dialog.fields.size(); ++i) {
        dialog.fields[i].text = answers[i];
    }
    if (result == DialogResult::escape && dialog.onKey) {
        dialog.onKey({EventKind::keyDown, 0, key::escape});
        dialog.onKey({EventKind::keyUp, 0, key::escape});
    }
    return result;
}

void FakePlatform::showProgress(const std::string& text, double fraction) {
    char number[32];
    std::snprintf(number, sizeof number, "%.2f", fraction);
    log.push_back("progress|" + text + "|" + number);
}

void FakePlatform::drawText(Bitmap&, int x, int y, const std::string& text, const Font&,
                            std::uint32_t color) {
    texts.push_back({x, y, text, color});
}

} // namespace polyfab::test
