// SPDX-License-Identifier: GPL-3.0-or-later
// A frame around menus that is seen on a dark desktop, too.
#pragma once

#include <QProxyStyle>

namespace polyfab {

class MenuFrame : public QProxyStyle {
  public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

} // namespace polyfab
