// SPDX-License-Identifier: GPL-3.0-or-later
// What the contract suite does to a backend from outside: the part of the user.
#pragma once

#include "platform/batch/script.h"
#include "platform/platform.h"

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace polyfab::test {

/// A backend that runs a program as the current platform; its window is created and shown.
class Driver {
  public:
    virtual ~Driver() = default;
    /// Chooses a command from the menu and answers its box, as batch mode's answer steps do.
    virtual void choose(int command, const std::deque<Answer>& answers) = 0;
    /// Runs the long work, during which these keys go down and up.
    virtual void work(const std::vector<Event>& typed) = 0;
    /// Makes what the event tells of happen: keys, mouse, drop, close and the window events; and
    /// answers the box that it brings up.
    virtual void input(const Event& event, const std::deque<Answer>& answers = {}) = 0;
    virtual void resize(Size size) = 0;
    virtual bool isOpen() = 0;
    /// What the status line says; nothing while it is not shown.
    virtual std::optional<StatusLine> statusLine() = 0;
    virtual MenuItem item(int id) = 0;             ///< id 0: not in the menu
    virtual std::uint32_t pixel(int x, int y) = 0; ///< of what the window shows
};

// With the toy program, or with any.
std::unique_ptr<Driver> makeBatchDriver();
std::unique_ptr<Driver> makeQtDriver();
std::unique_ptr<Driver> makeQtDriverOf(const Program& program);

} // namespace polyfab::test
