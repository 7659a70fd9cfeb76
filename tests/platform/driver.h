// SPDX-License-Identifier: GPL-3.0-or-later
// What the contract suite does to a backend from outside: the part of the user.
#pragma once

#include "platform/platform.h"

#include <memory>
#include <string>
#include <vector>

namespace polyfab::test {

/// What the user does with the next modal box.
struct Reply {
    enum class How { yes, no, cancel, escape, closeBox, accept, path };
    How how = How::accept;
    std::vector<std::string> fields; ///< texts typed into a prompt before it is left
    std::string path;
};

/// A backend that runs the toy program; its window is created and shown.
class Driver {
  public:
    virtual ~Driver() = default;
    virtual void choose(int command, const Reply& reply) = 0;
    virtual bool isOpen() = 0;
    virtual MenuItem item(int id) = 0; ///< id 0: not in the menu
    virtual void resize(Size size) = 0;
    virtual std::uint32_t pixel(int x, int y) = 0; ///< of what the window shows
    virtual void key(int code, bool down) = 0;     ///< a letter, a digit, Escape or F2
    virtual void mouse(int x, int y, unsigned buttons) = 0;
    virtual void drop(const std::vector<std::string>& paths) = 0;
    virtual void close() = 0;
    virtual void openMenu() = 0;
    virtual void deactivate() = 0;
};

std::unique_ptr<Driver> makeBatchDriver();
std::unique_ptr<Driver> makeQtDriver();

} // namespace polyfab::test
