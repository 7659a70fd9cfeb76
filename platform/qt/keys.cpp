// SPDX-License-Identifier: GPL-3.0-or-later
// Keyboard events as virtual-key codes. A code names a key, while the toolkit names what the key
// types, so "1" and "!" of one key have two rows.
#include "platform/qt/keys.h"

#include "platform/platform.h"

#include <QKeyEvent>

#include <algorithm>
#include <string_view>

namespace polyfab {
namespace {

struct KeyRow {
    int first; ///< the toolkit's code
    int last;  ///< the end of a run of codes that follow one another on both sides
    int code;
};

constexpr KeyRow keypadRows[] = {
    {Qt::Key_0, Qt::Key_9, 96},
    {Qt::Key_Asterisk, Qt::Key_Asterisk, 106},
    {Qt::Key_Plus, Qt::Key_Plus, 107},
    {Qt::Key_Minus, Qt::Key_Minus, 109},
    {Qt::Key_Comma, Qt::Key_Comma, key::keypadPoint},
    {Qt::Key_Period, Qt::Key_Period, key::keypadPoint},
    {Qt::Key_Slash, Qt::Key_Slash, 111},
};

constexpr KeyRow keyRows[] = {
    {Qt::Key_A, Qt::Key_Z, 'A'},
    {Qt::Key_0, Qt::Key_9, '0'},
    {Qt::Key_F1, Qt::Key_F24, key::f1},
    {Qt::Key_Backspace, Qt::Key_Backspace, 8},
    {Qt::Key_Tab, Qt::Key_Tab, 9},
    {Qt::Key_Backtab, Qt::Key_Backtab, 9},
    {Qt::Key_Clear, Qt::Key_Clear, 12},
    {Qt::Key_Return, Qt::Key_Return, 13},
    {Qt::Key_Enter, Qt::Key_Enter, 13},
    {Qt::Key_Shift, Qt::Key_Shift, key::shift},
    {Qt::Key_Control, Qt::Key_Control, key::ctrl},
    {Qt::Key_Alt, Qt::Key_Alt, key::alt},
    {Qt::Key_AltGr, Qt::Key_AltGr, key::alt},
    {Qt::Key_Pause, Qt::Key_Pause, 19},
    {Qt::Key_CapsLock, Qt::Key_CapsLock, 20},
    {Qt::Key_Escape, Qt::Key_Escape, key::escape},
    {Qt::Key_Space, Qt::Key_Space, 32},
    {Qt::Key_PageUp, Qt::Key_PageUp, key::pageUp},
    {Qt::Key_PageDown, Qt::Key_PageDown, key::pageDown},
    {Qt::Key_End, Qt::Key_End, 35},
    {Qt::Key_Home, Qt::Key_Home, key::home},
    {Qt::Key_Left, Qt::Key_Down, 37}, // left, up, right, down
    {Qt::Key_Print, Qt::Key_Print, 44},
    {Qt::Key_Insert, Qt::Key_Insert, 45},
    {Qt::Key_Delete, Qt::Key_Delete, key::del},
    {Qt::Key_Meta, Qt::Key_Meta, 91},
    {Qt::Key_Super_L, Qt::Key_Super_R, 91}, // left, right
    {Qt::Key_Menu, Qt::Key_Menu, 93},
    {Qt::Key_NumLock, Qt::Key_NumLock, 144},
    {Qt::Key_ScrollLock, Qt::Key_ScrollLock, 145},
    {Qt::Key_Semicolon, Qt::Key_Semicolon, 186},
    {Qt::Key_Colon, Qt::Key_Colon, 186},
    {Qt::Key_Equal, Qt::Key_Equal, 187},
    {Qt::Key_Plus, Qt::Key_Plus, 187},
    {Qt::Key_Comma, Qt::Key_Comma, 188},
    {Qt::Key_Less, Qt::Key_Less, 188},
    {Qt::Key_Minus, Qt::Key_Minus, 189},
    {Qt::Key_Underscore, Qt::Key_Underscore, 189},
    {Qt::Key_Period, Qt::Key_Period, key::fullStop},
    {Qt::Key_Greater, Qt::Key_Greater, key::fullStop},
    {Qt::Key_Slash, Qt::Key_Slash, 191},
    {Qt::Key_Question, Qt::Key_Question, 191},
    {Qt::Key_QuoteLeft, Qt::Key_QuoteLeft, 192},
    {Qt::Key_AsciiTilde, Qt::Key_AsciiTilde, 192},
    {Qt::Key_BracketLeft, Qt::Key_BracketLeft, 219},
    {Qt::Key_BraceLeft, Qt::Key_BraceLeft, 219},
    {Qt::Key_Backslash, Qt::Key_Backslash, 220},
    {Qt::Key_Bar, Qt::Key_Bar, 220},
    {Qt::Key_BracketRight, Qt::Key_BracketRight, 221},
    {Qt::Key_BraceRight, Qt::Key_BraceRight, 221},
    {Qt::Key_Apostrophe, Qt::Key_Apostrophe, 222},
    {Qt::Key_QuoteDbl, Qt::Key_QuoteDbl, 222},
    {Qt::Key_ParenRight, Qt::Key_ParenRight, '0'}, // the digits with Shift, US layout
    {Qt::Key_Exclam, Qt::Key_Exclam, '1'},
    {Qt::Key_At, Qt::Key_At, '2'},
    {Qt::Key_NumberSign, Qt::Key_Percent, '3'}, // 3, 4, 5
    {Qt::Key_AsciiCircum, Qt::Key_AsciiCircum, '6'},
    {Qt::Key_Ampersand, Qt::Key_Ampersand, '7'},
    {Qt::Key_Asterisk, Qt::Key_Asterisk, '8'},
    {Qt::Key_ParenLeft, Qt::Key_ParenLeft, '9'},
};

template <std::size_t count>
int find(const KeyRow (&table)[count], int toolkitKey) {
    for (const KeyRow& row : table) {
        if (toolkitKey >= row.first && toolkitKey <= row.last) {
            return row.code + toolkitKey - row.first;
        }
    }
    return 0;
}

/// X11 and Wayland number the digit row 10 to 19 on every layout: 1 to 9, then 0. This tells the
/// "2" key even where Shift makes a double quote of it.
int digitOfScanCode(quint32 scanCode) {
    if (scanCode < 10 || scanCode > 19) return 0;
    return '0' + int(scanCode - 9) % 10;
}

struct LetterRow {
    quint32 first; ///< the scan code of the first letter
    std::string_view letters;
};

constexpr LetterRow letterRows[] = {{24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}};

/// For the layouts whose letters are not Latin ones: the letter of the US layout.
int letterOfScanCode(quint32 scanCode) {
    for (const LetterRow& row : letterRows) {
        if (scanCode >= row.first && scanCode - row.first < row.letters.size()) {
            return row.letters[scanCode - row.first];
        }
    }
    return 0;
}

/// With Shift held X11 calls the Alt keys so.
bool isMetaOfAlt(const QKeyEvent& event) {
    constexpr quint32 leftAlt = 64, rightAlt = 108;
    return event.key() == Qt::Key_Meta
           && (event.nativeScanCode() == leftAlt || event.nativeScanCode() == rightAlt);
}

} // namespace

int virtualKey(const QKeyEvent& event) {
    if (event.modifiers() & Qt::KeypadModifier) {
        if (const int code = find(keypadRows, event.key())) return code;
    }
    if (const int code = digitOfScanCode(event.nativeScanCode())) return code;
    if (isMetaOfAlt(event)) return key::alt;
    if (const int code = find(keyRows, event.key())) return code;
    return letterOfScanCode(event.nativeScanCode());
}

KeyName::KeyName(const QKeyEvent& event)
    : scanCode(event.nativeScanCode()), code(virtualKey(event)) {}

bool HeldKeys::containsCode(int code) const {
    return std::any_of(codes.begin(), codes.end(),
                       [code](const auto& entry) { return entry.second == code; });
}

int HeldKeys::press(const KeyName& key, bool repeated) {
    int& told = codes.try_emplace(place(key), key.code).first->second;
    if (!repeated) told = key.code;
    return told;
}

int HeldKeys::release(const KeyName& key) {
    const auto entry = codes.find(place(key));
    if (entry == codes.end()) return key.code;
    const int told = entry->second;
    codes.erase(entry);
    return told;
}

void HeldKeys::releaseCode(int code) {
    std::erase_if(codes, [code](const auto& entry) { return entry.second == code; });
}

KeyName HeldKeys::place(const KeyName& key) const {
    KeyName byScanCode(0);
    byScanCode.scanCode = key.scanCode;
    const KeyName byCode(key.code);
    // Some presses are inferred, and have no scan code.
    return key.scanCode == 0 || (!codes.contains(byScanCode) && codes.contains(byCode))
               ? byCode
               : byScanCode;
}

} // namespace polyfab
