// SPDX-License-Identifier: GPL-3.0-or-later
// Batch mode's command line and lines, tried through the toy program.
#include "platform/batch/arguments.h"
#include "platform/batch/batch.h"
#include "tests/platform/toy_program.h"
#include "tests/support/temp_folder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <png.h>

namespace polyfab::test {
namespace {

struct Outcome {
    int status = 0;
    std::string out;
    std::string err;
};

/// The arguments are parted by "|".
Outcome run(const std::string& args, bool mayClose = false) {
    toyState = {};
    toyState.mayClose = mayClose;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runBatch(toyProgram(), splitText(args, '|'));
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

TEST(Batch, PrintsOneLineForWhateverIsShown) {
    const std::string asked = R"({"event":"question","title":"caption","text":"sure?","buttons":)";
    const std::string prompt =
        R"({"event":"prompt","dialog":"ASKDB2","title":"fill & in","fields":)"
        R"([{"label":"first <b>","default":"one","answer":)";
    const std::string second = R"(},{"label":"second & third","default":"two","answer":)";
    const std::string tick = R"(},{"label":"tick","default":"1","answer":)";
    const std::string file = R"("prompt":"which file?","filters":[["all","*.DXF;*.OBJ"],)"
                             R"(["OBJ files","*.OBJ"]],"initial":"cow.obj","answer":)";
    const std::string open = R"({"event":"file","mode":"open",)" + file;
    const std::string save = R"({"event":"file","mode":"save",)" + file;
    struct {
        std::string command;
        int status;
        std::string out;
    } const cases[] = {
        {"title", 0, R"({"event":"title","text":"polyfab [*] [cow.obj] "})"},
        {"WARN", 1, R"({"event":"message","title":"<b>","text":"oh & dear","icon":"exclamation"})"},
        {"raw", 0,
         "{\"event\":\"message\",\"title\":\"bytes\",\"text\":\"\xEF\xBF\xBD \\\"q\\\"\\n\","
         "\"icon\":\"none\"}"},
        {"Yes or No|--answer|yes", 0, asked + R"("yes-no","answer":"yes"})"},
        {"2|--escape", 0, asked + R"("yes-no-cancel","answer":"cancel"})"},
        {"1", 3, asked + R"("yes-no","answer":null})"},
        {"1|--answer|cancel", 3, asked + R"("yes-no","answer":null})"},
        {"1|--default|--state", 3, asked + R"("yes-no","answer":null})"},
        {"prompt|--answer|x|--default|--answer|0", 0,
         prompt + R"("x")" + second + R"("two")" + tick + R"("0"}],"result":"accept"})"},
        {"prompt|--answer|x|--cancel", 0,
         prompt + R"("one")" + second + R"("two")" + tick + R"("1"}],"result":"cancel"})"},
        {"prompt|--answer|x|--escape", 0,
         prompt + R"("x")" + second + R"("two")" + tick + R"("1"}],"result":"escape"})"},
        {"prompt|--answer|x", 3,
         prompt + R"("x")" + second + "null" + tick + R"(null}],"result":null})"},
        {"prompt|--default|--default|--answer|maybe", 3,
         prompt + R"("one")" + second + R"("two")" + tick + R"(null}],"result":null})"},
        {"open|--answer|a b.obj", 0, open + R"("a b.obj"})"},
        {"save|--cancel", 0, save + "null}"},
        {"save|--default", 0, save + R"("cow.obj"})"},
        {"busy", 0,
         "{\"event\":\"busy\",\"text\":\"HANG ON\"}\n{\"event\":\"beep\"}\n"
         "{\"event\":\"busy\",\"text\":\"\"}"},
    };
    for (const auto& row : cases) {
        const Outcome got = run("--command|" + row.command);
        EXPECT_EQ(got.status, row.status) << row.command;
        EXPECT_EQ(got.out, row.out + "\n") << row.command;
        EXPECT_EQ(got.err.empty(), row.status < 2) << row.command << got.err;
    }
}

TEST(Batch, AWrongCommandLineStartsNothing) {
    const std::vector<std::string> lines =
        splitText("--nonsense;--state|stray;--command;--command|no such label;--command|999;"
                  "--command|unbuilt;--size|0x5;--size|12;--size|40000x2;--resize|3x4x5;"
                  "--answer|yes;--state|--answer|yes;--command|1|--answer;--mouse|1;"
                  "--mouse|1,2,middle;--mouse|1,2,left,4;--mouse|1.5,2;--keydown|256;--keyup|f99;"
                  "--mouse|1,2,;--abort-after|-1;--abort-after|1|--answer|yes;--drop|:;--picture;--"
                  "command|warn|--state|--nonsense",
                  ';');
    for (const std::string& args : lines) {
        const Outcome got = run(args);
        EXPECT_EQ(got.status, 2) << args;
        EXPECT_EQ(got.out, "") << args;
        EXPECT_EQ(std::count(got.err.begin(), got.err.end(), '\n'), 1) << args << got.err;
        EXPECT_TRUE(toyState.log.empty()) << args;
    }
    for (const char* const output : {"x.stl", "obj", "x.obj.bak", "x.OBJ"}) {
        testing::internal::CaptureStderr(); // the toy has none of the file commands
        EXPECT_EQ(runConvert(toyProgram(), "in.obj", output), 2) << output;
        EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    }
    EXPECT_TRUE(toyState.log.empty());
}

TEST(Batch, StopsAtTheFirstStepThatCannotBe) {
    struct {
        const char* args;
        int status;
    } const cases[] = {
        {"--command|greyed|--state", 2},
        {"--command|raw|--answer|yes|--state", 2},
        {"--command|1|--answer|yes|--answer|yes|--state", 2},
        {"--command|other|--command|warn|--state", 2},
        {"--picture|no/such/dir.png|--state", 2},
        {"--close|--state", 2},
        {"--command|exit|--picture|closed.png", 2},
        {"--command|warn|--command|1|--state", 3},
    };
    for (const auto& row : cases) {
        const Outcome got = run(row.args, true);
        EXPECT_EQ(got.status, row.status) << row.args;
        EXPECT_EQ(got.out.find("\"s\""), std::string::npos) << row.args;
        EXPECT_NE(got.err, "") << row.args;
        EXPECT_EQ(toyState.log.back(), "destroy") << row.args;
    }
}

TEST(Batch, EventStepsArriveInOrder) {
    const Outcome got =
        run("first.obj|--state|--dump|--keydown|ctrl|--keyup|17|--keydown|q|--keydown|7|--keydown|"
            "07|--mouse|-3,4,left+right|--mouse|5,6|--deactivate|--menu-open|"
            "--drop|a:b c::d|--close",
            true);
    EXPECT_EQ(got.status, 0) << got.err;
    EXPECT_EQ(got.out, "{\"s\":1}\n{\"d\":1}\n{\"event\":\"closed\"}\n");
    EXPECT_EQ(toyState.log, (std::vector<std::string>{
                                "create", "drop|first.obj", "keyDown 17", "keyUp 17", "keyDown 81",
                                "keyDown 55", "keyDown 7", "mouse -3 4 3", "mouse 5 6",
                                "deactivate", "menu", "drop|a|b c|d", "close", "destroy"}));
}

TEST(Batch, ArgumentFilesStandForTheirLines) {
    const TempFolder folder;
    const std::string path = folder.write("args.txt", "# a\n\n--command\r\nyes or no\n  \n@x\n");
    std::vector<std::string> args = {"--state", "@" + path, "yes"};
    EXPECT_EQ(expandArgumentFiles(args), "");
    EXPECT_EQ(args, (std::vector<std::string>{"--state", "--command", "yes or no", "@x", "yes"}));
    args = {"@" + folder.path("missing")};
    EXPECT_NE(expandArgumentFiles(args), "");
}

/// Whether the file is the toy's picture of this size.
bool showsToy(const std::string& path, unsigned width, unsigned height) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) return false;
    image.format = PNG_FORMAT_BGRA; // the bytes of 0xAARRGGBB
    std::vector<std::uint32_t> pixels(std::size_t{image.width} * image.height);
    png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr);
    return image.width == width && image.height == height && pixels[width + 7] == toyColor(7, 1);
}

