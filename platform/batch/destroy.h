// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace polyfab {

/// For pointers to what a C library made, which it has to take back.
template <auto destroy>
struct Destroy {
    void operator()(auto* owned) const { destroy(owned); }
};

} // namespace polyfab
