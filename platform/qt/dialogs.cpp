// SPDX-License-Identifier: GPL-3.0-or-later
// The modal boxes.
#include "platform/qt/dialogs.h"

#include "platform/qt/folders.h"
#include "platform/qt/keys.h"

#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSpacerItem>
#include <QWindow>

#include <algorithm>

namespace polyfab {
namespace {

constexpr int escapeCode = 2; ///< beside QDialog::Accepted and QDialog::Rejected

/// A box is only as wide as its text, but here the title says what happened.
void makeRoomForTitle(const QWidget& box, QGridLayout& grid) {
    constexpr int frameButtons = 160;
    if (box.windowTitle().isEmpty()) return;
    const int width = box.fontMetrics().horizontalAdvance(box.windowTitle()) + frameButtons;
    grid.addItem(new QSpacerItem(width, 0), grid.rowCount(), 0, 1, grid.columnCount());
}

void prepare(QMessageBox& box, const std::string& title, const std::string& text,
             QMessageBox::Icon icon) {
    box.setIcon(icon); // first: it lays the box out anew
    box.setWindowTitle(titleText(title));
    box.setTextFormat(Qt::PlainText);
    box.setText(QString::fromStdString(text));
    makeRoomForTitle(box, *static_cast<QGridLayout*>(box.layout()));
}

/// "*.DXF;*.OBJ" as "description (*.DXF *.dxf *.OBJ *.obj)": some file dialogs heed case.
QString nameFilter(const FileFilter& filter) {
    QStringList globs;
    for (const QString& glob : QString::fromStdString(filter.pattern).split(QLatin1Char(';'))) {
        globs << glob;
        if (glob.toLower() != glob) globs << glob.toLower();
    }
    return QString::fromStdString(filter.description)
           + QStringLiteral(" (%1)").arg(globs.join(QLatin1Char(' ')));
}

/// The width of so many characters of running text.
int widthOf(const QWidget& widget, int characters) {
    return widget.fontMetrics().averageCharWidth() * characters;
}

/// One field of a prompt as a widget that keeps its text.
class FieldWidget {
  public:
    /// Goes into this row of a grid of two columns. A label stands on the left of its field, or
    /// above where that is the only one.
    FieldWidget(QGridLayout& grid, int row, const DialogField& field, bool labelAbove) {
        const QString label = QString::fromStdString(field.label);
        if (field.checkBox) {
            box = new QCheckBox(QString(label).replace(QLatin1Char('&'), QLatin1String("&&")));
            box->setChecked(field.text == "1");
            grid.addWidget(box, row, 0, 1, 2);
            return;
        }
        line = new QLineEdit(QString::fromStdString(field.text));
        // Room for an answer, and for reading the default as far as it is not very long.
        const int whole = line->fontMetrics().horizontalAdvance(line->text());
        line->setMinimumWidth(
            std::clamp(whole + widthOf(*line, 4), widthOf(*line, 40), widthOf(*line, 80)));
        line->setAccessibleName(label);
        grid.addWidget(newLabel(label), row, 0, 1, labelAbove ? 2 : 1);
        grid.addWidget(line, row + (labelAbove ? 1 : 0), labelAbove ? 0 : 1, 1, labelAbove ? 2 : 1);
    }

    std::string text() const {
        if (box) return box->isChecked() ? "1" : "0";
        return line->text().toStdString();
    }

    template <typename Tell>
    void tellChanges(Tell tell) const {
        if (box) QObject::connect(box, &QCheckBox::toggled, box, tell);
        if (line) QObject::connect(line, &QLineEdit::textChanged, line, tell);
    }

    /// Whether there is a text to be typed over.
    bool focus() const {
        if (line == nullptr) return false;
        line->setFocus(Qt::TabFocusReason);
        line->selectAll();
        return true;
    }

  private:
    /// A label in one line, or in more where it is very long.
    static QLabel* newLabel(const QString& text) {
        auto* const label = new QLabel(text);
        label->setTextFormat(Qt::PlainText);
        const int widest = widthOf(*label, 80);
        if (label->fontMetrics().horizontalAdvance(text) > widest) {
            label->setWordWrap(true);
            label->setMinimumWidth(widest);
        }
        return label;
    }

