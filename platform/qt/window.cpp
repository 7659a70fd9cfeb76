// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's two widgets.
#include "platform/qt/window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDropEvent>
#include <QFile>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QProxyStyle>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

/// An event at this place, given in the toolkit's units.
Event placed(EventKind kind, QPointF place, double ratio) {
    return {.kind = kind,
            .x = int(std::floor(place.x() * ratio)),
            .y = int(std::floor(place.y() * ratio))};
}

std::vector<std::string> localFiles(const QMimeData& data) {
    std::vector<std::string> paths;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) paths.push_back(QFile::encodeName(url.toLocalFile()).toStdString());
    }
    return paths;
}

/// With it an Alt key that goes up does not take the keyboard to the menus: Alt also goes with
/// clicks and letters that are meant for the canvas. Alt and a letter open a menu all the same.
class AltIsAModifier : public QProxyStyle {
  public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        if (hint == SH_MenuBar_AltKeyNavigation) return 0;
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
};

} // namespace

Canvas::Canvas(const WindowEvents& windowEvents) : events(windowEvents) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAcceptDrops(true);
    setMinimumSize(160, 80);
}

Size Canvas::clientSize() const {
    const double ratio = devicePixelRatioF();
    return {int(std::lround(width() * ratio)), int(std::lround(height() * ratio))};
}

void Canvas::paintEvent(QPaintEvent*) {
    const QImage& picture = events.picture();
    QPainter painter(this);
    // While the program is busy the last picture stands in, and it may be smaller than the window.
    const Size size = clientSize();
    if (picture.width() < size.width || picture.height() < size.height) {
        painter.fillRect(rect(), palette().window());
    }
    painter.drawImage(QPoint(0, 0), picture);
}

void Canvas::resizeEvent(QResizeEvent*) { events.send({.kind = EventKind::resize}); }

void Canvas::keyPressEvent(QKeyEvent* event) {
    const KeyName key(*event);
    // A key that went down elsewhere, in a box or a menu, did its work there: what it repeats here
    // is not meant for the window.
    if (!event->isAutoRepeat() || down.contains(key)) {
        events.send({.kind = EventKind::keyDown, .key = down.press(key, event->isAutoRepeat())});
    }
    QWidget::keyPressEvent(event);
}

void Canvas::keyReleaseEvent(QKeyEvent* event) {
    // A held key repeats its presses only; it goes up once.
    if (!event->isAutoRepeat()) keyWentUp(KeyName(*event));
    QWidget::keyReleaseEvent(event);
}

void Canvas::keyWentUp(const KeyName& key) {
    if (down.contains(key)) events.send({.kind = EventKind::keyUp, .key = down.release(key)});
}

void Canvas::tellCtrl(bool isDown) {
    if (isDown == down.containsCode(key::ctrl)) return;
    if (isDown) {
        down.press(KeyName(key::ctrl), false);
    } else {
        down.releaseCode(key::ctrl);
    }
    events.send({.kind = isDown ? EventKind::keyDown : EventKind::keyUp, .key = key::ctrl});
}

void Canvas::sendMouse(const QMouseEvent& mouse, Qt::MouseButtons held) {
    Event event = placed(EventKind::mouse, mouse.position(), devicePixelRatioF());
    if (held & Qt::LeftButton) event.buttons |= button::left;
    if (held & Qt::RightButton) event.buttons |= button::right;
    if (held & Qt::MiddleButton) event.buttons |= button::middle;
    toldButtons = held;
    events.send(event);
}

void Canvas::mousePressEvent(QMouseEvent* event) {
    // A button that went up over a box never told us so, and a press that seems to follow a press
    // is none.
    const Qt::MouseButtons before = event->buttons() & ~event->button();
    if (toldButtons != before) sendMouse(*event, before);
    sendMouse(*event, event->buttons());
}

void Canvas::mouseReleaseEvent(QMouseEvent* event) { sendMouse(*event, event->buttons()); }

void Canvas::mouseMoveEvent(QMouseEvent* event) { sendMouse(*event, event->buttons()); }

void Canvas::wheelEvent(QWheelEvent* event) {
    constexpr double step = 120;
    // With Alt held the toolkit turns the wheel on its side.
    const QPoint turned = event->angleDelta();
    Event turn = placed(EventKind::wheel, event->position(), devicePixelRatioF());
    turn.steps = (turned.y() != 0 ? turned.y() : turned.x()) / step;
    if (turn.steps != 0) events.send(turn);
}

void Canvas::dragEnterEvent(QDragEnterEvent* event) {
    if (!localFiles(*event->mimeData()).empty()) event->acceptProposedAction();
}

