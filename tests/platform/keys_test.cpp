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
        // The keypad has codes of its own while it types numbers.
        {Qt::Key_0, Qt::KeypadModifier, 90, 96},
        {Qt::Key_Insert, Qt::KeypadModifier, 90, 45},
        {Qt::Key_Plus, Qt::KeypadModifier, 86, 107},
        {Qt::Key_Comma, Qt::KeypadModifier, 91, 110}, // German
        {Qt::Key_Delete, Qt::KeypadModifier, 91, 46},
        {Qt::Key_Plus, Qt::ShiftModifier, 21, 187},
        {Qt::Key_Down, Qt::NoModifier, 0, 40},
        // Both sides of the modifiers are one key.
        {Qt::Key_Alt, Qt::NoModifier, 64, 18},
        {Qt::Key_AltGr, Qt::NoModifier, 108, 18},
        {Qt::Key_Meta, Qt::ShiftModifier, 108, 18},
        {Qt::Key_Meta, Qt::NoModifier, 133, 91},
        {Qt::Key_Super_R, Qt::NoModifier, 134, 92},
        // A Cyrillic layout has no Latin letters, a French one has them elsewhere.
        {0x0419, Qt::NoModifier, 24, 'Q'},
        {0x042C, Qt::NoModifier, 58, 'M'},
        {Qt::Key_A, Qt::NoModifier, 24, 'A'},
        {Qt::Key_VolumeUp, Qt::NoModifier, 0, 0},
    };
    for (const auto& row : cases) {
        const QKeyEvent event(QEvent::KeyPress, row.toolkitKey, row.modifier, row.scanCode, 0, 0);
        EXPECT_EQ(virtualKey(event), row.code) << row.toolkitKey << " " << row.scanCode;
    }
}

} // namespace
} // namespace polyfab::test
#endif
