// SPDX-License-Identifier: GPL-3.0-or-later
// Painted by hand: a bar of the toolkit's own moves by a timer, which does not run while the
// program works.
#include "platform/qt/progress_strip.h"

#include <QPainter>

#include <algorithm>

namespace polyfab {
namespace {

constexpr int margin = 6;

/// Calls until the moving bar is where it was.
constexpr int movesPerRound = 20;

/// The part of the bar that is full.
QRectF filled(const QRectF& bar, double fraction, int moves) {
    if (fraction >= 0) {
        return {bar.topLeft(), QSizeF(bar.width() * std::min(fraction, 1.0), bar.height())};
    }
    const double width = bar.width() / 4;
    const double there = 2.0 * (moves % movesPerRound) / movesPerRound;
    const double place = there < 1 ? there : 2 - there; // and back
    return {bar.left() + (bar.width() - width) * place, bar.top(), width, bar.height()};
}

} // namespace

ProgressStrip::ProgressStrip(QWidget* owner) : QWidget(owner) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
}

void ProgressStrip::tell(const QString& newText, double newFraction) {
    text = newText;
    fraction = newFraction;
    ++moves;
    const QWidget& owner = *parentWidget();
    const int height = fontMetrics().height() + 2 * margin;
    setGeometry(0, owner.height() - height, owner.width(), height);
    show();
    raise();
    repaint();
}

void ProgressStrip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    painter.fillRect(QRect(0, 0, width(), 1), palette().mid());
    const QRect inside = rect().adjusted(2 * margin, margin, -2 * margin, -margin);
    const int barWidth = inside.width() / 3;
    const QRect words = inside.adjusted(0, 0, -barWidth - 2 * margin, 0);
    const QRect bar = inside.adjusted(inside.width() - barWidth, 1, 0, -1);
    painter.setPen(palette().color(QPalette::WindowText));
    // What Escape does stands at the end.
    painter.drawText(words, Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(text, Qt::ElideMiddle, words.width()));
    painter.fillRect(bar, palette().base());
    painter.fillRect(filled(bar, fraction, moves), palette().highlight());
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(bar.adjusted(0, 0, -1, -1));
}

} // namespace polyfab
