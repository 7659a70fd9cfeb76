// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/batch/batch_platform.h"
#include "tests/platform/driver.h"
#include "tests/platform/toy_program.h"

#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

std::deque<Answer> answersFor(const Reply& reply) {
    std::deque<Answer> answers;
    for (const std::string& text : reply.fields) answers.push_back({Answer::Kind::text, text});
    switch (reply.how) {
        case Reply::How::yes:
            return {{Answer::Kind::text, "yes"}};
        case Reply::How::no:
            return {{Answer::Kind::text, "no"}};
        case Reply::How::path:
            return {{Answer::Kind::text, reply.path}};
        case Reply::How::escape:
            answers.push_back({Answer::Kind::escape, ""});
            break;
        case Reply::How::cancel:
        case Reply::How::closeBox:
            answers.push_back({Answer::Kind::cancel, ""});
            break;
        case Reply::How::accept:
            break;
    }
    return answers;
}

class BatchDriver : public Driver {
  public:
    BatchDriver() : window(toyAsProgram(), {640, 320}), before(currentPlatform) {
        testing::internal::CaptureStdout(); // the lines themselves are the batch tests' matter
        setPlatform(&window);
        send(EventKind::create);
    }
    ~BatchDriver() override {
        window.finish();
        setPlatform(before);
        testing::internal::GetCapturedStdout();
    }
    void choose(int command, const Reply& reply) override {
        window.setAnswers(answersFor(reply));
        Event event;
        event.kind = EventKind::command;
        event.command = command;
        window.send(event);
        window.setAnswers({});
    }
    bool isOpen() override { return window.isOpen(); }
    MenuItem item(int id) override {
        const MenuItem* const found = window.menuItem(id);
        return found ? *found : MenuItem{};
    }
    void resize(Size size) override { window.resize(size); }
    std::uint32_t pixel(int x, int y) override {
        const Bitmap& picture = window.currentPicture();
        return picture.pixels.at(std::size_t(y * picture.width + x));
    }
    void key(int code, bool down) override {
        Event event;
        event.kind = down ? EventKind::keyDown : EventKind::keyUp;
        event.key = code;
        window.send(event);
    }
    void mouse(int x, int y, unsigned buttons) override {
        Event event;
        event.kind = EventKind::mouse;
        event.x = x;
        event.y = y;
        event.buttons = buttons;
        window.send(event);
    }
    void drop(const std::vector<std::string>& paths) override {
        Event event;
        event.kind = EventKind::drop;
        event.paths = paths;
        window.send(event);
    }
    void close() override { window.requestClose(); }
    void openMenu() override { send(EventKind::menuOpening); }
    void deactivate() override { send(EventKind::deactivate); }

  private:
    void send(EventKind kind) {
        Event event;
        event.kind = kind;
        window.send(event);
    }
    BatchPlatform window;
    Platform* before;
};

} // namespace

std::unique_ptr<Driver> makeBatchDriver() { return std::make_unique<BatchDriver>(); }

} // namespace polyfab::test
