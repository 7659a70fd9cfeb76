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
        {Qt::Key_F12, Qt::NoModifier, 0, 123},
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
