// SPDX-License-Identifier: GPL-3.0-or-later
// The window title while long work shows its progress there.
#pragma once

#include <string>

namespace polyfab {

/// The title, cut to so many characters.
[[nodiscard]] std::string titleUpTo(int most);

/// Puts the title that it found, cut to so many characters, back when it goes out of scope.
class SavedTitle {
  public:
    explicit SavedTitle(int most) : saved(titleUpTo(most)) {}
    ~SavedTitle();
    SavedTitle(const SavedTitle&) = delete;
    SavedTitle& operator=(const SavedTitle&) = delete;

  private:
    std::string saved;
};

/// Sets the title to the arguments printed by the format, as printf does.
[[gnu::format(printf, 1, 2)]] void showTitle(const char* format, ...);

} // namespace polyfab
