// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/status_bar.h"

#include <QFontMetrics>

#include <algorithm>

namespace polyfab {
namespace {

constexpr int margin = 6; ///< to both sides of a text

/// Texts are shown as they are. The left one takes what room there is, and asks for none: a long
/// note makes no window wider.
void prepare(QLabel& label) {
    label.setTextFormat(Qt::PlainText);
    label.setContentsMargins(margin, 0, margin, 0);
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
    said = line;
    fit();
}

void StatusBar::tellLeft(const std::string& text) {
    said.left = text;
    fit();
}

void StatusBar::resizeEvent(QResizeEvent* event) {
    QStatusBar::resizeEvent(event);
    fit();
}

void StatusBar::fit() {
    const auto show = [this](QLabel& label, const std::string& text, int room) {
        const QString whole = QString::fromStdString(text);
        label.setText(fontMetrics().elidedText(whole, Qt::ElideRight, room));
        label.setToolTip(label.text() == whole ? QString() : whole);
        return fontMetrics().horizontalAdvance(label.text());
    };
    const int room = width() - 6 * margin;
    const int wanted = fontMetrics().horizontalAdvance(QString::fromStdString(said.left));
    const int taken = show(right, said.right, std::max(room / 2, room - wanted));
    show(left, said.left, room - taken);
}

} // namespace polyfab