TEST(Batch, PicturesHaveTheClientSizeAndAreDrawnOnlyWhenDue) {
    const TempFolder folder;
    const std::string first = folder.path("first.png"), second = folder.path("second.png");
    const Outcome got = run("--size|310x205|--picture|" + first + "|--picture|" + first
                            + "|--resize|300x20|--picture|" + second);
    EXPECT_EQ(got.status, 0) << got.err;
    EXPECT_TRUE(showsToy(first, 310, 205));
    EXPECT_TRUE(showsToy(second, 300, 20));
    EXPECT_EQ(toyState.paints, 2);
    run("--picture|" + first);
    EXPECT_TRUE(showsToy(first, 1024, 512));
}

TEST(Batch, CommandListHasFourFieldsALine) {
    const std::string list = commandList(toyProgram());
    EXPECT_TRUE(list.starts_with("1\t&Toys\t&yes or no\tready\n"));
    EXPECT_TRUE(list.ends_with("\n14\t&Toys\t&unbuilt\tlater\n"));
}

TEST(Batch, EscapeIsDownFromTheGivenLookOfTheNextCommandOn) {
    for (const auto& [looks, result] :
         {std::pair("0", "stopped"), std::pair("299", "stopped"), std::pair("300", "done")}) {
        run(std::string("--abort-after|") + looks
            + "|--state|--command|long work|--command|long work");
        const auto said = [](const char* word) {
            return std::count(toyState.log.begin(), toyState.log.end(), word);
        };
        EXPECT_EQ(said(result), result == std::string("done") ? 2 : 1) << looks;
        EXPECT_GE(said("done"), 1);
    }
}

} // namespace
} // namespace polyfab::test