    QCheckBox* box = nullptr;
    QLineEdit* line = nullptr;
};

/// Sits at the dialog's native window, which gets each key event once, before the field that has
/// the focus.
class KeyTeller : public QObject {
  public:
    KeyTeller(QDialog& owner, const std::function<void(const Event&)>& onKey)
        : dialog(owner), tell(onKey) {
        dialog.winId(); // makes the native window
        dialog.windowHandle()->installEventFilter(this);
    }

    void releaseAll() {
        for (const auto& [key, code] : down.all()) send(EventKind::keyUp, code);
        down.clear();
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool press = event->type() == QEvent::KeyPress;
        if (!press && event->type() != QEvent::KeyRelease) {
            return QObject::eventFilter(watched, event);
        }
        const QKeyEvent& typed = *static_cast<const QKeyEvent*>(event);
        const KeyName key(typed);
        const bool repeated = typed.isAutoRepeat();
        if (press && (!repeated || down.contains(key))) {
            send(EventKind::keyDown, down.press(key, repeated));
        } else if (!press && !repeated) {
            send(EventKind::keyUp, down.release(key)); // it may have gone down before
        }
        if (!press || typed.key() != Qt::Key_Escape) return false;
        dialog.done(escapeCode);
        return true;
    }

  private:
    void send(EventKind kind, int code) {
        if (tell && code != 0) tell({.kind = kind, .key = code}); // 0: a key without a code
    }

    QDialog& dialog;
    const std::function<void(const Event&)>& tell;
    HeldKeys down;
};

/// The button that has the focus is the one that Enter presses; from a field it is "accept".
QLayout* newButtons(QDialog& dialog) {
    auto* const accept = new QPushButton(QStringLiteral("accept"));
    auto* const cancel = new QPushButton(QStringLiteral("cancel"));
    accept->setDefault(true);
    QObject::connect(accept, &QPushButton::clicked, &dialog, &QDialog::accept);
    QObject::connect(cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
    auto* const row = new QHBoxLayout;
    row->addWidget(accept);
    row->addWidget(cancel);
    row->addStretch();
    return row;
}

std::vector<DialogField> fieldsNow(const Dialog& dialog, const std::vector<FieldWidget>& widgets) {
    std::vector<DialogField> fields = dialog.fields;
    for (std::size_t i = 0; i < fields.size(); ++i) fields[i].text = widgets[i].text();
    return fields;
}

/// Beside the owner, or else over its right side: what the dialog changes can be seen.
void moveAside(QDialog& box, const QWidget& owner) {
    const QRect room = owner.screen()->availableGeometry();
    const QRect frame = owner.frameGeometry();
    const int left = std::min(frame.right() + 1, room.right() + 1 - box.sizeHint().width());
    box.move(std::max(left, room.left()), std::max(frame.top(), room.top()));
}

} // namespace

QString titleText(const std::string& text) {
    return QString::fromStdString(text).replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
}

void showMessage(QWidget* owner, const std::string& title, const std::string& text, Icon icon) {
    QMessageBox box(owner);
    prepare(box, title, text,
            icon == Icon::exclamation ? QMessageBox::Warning : QMessageBox::NoIcon);
    box.exec();
}

Choice askQuestion(QWidget* owner, const std::string& title, const std::string& text,
                   Buttons buttons, Choice marked) {
    const bool hasCancel = buttons == Buttons::yesNoCancel;
    QMessageBox box(owner);
    prepare(box, title, text, QMessageBox::NoIcon);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No
                           | (hasCancel ? QMessageBox::Cancel : QMessageBox::NoButton));
    box.setDefaultButton(marked == Choice::yes ? QMessageBox::Yes : QMessageBox::No);
    box.setEscapeButton(hasCancel ? QMessageBox::Cancel : QMessageBox::No);
    const int pressed = box.exec();
    if (pressed == QMessageBox::Yes) return Choice::yes;
    return pressed == QMessageBox::No ? Choice::no : Choice::cancel;
}

namespace {

/// One that goes by what was typed. The toolkit's goes by what it has found for that in its list,
/// and with a path into another folder this may be a folder on the way, or nothing.
class FileBox : public QFileDialog {
  public:
    using QFileDialog::QFileDialog;

    /// What was accepted.
    [[nodiscard]] QString chosen() const {
        return typed.isEmpty() ? selectedFiles().value(0) : typed;
    }

