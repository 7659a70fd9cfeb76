// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's two widgets.
#include "platform/qt/window.h"

#include "platform/qt/keys.h"

#include <QCloseEvent>
#include <QDropEvent>
#include <QFile>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>

#include <cmath>

namespace polyfab {
namespace {

Event simple(EventKind kind) {
    Event event;
    event.kind = kind;
    return event;
}

Event keyRecord(EventKind kind, int code) {
    Event event = simple(kind);
    event.key = code;
    return event;
}

/// An event at this place, given in the toolkit's units.
Event placed(EventKind kind, QPointF place, double ratio) {
    Event event = simple(kind);
    event.x = int(std::floor(place.x() * ratio));
    event.y = int(std::floor(place.y() * ratio));
    return event;
}

std::vector<std::string> localFiles(const QMimeData& data) {
    std::vector<std::string> paths;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) paths.push_back(QFile::encodeName(url.toLocalFile()).toStdString());
    }
    return paths;
}

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

void Canvas::resizeEvent(QResizeEvent*) { events.send(simple(EventKind::resize)); }

void Canvas::keyPressEvent(QKeyEvent* event) {
    down.insert(virtualKey(*event));
    events.send(keyRecord(EventKind::keyDown, virtualKey(*event)));
    QWidget::keyPressEvent(event);
}

void Canvas::keyReleaseEvent(QKeyEvent* event) {
    // A held key repeats its presses only; it goes up once. A key that went down elsewhere, in a
    // menu for instance, is none of the window's.
    if (!event->isAutoRepeat() && down.erase(virtualKey(*event)) != 0) {
        events.send(keyRecord(EventKind::keyUp, virtualKey(*event)));
    }
    QWidget::keyReleaseEvent(event);
}

void Canvas::keyWentUp(int code) {
    if (down.erase(code) != 0) events.send(keyRecord(EventKind::keyUp, code));
}

void Canvas::tellCtrl(bool isDown) {
    if (!isDown) {
        keyWentUp(key::ctrl);
    } else if (down.insert(key::ctrl).second) {
        events.send(keyRecord(EventKind::keyDown, key::ctrl));
    }
}

void Canvas::sendMouse(const QMouseEvent& mouse) {
    Event event = placed(EventKind::mouse, mouse.position(), devicePixelRatioF());
    if (mouse.buttons() & Qt::LeftButton) event.buttons |= button::left;
    if (mouse.buttons() & Qt::RightButton) event.buttons |= button::right;
    if (mouse.buttons() & Qt::MiddleButton) event.buttons |= button::middle;
    events.send(event);
}

void Canvas::mousePressEvent(QMouseEvent* event) { sendMouse(*event); }

void Canvas::mouseReleaseEvent(QMouseEvent* event) { sendMouse(*event); }

void Canvas::mouseMoveEvent(QMouseEvent* event) { sendMouse(*event); }

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
    Event dropped = simple(EventKind::drop);
    dropped.paths = localFiles(*event->mimeData());
    event->acceptProposedAction();
    // The program that the files come from waits until this handler returns, so reading (and
    // asking) comes later.
    events.queue(dropped);
}

Window::Window(const WindowEvents& windowEvents)
    : events(windowEvents), pane(new Canvas(windowEvents)) {
    setCentralWidget(pane);
    resize(1200, 640);
    pane->resize(size()); // a first client size, until the frame is laid out
    pane->setFocus();
}

void Window::showMenuBar(const MenuBar& bar) {
    auto* const menus = new QMenuBar;
    menus->setNativeMenuBar(false);
    for (const Menu& menu : bar) {
        QMenu* const shown = menus->addMenu(QString::fromStdString(menu.title));
        QObject::connect(shown, &QMenu::aboutToShow, this, [this] {
            pane->forgetKeys();
            events.send(simple(EventKind::menuOpening));
        });
        for (const MenuItem& item : menu.items) addItem(*shown, item);
    }
    setMenuBar(menus);
}

void Window::addItem(QMenu& menu, const MenuItem& item) {
    if (item.id == 0) {
        menu.addSeparator();
        return;
    }
    QAction* const added = menu.addAction(QString::fromStdString(item.label));
    added->setData(item.id);
    added->setShortcut(QKeySequence(QString::fromStdString(item.key)));
    added->setEnabled(item.enabled);
    added->setCheckable(item.checkable);
    added->setChecked(item.checked);
    QObject::connect(added, &QAction::triggered, this, [this, added, id = item.id](bool checked) {
        // The toolkit has just flipped the check mark, but only the program says what is on.
        if (added->isCheckable()) added->setChecked(!checked);
        Event event = simple(EventKind::command);
        event.command = id;
        // Later: the handler may replace the very menu that this comes from.
        events.queue(event);
    });
}

QAction* Window::action(int id) const {
    for (const QAction* const menu : menuBar()->actions()) {
        for (QAction* const item : menu->menu()->actions()) {
            if (!item->isSeparator() && item->data().toInt() == id) return item;
        }
    }
    return nullptr;
}

void Window::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && !isActiveWindow()) {
        pane->forgetKeys();
        events.send(simple(EventKind::deactivate));
    }
    QMainWindow::changeEvent(event);
}

void Window::closeEvent(QCloseEvent* event) {
    event->ignore(); // the program hides the window itself when it agrees
    events.send(simple(EventKind::close));
}

} // namespace polyfab
