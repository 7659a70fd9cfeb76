// SPDX-License-Identifier: GPL-3.0-or-later
// One application, off screen, for a whole test program, gone before its static objects are.
#include <QApplication>
#include <gtest/gtest.h>
#include <optional>

namespace polyfab::test {
namespace {

class Application : public testing::Environment {
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        QCoreApplication::setAttribute(Qt::AA_DontCreateNativeWidgetSiblings);
        application.emplace(argc, argv);
        QApplication::setQuitOnLastWindowClosed(false);
    }
    void TearDown() override { application.reset(); }

    int argc = 1;
    char name[8] = "polyfab";
    char* argv[2] = {name, nullptr};
    std::optional<QApplication> application;
};

[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new Application);

} // namespace
} // namespace polyfab::test
