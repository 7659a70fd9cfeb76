// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/batch/batch_platform.h"
#include "tests/platform/driver.h"
#include "tests/platform/toy_program.h"

#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

class BatchDriver : public Driver {
  public:
    BatchDriver() {
        testing::internal::CaptureStdout(); // the lines themselves are the batch tests' matter
        setPlatform(&window);
        window.send({EventKind::create});
    }
    ~BatchDriver() override {
        window.finish();
        testing::internal::GetCapturedStdout();
    }
    void choose(int command, const std::deque<Answer>& answers) override {
        window.setAnswers(answers);
        window.send({EventKind::command, command});
    }
    void work(const std::vector<Event>& typed) override {
        for (const Event& event : typed) {
            if (event.kind == EventKind::keyDown && event.key == key::escape) window.setAbort(2);
        }
        window.send({EventKind::command, toy::longWork});
        window.setAbort(std::nullopt);
        // A script has nobody who could do it earlier.
        for (const Event& event : typed) {
            if (event.kind == EventKind::keyUp) window.send(event);
        }
    }
    void input(const Event& event, const std::deque<Answer>& answers) override {
        window.setAnswers(answers);
        window.send(event);
    }
    void resize(Size size) override { window.resize(size); }
    bool isOpen() override { return window.isOpen(); }
    std::optional<StatusLine> statusLine() override { return window.statusLine(); }
    MenuItem item(int id) override {
        const MenuItem* const found = window.menuItem(id);
        return found ? *found : MenuItem{};
    }
    std::uint32_t pixel(int x, int y) override {
        const Bitmap& picture = window.currentPicture();
        return picture.pixels.at(std::size_t(y * picture.width + x));
    }

  private:
    BatchPlatform window{toyProgram(), {640, 320}};
};

} // namespace

std::unique_ptr<Driver> makeBatchDriver() { return std::make_unique<BatchDriver>(); }

} // namespace polyfab::test
