// SPDX-License-Identifier: GPL-3.0-or-later
// Batch mode's command line and lines, tried through the toy program.
#include "platform/batch/arguments.h"
#include "platform/batch/batch.h"
#include "tests/platform/toy_program.h"
#include "tests/support/read_png.h"
#include "tests/support/temp_folder.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/resource.h>

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
    const std::string prompt =
        R"({"event":"prompt","dialog":"ASKDB2","title":"fill & in","fields":)"
        R"([{"label":"first <b>","default":"one","answer":"one"},)"
        R"({"label":"second & third","default":"two","answer":"two"},)"
        R"({"label":"tick","default":"1","answer":null}],"result":null})";
    const std::string file =
        R"({"event":"file","mode":"save","prompt":"which file?","filters":)"
        R"([["all","*.DXF;*.OBJ"],["OBJ files","*.OBJ"]],"initial":"cow.obj","answer":"cow.obj"})";
    const struct {
        std::string command;
        int status;
        std::string out;
    } cases[] = {
        {"title", 0, R"({"event":"title","text":"polyfab [*] [cow.obj] "})"},
        {"WARN", 1, R"({"event":"message","title":"<b>","text":"oh & dear","icon":"exclamation"})"},
        {"raw", 0,
         "{\"event\":\"message\",\"title\":\"bytes\",\"text\":\"\xEF\xBF\xBD \\\"q\\\"\\n\","
         "\"icon\":\"none\"}"},
        {"Yes or No|--default|--state", 3,
         R"({"event":"question","title":"caption","text":"sure?","buttons":"yes-no","answer":null})"},
        {"prompt|--default|--default|--answer|maybe", 3, prompt},
        {"save|--default", 0, file},
        {"busy", 0,
         "{\"event\":\"busy\",\"text\":\"HANG ON\"}\n{\"event\":\"beep\"}\n"
         "{\"event\":\"busy\",\"text\":\"\"}"},
        {"greyed|--state", 0, "{\"event\":\"beep\"}\n{\"s\":1}"}, // the run goes on
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
                  "--mouse|1,2,middle;--mouse|1,2,left,4;--mouse|1.5,2;--keydown|256;--keydown|00;-"
                  "-keyup|f99;"
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
    testing::internal::CaptureStderr(); // the toy has none of the file commands
    for (const char* const output : {"x.stl", "obj", "x.obj.bak", "x.OBJ"}) {
        EXPECT_EQ(runConvert(toyProgram(), "in.obj", output), 2) << output;
    }
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

TEST(Batch, StopsAtTheFirstStepThatCannotBe) {
    for (const char* const args :
         {"--command|raw|--answer|yes", "--command|1|--answer|yes|--answer|yes",
          "--command|other|--command|warn", "--picture|no/such/dir.png", "--close",
          "--command|exit", "--command|warn|--command|1"}) {
        const Outcome got = run(args + std::string("|--state"), true);
        EXPECT_EQ(got.status, args[std::strlen(args) - 1] == '1' ? 3 : 2) << args;
        EXPECT_EQ(got.out.find("\"s\""), std::string::npos) << args;
        EXPECT_NE(got.err, "") << args;
        EXPECT_EQ(toyState.log.back(), "destroy") << args;
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
                                "create", "start|first.obj", "keyDown 17", "keyUp 17", "keyDown 81",
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

TEST(Batch, PicturesHaveTheClientSizeAndAreDrawnOnlyWhenDue) {
    const TempFolder folder;
    const std::string first = folder.path("first.png"), second = folder.path("second.png");
    const auto check = [](const std::string& path, int width, int height) {
        const Bitmap picture = readPng(path);
        ASSERT_EQ(std::tuple(picture.width, picture.height), std::tuple(width, height));
        EXPECT_EQ(picture.pixels[std::size_t(width + 7)], toyColor(7, 1));
    };
    run("--size|310x205|--picture|" + first + "|--picture|" + first + "|--resize|300x20|--picture|"
        + second);
    check(first, 310, 205);
    check(second, 300, 20);
    EXPECT_EQ(toyState.paints, 2);
    run("--picture|" + first);
    check(first, 1024, 512);
}

/// Lowers a limit of the process as long as it lives.
class Limited {
  public:
    Limited(__rlimit_resource limited, rlim_t value) : resource(limited) {
        ::getrlimit(resource, &before);
        const rlimit lower = {value, before.rlim_max};
        ::setrlimit(resource, &lower);
    }
    ~Limited() { ::setrlimit(resource, &before); }

  private:
    __rlimit_resource resource;
    rlimit before{};
};

TEST(Batch, WhatCannotBeDrawnOrWrittenChangesNothing) {
    const TempFolder folder;
    const std::string path = folder.write("old.png", "precious");
    {
        const Limited sizes(RLIMIT_FSIZE, 100);
        EXPECT_EQ(run("--picture|" + path).status, 2);
    }
    EXPECT_EQ(folder.read("old.png"), "precious");
#if !defined(POLYFAB_SANITIZE) // which takes more memory than any limit leaves
    const Limited memory(RLIMIT_AS, rlim_t{4} << 30);
    const Outcome outcome = run("--size|32767x32767|--state");
    EXPECT_EQ(std::tuple(outcome.status, outcome.out), std::tuple(2, ""));
    EXPECT_NE(outcome.err.find("that takes 17178 MB of memory"), std::string::npos) << outcome.err;
#endif
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
