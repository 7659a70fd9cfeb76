// SPDX-License-Identifier: GPL-3.0-or-later
// A user of the editor's window who does anything that comes to mind, for tests and fuzz targets.
#pragma once

#include "display/view.h"
#include "editor/command_table.h"
#include "editor/editor_state.h"
#include "editor/window.h"
#include "mesh/screen_positions.h"
#include "mesh/stale.h"
#include "tests/support/fake_platform.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace polyfab::test {

class RandomUser {
  public:
    /// `below(n)` gives a number from 0 to n - 1. All commands are tried but for these.
    RandomUser(FakePlatform& screen, std::function<int(int)> numbers,
               std::initializer_list<int> leftOut)
        : shown(screen), below(std::move(numbers)) {
        for (const Command& command : commandTable()) {
            const bool left = std::count(leftOut.begin(), leftOut.end(), command.id) != 0;
            if (command.handler != nullptr && !left) commands.push_back(command.id);
        }
    }

    std::vector<std::string> files; ///< that file dialogs are answered with; none: cancel
    bool fitted = false;            ///< the last act fitted view and box, which is no step
    std::function<void()> beforeListIsClosed; ///< called when something was done in a list

    /// A drag, a turn of the wheel, a key or a command, with whatever answers.
    void act() {
        constexpr int keys[] = {46, 36, 190}; // Delete, Home, full stop
        prepareAnswers();
        fitted = false;
        if (const int kind = below(9); kind < 3) {
            dragAnywhere();
        } else if (kind == 3) {
            handleEvent({.kind = EventKind::wheel, .x = 300, .y = 200, .steps = below(3) - 1.0});
        } else if (kind == 4) {
            press(below(4) == 0 ? below(256) : keys[below(3)]);
        } else {
            // Those that read and write files would come too seldom among all others.
            constexpr int fileCommands[] = {256, 296, 257, 258, 259};
            command(kind == 5 && !files.empty() ? fileCommands[below(5)] : any(commands));
            if (editorState.subview != 0) useList();
        }
        shown.files.clear();
        shown.choices.clear();
        shown.dialogAnswers.clear();
        shown.dialogResults.clear();
        shown.escapeAfter = -1;
        shown.log.clear();
    }

  private:
    struct Spot {
        int x, y;
    };

    template <typename T>
    const T& any(const std::vector<T>& list) {
        return list[static_cast<std::size_t>(below(static_cast<int>(list.size())))];
    }
    void command(int id) {
        fitted = findCommand(id)->views;
        handleEvent({.kind = EventKind::command, .command = id});
    }
    void press(int code) {
        fitted = code == key::home;
        handleEvent({.kind = EventKind::keyDown, .key = code});
        handleEvent({.kind = EventKind::keyUp, .key = code});
    }
    static void mouse(const Spot& at, unsigned buttons) {
        handleEvent({.kind = EventKind::mouse, .x = at.x, .y = at.y, .buttons = buttons});
    }
    void prepareAnswers() {
        static const std::vector<std::string> words{
            "1", "0.5", "0", "-1", "90", "2", "nan", "inf", "x", "Y", "", "1e300", "a name"};
        for (int i = 0; i < 5; ++i) {
            if (!files.empty()) shown.files.push_back(any(files));
            shown.choices.push_back(Choice(below(3) - 1));
            shown.dialogAnswers.push_back({any(words), any(words), any(words)});
            shown.dialogResults.push_back(DialogResult(std::max(below(6) - 3, 0)));
        }
        shown.escapeAfter = below(8) == 0 ? below(8) : -1;
    }
    /// Anywhere, but mostly by a point, so that something is hit.
    Spot spot() {
        if (OB->np > 0 && below(4) != 0) {
            if (stale.points) transformPoints(*OB);
            const Point& p = OB->points[below(OB->np)];
            const double x = below(2) != 0 ? p.sx : p.sz + 513;
            if (std::abs(x) < 1500 && std::abs(p.sy) < 500) {
                return {int(x) + below(9) - 4, int(p.sy) + below(9) - 4};
            }
        }
        return {below(shown.size.width), below(shown.size.height)};
    }
    void dragAnywhere() {
        constexpr int held[] = {key::ctrl, key::shift, '1', '2'};
        for (const int code : held) {
            if (below(4) == 0) handleEvent({.kind = EventKind::keyDown, .key = code});
        }
        const Spot from = spot();
        const unsigned buttons = 1 + static_cast<unsigned>(below(4));
        mouse(from, buttons);
        for (int i = below(3); i > 0; --i) mouse(spot(), buttons);
        if (below(8) == 0) press(key::escape);
        mouse(below(2) != 0 ? from : spot(), 0);
        for (const int code : held) handleEvent({.kind = EventKind::keyUp, .key = code});
    }
    /// Some picks in the open list, or a rename or reorder, and out of it.
    void useList() {
        const auto cell = [this] { return Spot{20 + 200 * below(2), 8 + 16 * below(6)}; };
        const auto drag = [](const Spot& from, const Spot& to) {
            mouse(from, button::left);
            mouse(to, button::left);
            mouse(to, 0);
        };
        const Spot at = cell();
        const bool picks = below(3) == 0;
        handleEvent({.kind = EventKind::keyDown, .key = key::ctrl});
        if (picks) {
            for (int i = below(4); i >= 0; --i) {
                const Spot picked = cell();
                drag(picked, picked);
            }
        } else if (below(2) == 0) {
            drag(at, cell());
        } else {
            mouse(at, 0);
            mouse(at, button::right);
            mouse(at, 0);
        }
        handleEvent({.kind = EventKind::keyUp, .key = key::ctrl});
        // After a step of its own nothing else is changed but by closing: A and C pick, N adds.
        const int letter = 'A' + below(26);
        if (picks || (letter != 'A' && letter != 'C' && letter != 'N')) press(letter);
        if (beforeListIsClosed) beforeListIsClosed();
        for (const int code : {key::escape, key::f1}) { // the first may have left a prompt
            if (editorState.subview != 0) press(code);
        }
    }

    FakePlatform& shown;
    std::function<int(int)> below;
    std::vector<int> commands;
};

} // namespace polyfab::test