void Canvas::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    // The program that the files come from waits until this handler returns, so reading (and
    // asking) comes later.
    events.queue({.kind = EventKind::drop, .paths = localFiles(*event->mimeData())});
}

Window::Window(const WindowEvents& windowEvents)
    : events(windowEvents), pane(new Canvas(windowEvents)), scroll(new QScrollBar(Qt::Horizontal)),
      status(new StatusBar), tools(new ToolBar([this](int command) { choose(command); })) {
    setContextMenuPolicy(Qt::NoContextMenu);
    auto* const middle = new QWidget;
    auto* const column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(pane, 1);
    column->addWidget(scroll);
    scroll->hide();
    QObject::connect(scroll, &QScrollBar::valueChanged, this, [this](int first) {
        const double behind = first - scrolledTo;
        events.send({.kind = EventKind::wheel, .x = -1, .y = -1, .steps = -behind});
    });
    setCentralWidget(middle);
    setStatusBar(status);
    addToolBar(tools);
    tools->hide();
    QObject::connect(new QShortcut(Qt::Key_F10, this), &QShortcut::activated, this, [this] {
        const QList<QAction*> menus = menuBar()->actions();
        if (!menus.isEmpty()) menuBar()->setActiveAction(menus.constFirst());
    });
    // On a small screen as large as fits, with some room for what the desktop puts around it.
    resize(QSize(1200, 640).boundedTo(screen()->availableSize() - QSize(16, 48)));
    pane->resize(size()); // a first client size, until the frame is laid out
    pane->setFocus();
}

void Window::showMenuBar(const MenuBar& shown) {
    bar = shown;
    actions.clear();
    auto* const menus = new QMenuBar;
    menus->setNativeMenuBar(false);
    auto* const style = new AltIsAModifier;
    style->setParent(menus);
    menus->setStyle(style);
    for (const Menu& menu : bar) {
        QMenu* const added = menus->addMenu(QString::fromStdString(menu.title));
        tellOpening(*added);
        fillMenu(*added, menu.items, actions, [this](int command) { choose(command); });
    }
    setMenuBar(menus);
    tools->follow(actions);
}

void Window::tellOpening(QMenu& menu) {
    QObject::connect(&menu, &QMenu::aboutToShow, this, [this] {
        pane->forgetKeys();
        events.send({.kind = EventKind::menuOpening});
    });
}

void Window::showScrollBar(const ScrollBar& list) {
    const QSignalBlocker quiet(scroll); // the program knows
    scrolledTo = list.first;
    scroll->setRange(0, std::max(list.all - list.shown, 0));
    scroll->setPageStep(list.shown);
    scroll->setValue(list.first);
    scroll->setVisible(list.all > list.shown);
}

/// Later: the handler may replace the very menu that this comes from.
void Window::choose(int command) { events.queue({.kind = EventKind::command, .command = command}); }

void Window::setItem(int id, bool enabled, bool checked) {
    QAction* const found = action(id);
    MenuItem* const item = findItem(bar, id);
    if (!found || !item) return;
    found->setEnabled(item->enabled = enabled);
    found->setChecked(item->checked = checked);
    tools->followOne(*found);
}

void Window::setTools(const std::vector<ToolButton>& buttons) {
    tools->setButtons(buttons);
    tools->follow(actions);
    tools->setVisible(true);
}

void Window::openContextMenu(const std::vector<int>& commands) {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setToolTipsVisible(true);
    tellOpening(*menu);
    for (const int id : commands) {
        if (id == 0) menu->addSeparator();
        if (QAction* const shared = action(id)) menu->addAction(shared);
    }
    menu->popup(QCursor::pos());
}

/// A key for which the menu bar has no use, left with the keyboard by a menu that was closed.
void Window::keyPressEvent(QKeyEvent* event) {
    if (focusWidget() != menuBar()) return QMainWindow::keyPressEvent(event);
    pane->setFocus();
    QApplication::sendEvent(pane, event);
}

void Window::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange) {
        if (isActiveWindow()) {
            pane->setFocus(); // wherever it was when the window was left
        } else {
            pane->forgetKeys();
            events.send({.kind = EventKind::deactivate});
        }
    }
    if (event->type() == QEvent::PaletteChange) events.queue({.kind = EventKind::lookChange});
    QMainWindow::changeEvent(event);
}

void Window::closeEvent(QCloseEvent* event) {
    event->ignore(); // the program hides the window itself when it agrees
    events.send({.kind = EventKind::close});
}

} // namespace polyfab
