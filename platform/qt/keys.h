// SPDX-License-Identifier: GPL-3.0-or-later
// Keyboard events as virtual-key codes, and which keys are down.
#pragma once

#include <QtGlobal>

#include <compare>
#include <map>

class QKeyEvent;

namespace polyfab {

/// The virtual-key code of the key, whatever Shift makes of it; 0 for a key without one.
int virtualKey(const QKeyEvent& event);

/// What an event says of its key. What the key is called may change while it is down (with Shift,
/// Alt becomes Meta on X11, and "," becomes ";" on a German keyboard), its scan code does not.
struct KeyName {
    explicit KeyName(const QKeyEvent& event);
    /// A key that no event tells of.
    explicit KeyName(int virtualKeyCode) : code(virtualKeyCode) {}
    auto operator<=>(const KeyName&) const = default;

    quint32 scanCode = 0; ///< 0: not known
    int code = 0;
};

/// The keys that are down, each with the code that its press was told by.
class HeldKeys {
  public:
    bool contains(const KeyName& key) const { return codes.contains(place(key)); }
    bool containsCode(int code) const;
    /// Returns the code to tell the press by, which a repeated press does not change.
    int press(const KeyName& key, bool repeated);
    /// Returns the code to tell the release by: the one of the press, or the present one if the
    /// press was not seen.
    int release(const KeyName& key);
    void releaseCode(int code);
    void clear() { codes.clear(); }
    const std::map<KeyName, int>& all() const { return codes; }

  private:
    /// Where the key is kept: under its scan code, or else under its code.
    KeyName place(const KeyName& key) const;
    std::map<KeyName, int> codes;
};

} // namespace polyfab
