// SPDX-License-Identifier: GPL-3.0-or-later
// The ways in which OBJ files are read.
#pragma once

namespace polyfab {

/// Each is false as the read commands have it: what they make of a file is fixed, whatever it
/// loses.
struct ObjReading {
    bool joinsLines = false; ///< lines may be of any length, go on behind a backslash, and the last
                             ///< one needs no end; otherwise they end at maxObjLine
    bool hasComments = false; ///< "#" begins a comment also behind numbers
    bool forgives = false;    ///< bad faces are left out, missing numbers are 0, and corners get no
                              ///< normal or texture coordinate that is not there; otherwise a bad
                              ///< line is the end, and the first texture coordinate fills in
    bool keepsNames = false;  ///< colons are a part of them, and "o" names a group as "g" does
    bool keepsValues = false; ///< any finite number is a texture coordinate, and a number that a
                              ///< corner lacks names nothing
};

/// The way of import, which loses as little as it can.
inline constexpr ObjReading objImport = {true, true, true, true, true};

} // namespace polyfab