    void accept() override {
        const auto* const field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        const QString text = field != nullptr ? field->text() : QString();
        const QString path = directory().absoluteFilePath(text);
        const bool isName = !text.isEmpty() && !text.startsWith(QLatin1Char('~'));
        typed = acceptMode() == AcceptSave && isName && !QFileInfo(path).isDir() ? path : QString();
        typed.isEmpty() ? QFileDialog::accept() : done(Accepted);
    }

  private:
    QString typed;
};

/// A name without a suffix gets that of the format. (The dialog's own way of doing so finds a file
/// of that name in another folder, and then greys its button.)
std::string withSuffix(const std::string& chosen, const FileRequest& request) {
    const bool has = chosen.find('.', chosen.find_last_of('/') + 1) != std::string::npos;
    return has ? chosen : chosen + request.suffix;
}

/// Whether the file that the chosen name stands for may be written: it does not exist yet, or the
/// user agrees. The dialog itself would ask about the name, not about that file.
bool mayWrite(QWidget* owner, const FileRequest& request, const std::string& chosen) {
    const QString name =
        QFile::decodeName((request.written ? request.written(chosen) : chosen).c_str());
    if (!request.save || !QFileInfo::exists(name)) return true;
    return askQuestion(owner, request.prompt,
                       name.toStdString() + " already exists.\nDo you want to replace it?",
                       Buttons::yesNo, Choice::no)
           == Choice::yes;
}

/// The current file as it is called in the format that is asked for.
QString nameInFormat(const QFileInfo& current, const QString& suffix) {
    const bool has = current.fileName().endsWith(suffix, Qt::CaseInsensitive);
    return has ? current.fileName() : current.completeBaseName() + suffix;
}

/// Where the dialog begins, and with which name.
void start(QFileDialog& box, const FileRequest& request, const Folders& folders) {
    box.setDirectory(folders.of(request.prompt));
    if (request.current.empty()) return box.selectFile(QFile::decodeName(request.initial.c_str()));
    const QFileInfo current(QFile::decodeName(request.current.c_str()));
    if (const QDir folder = current.absoluteDir(); folder.exists()) box.setDirectory(folder);
    box.selectFile(nameInFormat(current, QString::fromStdString(request.suffix)));
}

} // namespace

std::optional<std::string> askFile(QWidget* owner, const FileRequest& request, Folders& folders) {
    FileBox box(owner);
    box.setWindowTitle(titleText(request.prompt));
    box.setAcceptMode(request.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    box.setFileMode(request.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    box.setOption(QFileDialog::DontConfirmOverwrite);
    QStringList filters;
    for (const FileFilter& filter : request.filters) filters << nameFilter(filter);
    box.setNameFilters(filters);
    start(box, request, folders);
    std::string chosen;
    do {
        if (box.exec() != QDialog::Accepted || box.chosen().isEmpty()) return std::nullopt;
        chosen = withSuffix(QFile::encodeName(box.chosen()).toStdString(), request);
    } while (!mayWrite(&box, request, chosen));
    // Not the folder that the dialog shows: a path may have been typed.
    folders.use(request.prompt, QFileInfo(QFile::decodeName(chosen.c_str())).absolutePath());
    return chosen;
}

DialogResult askFields(QWidget* owner, const std::string& title, Dialog& dialog) {
    QDialog box(owner);
    box.setWindowTitle(titleText(title));
    QGridLayout grid(&box);
    std::vector<FieldWidget> widgets;
    for (const DialogField& field : dialog.fields) {
        widgets.emplace_back(grid, grid.rowCount(), field, dialog.fields.size() == 1);
    }
    grid.addLayout(newButtons(box), grid.rowCount(), 0, 1, 2);
    makeRoomForTitle(box, grid);
    for (const FieldWidget& widget : widgets) {
        if (widget.focus()) break;
    }
    if (dialog.onChange) {
        for (const FieldWidget& widget : widgets) {
            widget.tellChanges([&] { dialog.onChange(fieldsNow(dialog, widgets)); });
        }
        if (owner != nullptr) moveAside(box, *owner);
    }
    KeyTeller keys(box, dialog.onKey);
    const int code = box.exec();
    keys.releaseAll();
    if (code == QDialog::Rejected) return DialogResult::cancel;
    dialog.fields = fieldsNow(dialog, widgets);
    return code == escapeCode ? DialogResult::escape : DialogResult::accept;
}

} // namespace polyfab
