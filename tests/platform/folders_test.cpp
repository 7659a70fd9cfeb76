// SPDX-License-Identifier: GPL-3.0-or-later
#ifdef POLYFAB_QT
#include "platform/qt/folders.h"

#include "platform/qt/dialogs.h"
#include "tests/support/temp_folder.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

TEST(Folders, EachKindOfDialogBeginsWhereItEndedAlsoInTheNextRun) {
    const TempFolder state, read, write;
    const auto name = [](const TempFolder& folder) {
        return QString::fromStdString(folder.path(""));
    };
    const std::string reading = "file to read mesh from?", writing = "file=to/write;mesh to?";
    {
        Folders folders(state.path(""));
        EXPECT_EQ(folders.of(reading), QDir::currentPath());
        folders.use(reading, name(read));
        EXPECT_EQ(folders.of(writing), name(read)); // has none of its own yet
        folders.use(writing, name(write));
        folders.use("/"); // a file that was dropped
        EXPECT_EQ(folders.of("another"), "/");
    }
    Folders next(state.path(""));
    EXPECT_EQ(next.of(reading), name(read));
    EXPECT_EQ(next.of(writing), name(write));
    EXPECT_EQ(Folders("").of(reading), QDir::currentPath());
    next.use(reading, "/a folder that is gone");
    next.use(name(write));
    EXPECT_EQ(next.of(reading), name(write));
}

TEST(Folders, ASaveBeginsAtTheCurrentFileAndAsksForWhatItWillWrite) {
    const TempFolder models, others;
    models.write("out.obj", "");
    Folders folders("");
    folders.use(QString::fromStdString(others.path("")));
    std::string seen, asked;
    /// The user types this name and agrees to everything.
    const auto save = [&](const std::string& typed, const std::string& current) {
        asked.clear();
        QTimer user;
        QObject::connect(&user, &QTimer::timeout, &user, [&] {
            auto* const box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (auto* const question = qobject_cast<QMessageBox*>(box)) {
                asked = question->text().toStdString();
                return question->button(QMessageBox::Yes)->click();
            }
            if (box == nullptr) return;
            auto* const line = box->findChild<QLineEdit*>();
            seen =
                qobject_cast<QFileDialog*>(box)->directory().filePath(line->text()).toStdString();
            line->setText(QString::fromStdString(typed));
            box->accept();
        });
        user.start(1);
        return askFile(nullptr, {true, "write?", {{"OBJ", "*.OBJ"}}, "x.3ds", {}, current, ".obj"},
                       folders);
    };
    EXPECT_EQ(save("out", models.path("my.cow.stl")), models.path("out.obj"));
    EXPECT_EQ(seen, models.path("my.cow.obj"));
    EXPECT_TRUE(asked.starts_with(models.path("out.obj") + " already exists."));
    EXPECT_EQ(save(models.path("new.txt"), ""), models.path("new.txt"));
    EXPECT_EQ(asked, "");
    EXPECT_EQ(save("b", ""), models.path("b.obj")) << "begins where the typed path led";
    EXPECT_EQ(seen, models.path("x.3ds"));
    save(models.path("a"), others.path("gone/COW.OBJ"));
    EXPECT_EQ(seen, models.path("COW.OBJ"));
}

} // namespace
} // namespace polyfab::test
#endif
