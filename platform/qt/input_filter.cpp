// SPDX-License-Identifier: GPL-3.0-or-later
// An event comes by more than once on its way from the native window to a widget, so that noting it
// must not depend on how often.
#include "platform/qt/input_filter.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <algorithm>
#include <iterator>

namespace polyfab {
namespace {

bool isInput(QEvent::Type type) {
    constexpr QEvent::Type types[] = {
        QEvent::KeyPress,
        QEvent::KeyRelease,
        QEvent::Shortcut,
        QEvent::ShortcutOverride,
        QEvent::MouseButtonPress,
        QEvent::MouseButtonRelease,
        QEvent::MouseButtonDblClick,
        QEvent::MouseMove,
        QEvent::Wheel,
        QEvent::ContextMenu,
        QEvent::TouchBegin,
        QEvent::TouchUpdate,
        QEvent::TouchEnd,
        QEvent::TabletPress,
        QEvent::TabletMove,
        QEvent::TabletRelease,
        QEvent::DragEnter,
        QEvent::Drop,
    };
    return std::find(std::begin(types), std::end(types), type) != std::end(types);
}

} // namespace

InputFilter::InputFilter() { QCoreApplication::instance()->installEventFilter(this); }

void InputFilter::beginWork() {
    working = true;
    pressed = false;
}

bool InputFilter::eventFilter(QObject*, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::KeyPress || type == QEvent::KeyRelease) {
        note(*static_cast<QKeyEvent*>(event));
    }
    return working && isInput(type);
}

void InputFilter::note(const QKeyEvent& event) {
    if (event.isAutoRepeat()) return;
    const bool down = event.type() == QEvent::KeyPress;
    if (working && !down) released.emplace(event);
    if (event.key() != Qt::Key_Escape) return;
    escape = down;
    pressed = pressed || down;
}

} // namespace polyfab
