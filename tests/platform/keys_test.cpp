// SPDX-License-Identifier: GPL-3.0-or-later
// The keys whose code depends on more than the toolkit's name for them.
#ifdef POLYFAB_QT
#include "platform/qt/keys.h"

#include "platform/platform.h"

#include <QKeyEvent>
#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

TEST(Keys, CodesNameTheKeyNotWhatItTypes) {
    struct {
        int toolkitKey;
        Qt::KeyboardModifier modifier;
        unsigned scanCode;
        int code;
    } const cases[] = {
        {Qt::Key_Exclam, Qt::ShiftModifier, 0, '1'},
        {Qt::Key_QuoteDbl, Qt::ShiftModifier, 11, '2'}, // British layout
        {Qt::Key_QuoteDbl, Qt::ShiftModifier, 48, 222}, // US layout
        {Qt::Key_ParenRight, Qt::ShiftModifier, 19, '0'},
        {Qt::Key_7, Qt::KeypadModifier, 79, 103},
        {Qt::Key_Home, Qt::KeypadModifier, 79, 36},
        {Qt::Key_Plus, Qt::KeypadModifier, 86, 107},
        {Qt::Key_Plus, Qt::ShiftModifier, 21, 187},
        {Qt::Key_Down, Qt::NoModifier, 0, 40},
        // Both sides of the modifiers are one key.
        {Qt::Key_Shift, Qt::NoModifier, 50, 16},
        {Qt::Key_Shift, Qt::NoModifier, 62, 16},
        {Qt::Key_Control, Qt::NoModifier, 37, 17},
        {Qt::Key_Control, Qt::NoModifier, 105, 17},
        {Qt::Key_Alt, Qt::NoModifier, 64, 18},
        {Qt::Key_AltGr, Qt::NoModifier, 108, 18},
        {Qt::Key_Super_R, Qt::NoModifier, 134, 92},
        {Qt::Key_F12, Qt::NoModifier, 0, 123},
        {Qt::Key_VolumeUp, Qt::NoModifier, 0, 0},
    };
    for (const auto& row : cases) {
        const QKeyEvent event(QEvent::KeyPress, row.toolkitKey, row.modifier, row.scanCode, 0, 0);
        EXPECT_EQ(virtualKey(event), row.code) << row.toolkitKey << " " << row.scanCode;
    }
}

TEST(Keys, TheKeypadHasCodesOfItsOwnWhileItTypesNumbers) {
    struct {
        unsigned scanCode;
        int numbers, code; ///< the toolkit's name with NumLock, and what comes out
        int moves, plain;  ///< the same without
    } const cases[] = {
        {90, Qt::Key_0, 96, Qt::Key_Insert, 45},
        {87, Qt::Key_1, 97, Qt::Key_End, 35},
        {88, Qt::Key_2, 98, Qt::Key_Down, 40},
        {89, Qt::Key_3, 99, Qt::Key_PageDown, 34},
        {83, Qt::Key_4, 100, Qt::Key_Left, 37},
        {84, Qt::Key_5, 101, Qt::Key_Clear, 12},
        {85, Qt::Key_6, 102, Qt::Key_Right, 39},
        {79, Qt::Key_7, 103, Qt::Key_Home, 36},
        {80, Qt::Key_8, 104, Qt::Key_Up, 38},
        {81, Qt::Key_9, 105, Qt::Key_PageUp, 33},
        {63, Qt::Key_Asterisk, 106, Qt::Key_Asterisk, 106},
        {86, Qt::Key_Plus, 107, Qt::Key_Plus, 107},
        {82, Qt::Key_Minus, 109, Qt::Key_Minus, 109},
        {91, Qt::Key_Period, 110, Qt::Key_Delete, 46},
        {91, Qt::Key_Comma, 110, Qt::Key_Delete, 46}, // German
        {106, Qt::Key_Slash, 111, Qt::Key_Slash, 111},
        {104, Qt::Key_Enter, 13, Qt::Key_Enter, 13},
        {77, Qt::Key_NumLock, 144, Qt::Key_NumLock, 144},
    };
    const auto code = [](int toolkitKey, unsigned scanCode) {
        return virtualKey(
            QKeyEvent(QEvent::KeyPress, toolkitKey, Qt::KeypadModifier, scanCode, 0, 0));
    };
    for (const auto& row : cases) {
        EXPECT_EQ(code(row.numbers, row.scanCode), row.code) << row.scanCode;
        EXPECT_EQ(code(row.moves, row.scanCode), row.plain) << row.scanCode;
    }
}

} // namespace
} // namespace polyfab::test
#endif
