// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/platform/toy_program.h"

namespace polyfab::test {
namespace {

ToyProgram state;

void note(const std::string& what) { state.log.push_back(what); }

const char* word(Choice choice) {
    if (choice == Choice::cancel) return "cancel";
    return choice == Choice::yes ? "yes" : "no";
}

void ask(Buttons buttons) {
    note(std::string("question ") + word(platform().question("caption", "sure?", buttons)));
}

void askFields() {
    Dialog dialog{
        "ASKDB2",
        "fill & in",
        {{"first <b>", "one", false}, {"second & third", "two", false}, {"tick", "1", true}}};
    const DialogResult result = platform().dialog(dialog);
    std::string line = result == DialogResult::accept   ? "accept"
                       : result == DialogResult::cancel ? "cancel"
                                                        : "escape";
    for (const DialogField& field : dialog.fields) line += "|" + field.text;
    note(line);
}

void askPath(bool save) {
    const FileRequest request{
        save, "which file?", {{"all", "*.DXF;*.OBJ"}, {"OBJ files", "*.OBJ"}}, "cow.obj"};
    const std::optional<std::string> path = platform().fileDialog(request);
    note(path ? "file " + *path : "no file");
}

MenuBar mainBar() {
    return {{"&First",
             {{toy::yesNo, "&yes or no", true, false, false},
              {toy::yesNoCancel, "yes no or &cancel", true, false, false},
              {toy::prompt, "pro&mpt", true, false, false},
              {0, "", true, false, false},
              {toy::openFile, "&open", true, false, false},
              {toy::saveFile, "&save", true, false, false},
              {toy::greyed, "&greyed", false, false, false},
              {toy::unbuilt, "&unbuilt", false, false, false}}},
            {"&Second",
             {{toy::warn, "&warn", true, false, false},
              {toy::notice, "&notice", true, false, false},
              {toy::exit, "e&xit", true, false, false},
              {toy::otherMenu, "other &menu", true, false, false},
              {toy::toggle, "to&ggle", true, true, false},
              {toy::title, "&title", true, false, false},
              {toy::busyWork, "&busy", true, false, false},
              {toy::raw, "&raw", true, false, false}}}};
}

void runCommand(int id) {
    switch (id) {
        case toy::yesNo:
            return ask(Buttons::yesNo);
        case toy::yesNoCancel:
            return ask(Buttons::yesNoCancel);
        case toy::prompt:
            return askFields();
        case toy::openFile:
            return askPath(false);
        case toy::saveFile:
            return askPath(true);
        case toy::warn:
            return platform().message("<b>", "oh & dear", Icon::exclamation);
        case toy::notice:
            return platform().message("note", "all well", Icon::none);
        case toy::exit:
            return platform().requestClose();
        case toy::otherMenu:
            return platform().setMenuBar("OTHER", {{"&Other", {{toy::yesNo, "&yes or no"}}}});
        case toy::toggle:
            return platform().setMenuItem(toy::toggle, true, true);
        case toy::title:
            return platform().setTitle("polyfab [*] [cow.obj] ");
        case toy::raw:
            return platform().message("bytes", "\xff \"q\"\n", Icon::none);
        default:
            platform().showBusy("HANG ON");
            platform().beep();
            platform().showBusy("");
            platform().showBusy(""); // nothing left to remove
    }
}

void paint() {
    ++state.paints;
    const Size size = platform().clientSize();
    Bitmap picture{size.width, size.height, {}};
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) picture.pixels.push_back(toyColor(x, y));
    }
    platform().present(picture);
}

/// What comes in while a command runs must not touch what that command works on.
void runAlone(int id) {
    const int paints = state.paints;
    const int resizes = state.resizes;
    runCommand(id);
    if (state.paints != paints || state.resizes != resizes) note("disturbed");
}

void handle(const Event& event) {
    if (event.kind == EventKind::paint) return paint();
    if (event.kind == EventKind::resize) {
        ++state.resizes;
        return;
    }
    state.events.push_back(event);
    if (event.kind == EventKind::create) platform().setMenuBar("TOY", mainBar());
    if (event.kind == EventKind::command) runAlone(event.command);
    if (event.kind == EventKind::close && state.mayClose) platform().destroyWindow();
}

std::vector<CommandInfo> commands() {
    std::vector<CommandInfo> list;
    for (const Menu& menu : mainBar()) {
        for (const MenuItem& item : menu.items) {
            if (item.id == 0) continue;
            list.push_back({item.id, menu.title, item.label, item.id != toy::unbuilt});
        }
    }
    return list;
}

} // namespace

ToyProgram& toyProgram() { return state; }

void resetToy() { state = {}; }

const Program& toyAsProgram() {
    static const Program program{handle, commands, [] { return std::string("{\"s\":1}"); },
                                 [] { return std::string("{\"d\":1}"); }};
    return program;
}

std::uint32_t toyColor(int x, int y) {
    return 0xFF000000U | unsigned(x & 255) << 16 | unsigned(y & 255) << 8 | unsigned((x + y) & 255);
}

} // namespace polyfab::test
