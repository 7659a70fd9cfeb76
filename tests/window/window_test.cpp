// SPDX-License-Identifier: GPL-3.0-or-later
// The real editor in the real window, from the drop of a file to the exit question.
#include "display/options.h"
#include "editor/editor_state.h"
#include "editor/window.h"
#include "mesh/mesh.h"
#include "platform/batch/batch_platform.h"
#include "tests/platform/driver.h"
#include "tests/support/temp_folder.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

void choose(Driver& driver, const std::string& label, const std::deque<Answer>& answers = {}) {
    for (const CommandInfo& command : editorProgram().commands()) {
        if (command.label == label) driver.choose(command.id, answers);
    }
}

auto selectedFaces() {
    return std::count_if(OB->faces, OB->faces + OB->nf,
                         [](const Face& face) { return face.selected != 0; });
}

TEST(RealWindow, ADroppedFileIsEditedAndTheExitQuestionAnswered) {
    const Answer yes{Answer::Kind::text, "yes"}, no{Answer::Kind::text, "no"};
    const TempFolder folder;
    const std::string path = folder.write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nf 3 2 1\n");
    resetEditorState();
    const std::unique_ptr<Driver> driver = makeQtDriverOf(editorProgram());
    driver->input({EventKind::drop, 0, 0, 0, 0, 0, {path}});
    EXPECT_EQ(OB->nf, 2);
    EXPECT_EQ(platform().title(), "polyfab [" + path + "] ");
    choose(*driver, "&unselect all faces");
    EXPECT_EQ(selectedFaces(), 0);
    choose(*driver, "&select all faces");
    EXPECT_EQ(selectedFaces(), 2);
    choose(*driver, "&delete selected faces", {yes});
    for (int i = 0; i < OB->nf; ++i) EXPECT_EQ(OB->faces[i].q, nullptr);
    driver->input({EventKind::close}, {no});
    EXPECT_TRUE(driver->isOpen());
    choose(*driver, "e&xit", {yes});
    EXPECT_FALSE(driver->isOpen());
}

TEST(RealWindow, ItsRenderedPictureIsThatOfAHeadlessRun) {
    const std::string gear = POLYFAB_SAMPLES "/gear.obj";
    resetEditorState();
    displayOptions = {};
    std::unique_ptr<Driver> driver = makeQtDriverOf(editorProgram());
    driver->resize({600, 500});
    const Event drop{.kind = EventKind::drop, .paths = {gear}};
    driver->input(drop);
    for (const int command : {330, 331, 1069}) driver->choose(command, {});
    const Size size = platform().clientSize();
    const Bitmap shown = platform().clipboardBitmap().value_or(Bitmap{});
    driver.reset();

    testing::internal::CaptureStdout();
    BatchPlatform headless(editorProgram(), size);
    setPlatform(&headless);
    resetEditorState();
    headless.send({EventKind::create});
    displayOptions = {};
    headless.send(drop);
    for (const int command : {330, 331, 1069}) headless.send({EventKind::command, command});
    const Bitmap copied = headless.clipboardBitmap().value_or(Bitmap{});
    headless.finish();
    testing::internal::GetCapturedStdout();
    displayOptions = {};
    EXPECT_GT(shown.pixels.size(), 100'000U);
    EXPECT_EQ(shown.width, copied.width);
    EXPECT_TRUE(shown.pixels == copied.pixels);
}

} // namespace
} // namespace polyfab::test
