// SPDX-License-Identifier: GPL-3.0-or-later
// The colour is put into the picture when it is drawn, so that one whose theme has changed is right
// the next time.
#include "platform/qt/icons.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

#include <utility>

namespace polyfab {
namespace {

class ThemedIcon : public QIconEngine {
  public:
    explicit ThemedIcon(QByteArray text) : svg(std::move(text)) {}

    QIconEngine* clone() const override { return new ThemedIcon(svg); }

    void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State) override {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const QColor color = QApplication::palette().color(group, QPalette::ButtonText);
        QByteArray colored = svg;
        colored.replace("currentColor", color.name().toLatin1());
        QSvgRenderer(colored).render(painter, place);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return drawn;
    }

  private:
    QByteArray svg;
};

} // namespace

QIcon themedIcon(const std::string& name) {
    QFile file(QStringLiteral(":/icons/%1.svg").arg(QString::fromStdString(name)));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return QIcon(new ThemedIcon(file.readAll()));
}

} // namespace polyfab
