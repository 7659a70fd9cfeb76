// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/status_bar.h"

namespace polyfab {
namespace {

/// Texts are shown as they are. The left one takes what room there is, and asks for none: a long
/// note makes no window wider.
void prepare(QLabel& label) {
    label.setTextFormat(Qt::PlainText);
    label.setContentsMargins(6, 0, 6, 0);
}

} // namespace

StatusBar::StatusBar() {
    prepare(left);
    prepare(right);
    left.setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    addWidget(&left, 1);
    addPermanentWidget(&right);
    setSizeGripEnabled(false);
}

void StatusBar::tell(const StatusLine& line) {
    tellLeft(line.left);
    right.setText(QString::fromStdString(line.right));
}

void StatusBar::tellLeft(const std::string& text) {
    left.setText(QString::fromStdString(text));
    left.setToolTip(left.text());
}

StatusLine StatusBar::line() const {
    return {left.text().toStdString(), right.text().toStdString()};
}

} // namespace polyfab
