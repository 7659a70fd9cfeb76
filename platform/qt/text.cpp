// SPDX-License-Identifier: GPL-3.0-or-later
// The toolkit's own text, painted into the pixels of a picture as they lie.
#include "platform/qt/text.h"

#include <QFont>
#include <QFontInfo>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include <algorithm>

namespace polyfab {
namespace {

/// The sans-serif font in the largest size whose lines are not higher than wanted.
QFont sizedFont(const Font& wanted) {
    constexpr int largest = 4096;
    QFont font(QStringLiteral("sans-serif"));
    font.setStyleHint(QFont::SansSerif);
    font.setWeight(static_cast<QFont::Weight>(std::clamp(wanted.weight, 1, 1000)));
    // A character looks the same in every place and has no coloured fringes.
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    for (int size = std::min(wanted.height, largest); size > 0; --size) {
        font.setPixelSize(size);
        if (QFontMetrics(font).height() <= wanted.height) break;
    }
    return font;
}

/// The same again for as long as the same is wanted: lists draw many lines alike.
const QFont& fontFor(const Font& wanted) {
    static Font present{0, 0};
    static QFont font;
    if (wanted.height != present.height || wanted.weight != present.weight) {
        font = sizedFont(wanted);
        present = wanted;
    }
    return font;
}

/// Where there is no font at all the toolkit draws boxes, in a font without a name.
bool canDraw(const Font& font) {
    return font.height > 0 && !QFontInfo(fontFor(font)).family().isEmpty();
}

} // namespace

void paintText(Bitmap& picture, int x, int y, const std::string& text, const Font& font,
               std::uint32_t color) {
    if (!canDraw(font) || picture.pixels.empty()) return;
    QImage image(reinterpret_cast<uchar*>(picture.pixels.data()), picture.width, picture.height,
                 QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setFont(fontFor(font));
    painter.setPen(QColor::fromRgb(color));
    painter.drawText(x, y + painter.fontMetrics().ascent(), QString::fromStdString(text));
}

int paintedWidth(const std::string& text, const Font& font) {
    if (!canDraw(font)) return 0;
    return QFontMetrics(fontFor(font)).horizontalAdvance(QString::fromStdString(text));
}

} // namespace polyfab
