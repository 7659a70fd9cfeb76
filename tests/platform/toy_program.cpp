// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/platform/toy_program.h"

#include <chrono>
#include <thread>

namespace polyfab::test {
namespace {

void note(const std::string& what) { toyState.log.push_back(what); }

void ask(Buttons buttons) {
    constexpr const char* words[] = {"cancel", "no", "yes"};
    note(words[int(platform().question("caption", "sure?", buttons)) + 1]);
}

void askFields(bool showing) {
    Dialog dialog{"ASKDB2",
                  "fill & in",
                  {{"first <b>", "one"}, {"second & third", "two"}, {"tick", "1", true}}};
    dialog.onKey = [](const Event& event) { note("dialog " + describe(event)); };
    const auto texts = [](std::string line, const std::vector<DialogField>& fields) {
        for (const DialogField& field : fields) line += "|" + field.text;
        return line;
    };
    if (showing)
        dialog.onChange = [&](const std::vector<DialogField>& fields) {
            note(texts("changed", fields));
            platform().requestPaint();
        };
    constexpr const char* words[] = {"accept", "cancel", "escape"};
    const std::string left = words[int(platform().dialog(dialog))];
    note(texts(left, dialog.fields));
}

void askPath(bool save) {
    const std::optional<std::string> path = platform().fileDialog(
        {save, "which file?", {{"all", "*.DXF;*.OBJ"}, {"OBJ files", "*.OBJ"}}, "cow.obj"});
    note(path ? "file " + *path : "no file");
}

/// Work of 300 looks at the Escape key.
void workLong() {
    toyState.working = true;
    bool stopped = false;
    for (int look = 0; look < 300 && !stopped; ++look) {
        stopped = platform().escapeDown();
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    toyState.working = false;
    note(stopped ? "stopped" : "done");
}

struct Row {
    int id;
    const char* label;
    void (*run)(); ///< null: greyed
};

const Row rows[] = {
    {toy::yesNo, "&yes or no", [] { ask(Buttons::yesNo); }},
    {toy::yesNoCancel, "yes no or &cancel", [] { ask(Buttons::yesNoCancel); }},
    {toy::prompt, "pro&mpt", [] { askFields(false); }},
    {toy::preview, "pre&view", [] { askFields(true); }},
    {toy::openFile, "&open", [] { askPath(false); }},
    {toy::saveFile, "&save", [] { askPath(true); }},
    {toy::warn, "&warn", [] { platform().message("<b>", "oh & dear", Icon::exclamation); }},
    {toy::raw, "&raw", [] { platform().message("bytes", "\xff \"q\"\n", Icon::none); }},
    {toy::busy, "&busy",
     [] {
         platform().showBusy("HANG ON");
         platform().beep();
         const double before = platform().workSeconds();
         platform().showProgress("working", 0.5);
         platform().showProgress("working", -1);
         platform().showProgress("", 0);
         if (platform().workSeconds() < before) note("disturbed");
         platform().showBusy("");
         note("was busy");
     }},
    {toy::title, "&title", [] { platform().setTitle("polyfab [*] [cow.obj] "); }},
    {toy::toggle, "to&ggle", [] { platform().setMenuItem(toy::toggle, true, true); }},
    {toy::otherMenu, "other",
     [] {
         platform().setMenuBar("B", {{"&B", {{toy::yesNo, "b"}}}});
     }},
    {toy::status, "status",
     [] {
         platform().setStatusLine({"<b>left", "right"});
     }},
    {toy::note, "note", [] { platform().note("done & noted"); }},
    {toy::hideStatus, "hide", [] { platform().showStatusLine(false); }},
    {toy::longWork, "&long work", workLong},
    {toy::exit, "e&xit", [] { platform().requestClose(); }},
    {toy::greyed, "greyed", nullptr},
    {toy::unbuilt, "&unbuilt", nullptr},
};

void setMenus() {
    Menu menu{"&Toys", {{}}};
    for (const Row& row : rows) {
        menu.items.push_back({row.id, row.label, row.run != nullptr, true});
    }
    platform().setMenuBar("TOY", {menu});
}

void paint() {
    ++toyState.paints;
    const Size size = platform().clientSize();
    Bitmap picture{size.width, size.height, {}};
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) picture.pixels.push_back(toyColor(x, y));
    }
    platform().present(picture);
}

/// What comes in while a command runs must not touch what that command works on.
void runAlone(int id) {
    const auto count = [id] {
        return toyState.resizes + (id == toy::preview ? 0 : toyState.paints);
    };
    const int before = count();
    for (const Row& row : rows) {
        if (row.id == id) row.run();
    }
    if (count() != before) note("disturbed");
}

void handle(const Event& event) {
    if (event.kind == EventKind::paint) return paint();
    if (event.kind == EventKind::resize) return void(++toyState.resizes);
    if (event.kind == EventKind::idle) return void(++toyState.rests);
    if (event.kind == EventKind::start && event.paths.empty()) return;
    note(describe(event));
    if (event.kind == EventKind::create) setMenus();
    if (event.kind == EventKind::command) runAlone(event.command);
    if (event.kind == EventKind::close && toyState.mayClose) platform().destroyWindow();
}

std::vector<CommandInfo> commands() {
    std::vector<CommandInfo> list;
    for (const Row& row : rows) {
        list.push_back({row.id, "&Toys", row.label, row.id != toy::unbuilt});
    }
    return list;
}

} // namespace

const Program& toyProgram() {
    static const Program program{handle, commands, [] { return std::string("{\"s\":1}"); },
                                 [](const TextSink& sink) {
                                     for (const char* const piece : {"{\"d\"", ":1}"}) sink(piece);
                                 }};
    return program;
}

std::string describe(const Event& event) {
    constexpr const char* kinds[] = {"create", "destroy",   "resize",  "deactivate", "menu",
                                     "paint",  "close",     "keyDown", "keyUp",      "mouse",
                                     "wheel",  "command",   "drop",    "lookChange", "start",
                                     "idle",   "sessionEnd"};
    std::string line = kinds[int(event.kind)];
    for (const int value :
         {event.command, event.key, event.x, event.y, static_cast<int>(event.buttons)}) {
        if (value != 0) line += " " + std::to_string(value);
    }
    if (event.steps != 0) line += " steps " + std::to_string(event.steps);
    for (const std::string& path : event.paths) line += "|" + path;
    return line;
}

std::uint32_t toyColor(int x, int y) {
    return 0xFF000000U | unsigned(x & 255) << 16 | unsigned(y & 255) << 8 | unsigned((x + y) & 255);
}

} // namespace polyfab::test
