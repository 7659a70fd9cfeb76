// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/menu_frame.h"

#include <QPainter>
#include <QStyleOption>

namespace polyfab {

void MenuFrame::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                              QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element != PE_PanelMenu) return;
    QColor line = option->palette.color(QPalette::WindowText);
    line.setAlphaF(0.25F);
    painter->save();
    painter->setPen(line);
    painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
    painter->restore();
}

} // namespace polyfab
