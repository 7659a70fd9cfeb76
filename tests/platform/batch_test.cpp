// SPDX-License-Identifier: GPL-3.0-or-later
// Batch mode's command line and lines, tried through the toy program.
#include "platform/batch/batch.h"
#include "tests/platform/toy_program.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

struct Outcome {
    int status = 0;
    std::string out;
    std::string err;
};

Outcome run(const std::vector<std::string>& args, bool mayClose = false) {
    resetToy();
    toyProgram().mayClose = mayClose;
    Outcome result;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    result.status = runBatch(toyAsProgram(), args);
    result.out = testing::internal::GetCapturedStdout();
    result.err = testing::internal::GetCapturedStderr();
    return result;
}

bool started() { return !toyProgram().events.empty(); }

std::string inTempDir(const std::string& name) {
    return (std::filesystem::path(testing::TempDir()) / name).string();
}

void writeText(const std::string& path, const std::string& text) { std::ofstream(path) << text; }

TEST(Batch, PrintsOneLineForWhateverIsShown) {
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string out;
    };
    const std::string prompt =
        R"({"event":"prompt","dialog":"ASKDB2","title":"fill & in","fields":)"
        R"([{"label":"first <b>","default":"one","answer":)";
    const std::string file = R"("prompt":"which file?","filters":[["all","*.DXF;*.OBJ"],)"
                             R"(["OBJ files","*.OBJ"]],"initial":"cow.obj","answer":)";
    const std::string question = R"({"event":"question","title":"caption","text":"sure?",)";
    const Case cases[] = {
        {{}, 0, ""},
        {{"--command", "title"},
         0,
         R"({"event":"title","text":"polyfab [*] [cow.obj] "})"
         "\n"},
        {{"--command", "WARN"},
         1,
         R"({"event":"message","title":"<b>","text":"oh & dear","icon":"exclamation"})"
         "\n"},
        {{"--command", "notice"},
         0,
         R"({"event":"message","title":"note","text":"all well","icon":"none"})"
         "\n"},
        {{"--command", "raw"},
         0,
         "{\"event\":\"message\",\"title\":\"bytes\",\"text\":\"\xEF\xBF\xBD \\\"q\\\"\\n\","
         "\"icon\":\"none\"}\n"},
        {{"--command", "Yes or No", "--answer", "yes"},
         0,
         question
             + R"("buttons":"yes-no","answer":"yes"})"
               "\n"},
        {{"--command", "2", "--escape"},
         0,
         question
             + R"("buttons":"yes-no-cancel","answer":"cancel"})"
               "\n"},
        {{"--command", "1"},
         3,
         question
             + R"("buttons":"yes-no","answer":null})"
               "\n"},
        {{"--command", "1", "--answer", "cancel"},
         3,
         question
             + R"("buttons":"yes-no","answer":null})"
               "\n"},
        {{"--command", "1", "--default", "--state"},
         3,
         question
             + R"("buttons":"yes-no","answer":null})"
               "\n"},
        {{"--command", "prompt", "--answer", "x", "--default", "--answer", "0"},
         0,
         prompt
             + R"("x"},{"label":"second & third","default":"two","answer":"two"},)"
               R"({"label":"tick","default":"1","answer":"0"}],"result":"accept"})"
               "\n"},
        {{"--command", "prompt", "--answer", "x", "--cancel"},
         0,
         prompt
             + R"("one"},{"label":"second & third","default":"two","answer":"two"},)"
               R"({"label":"tick","default":"1","answer":"1"}],"result":"cancel"})"
               "\n"},
        {{"--command", "prompt", "--answer", "x", "--escape"},
         0,
         prompt
             + R"("x"},{"label":"second & third","default":"two","answer":"two"},)"
               R"({"label":"tick","default":"1","answer":"1"}],"result":"escape"})"
               "\n"},
        {{"--command", "prompt", "--answer", "x"},
         3,
         prompt
             + R"("x"},{"label":"second & third","default":"two","answer":null},)"
               R"({"label":"tick","default":"1","answer":null}],"result":null})"
               "\n"},
        {{"--command", "prompt", "--default", "--default", "--answer", "maybe"},
         3,
         prompt
             + R"("one"},{"label":"second & third","default":"two","answer":"two"},)"
               R"({"label":"tick","default":"1","answer":null}],"result":null})"
               "\n"},
        {{"--command", "open", "--answer", "a b.obj"},
         0,
         R"({"event":"file","mode":"open",)" + file + "\"a b.obj\"}\n"},
        {{"--command", "save", "--cancel"},
         0,
         R"({"event":"file","mode":"save",)" + file + "null}\n"},
        {{"--command", "save", "--default"},
         3,
         R"({"event":"file","mode":"save",)" + file + "null}\n"},
        {{"--command", "busy"},
         0,
         "{\"event\":\"busy\",\"text\":\"HANG ON\"}\n{\"event\":\"beep\"}\n"
         "{\"event\":\"busy\",\"text\":\"\"}\n"},
        {{"--state", "--dump"}, 0, "{\"s\":1}\n{\"d\":1}\n"},
    };
    for (const Case& row : cases) {
        const Outcome got = run(row.args);
        const std::string args = testing::PrintToString(row.args);
        EXPECT_EQ(got.status, row.status) << args;
        EXPECT_EQ(got.out, row.out) << args;
        EXPECT_EQ(got.err.empty(), row.status < 2) << args << got.err;
    }
}

TEST(Batch, AWrongCommandLineStartsNothing) {
    const std::vector<std::string> lines[] = {
        {"--nonsense"},
        {"--state", "stray"},
        {"--command"},
        {"--command", "no such label"},
        {"--command", "999"},
        {"--command", "unbuilt"},
        {"--size", "0x5"},
        {"--size", "12"},
        {"--size", "40000x2"},
        {"--resize", "3x4x5"},
        {"--answer", "yes"},
        {"--state", "--answer", "yes"},
        {"--command", "1", "--answer"},
        {"--mouse", "1"},
        {"--mouse", "1,2,middle"},
        {"--mouse", "1,2,left,4"},
        {"--mouse", "1.5,2"},
        {"--keydown", "256"},
        {"--keyup", "f99"},
        {"--drop", ":"},
        {"--picture"},
        {"@" + inTempDir("no such file")},
        {"--command", "warn", "--state", "--nonsense"},
    };
    for (const std::vector<std::string>& args : lines) {
        const Outcome got = run(args);
        EXPECT_EQ(got.status, 2) << testing::PrintToString(args);
        EXPECT_EQ(got.out, "") << testing::PrintToString(args);
        EXPECT_EQ(std::count(got.err.begin(), got.err.end(), '\n'), 1) << got.err;
        EXPECT_FALSE(started()) << testing::PrintToString(args);
    }
}

TEST(Batch, StopsAtTheFirstStepThatCannotBe) {
    struct Case {
        std::vector<std::string> args;
        int status;
    };
    const Case cases[] = {
        {{"--command", "greyed", "--state"}, 2},
        {{"--command", "notice", "--answer", "yes", "--state"}, 2},
        {{"--command", "1", "--answer", "yes", "--answer", "yes", "--state"}, 2},
        {{"--command", "other menu", "--command", "warn", "--state"}, 2},
        {{"--picture", inTempDir("no/such/dir.png"), "--state"}, 2},
        {{"--close", "--state"}, 2},
        {{"--command", "exit", "--picture", inTempDir("closed.png")}, 2},
        {{"--command", "warn", "--command", "1", "--state"}, 3},
    };
    for (const Case& row : cases) {
        const Outcome got = run(row.args, true);
        EXPECT_EQ(got.status, row.status) << testing::PrintToString(row.args);
        EXPECT_EQ(got.out.find("\"s\""), std::string::npos) << testing::PrintToString(row.args);
        EXPECT_NE(got.err, "") << testing::PrintToString(row.args);
        EXPECT_EQ(toyProgram().events.back().kind, EventKind::destroy);
    }
}

TEST(Batch, EventStepsArriveInOrder) {
    const Outcome got = run({"first.obj",
                             "--keydown",
                             "ctrl",
                             "--keyup",
                             "17",
                             "--keydown",
                             "q",
                             "--keydown",
                             "7",
                             "--keydown",
                             "07",
                             "--mouse",
                             "-3,4,left+right",
                             "--mouse",
                             "5,6",
                             "--deactivate",
                             "--menu-open",
                             "--drop",
                             "a:b c::d",
                             "--close"},
                            true);
    EXPECT_EQ(got.status, 0) << got.err;
    EXPECT_EQ(got.out, "{\"event\":\"closed\"}\n");
    std::string seen;
    for (const Event& event : toyProgram().events) {
        seen += std::to_string(int(event.kind)) + ":" + std::to_string(event.key) + ","
                + std::to_string(event.x) + "," + std::to_string(event.y) + ","
                + std::to_string(event.buttons);
        for (const std::string& path : event.paths) seen += "," + path;
        seen += "\n";
    }
    const auto kind = [](EventKind of) { return std::to_string(int(of)); };
    EXPECT_EQ(seen, kind(EventKind::create) + ":0,0,0,0\n" + kind(EventKind::drop)
                        + ":0,0,0,0,first.obj\n" + kind(EventKind::keyDown) + ":17,0,0,0\n"
                        + kind(EventKind::keyUp) + ":17,0,0,0\n" + kind(EventKind::keyDown)
                        + ":81,0,0,0\n" + kind(EventKind::keyDown) + ":55,0,0,0\n"
                        + kind(EventKind::keyDown) + ":7,0,0,0\n" + kind(EventKind::mouse)
                        + ":0,-3,4,3\n" + kind(EventKind::mouse) + ":0,5,6,0\n"
                        + kind(EventKind::deactivate) + ":0,0,0,0\n" + kind(EventKind::menuOpening)
                        + ":0,0,0,0\n" + kind(EventKind::drop) + ":0,0,0,0,a,b c,d\n"
                        + kind(EventKind::close) + ":0,0,0,0\n" + kind(EventKind::destroy)
                        + ":0,0,0,0\n");
}

TEST(Batch, ArgumentFilesStandForTheirLines) {
    const std::string path = inTempDir("args.txt");
    writeText(path, "# a comment\n\n--command\r\nyes or no\n   \n--answer\n");
    const Outcome got = run({"--state", "@" + path, "yes", "--dump"});
    EXPECT_EQ(got.status, 0) << got.err;
    EXPECT_EQ(toyProgram().log, std::vector<std::string>{"question yes"});
    EXPECT_EQ(got.out.substr(0, 8), "{\"s\":1}\n");
    EXPECT_EQ(got.out.substr(got.out.size() - 8), "{\"d\":1}\n");
}

/// Width and height as the file's header has them.
std::pair<int, int> pngSize(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), {});
    if (bytes.size() < 24 || bytes.substr(1, 3) != "PNG") return {0, 0};
    const auto number = [&bytes](std::size_t at) {
        return (static_cast<unsigned char>(bytes[at + 2]) << 8)
               | static_cast<unsigned char>(bytes[at + 3]);
    };
    return {number(16), number(20)};
}

TEST(Batch, PicturesHaveTheClientSizeAndAreDrawnOnlyWhenDue) {
    const std::string first = inTempDir("first.png");
    const std::string second = inTempDir("second.png");
    const Outcome got = run({"--size", "310x205", "--picture", first, "--picture", first,
                             "--resize", "300x20", "--picture", second});
    EXPECT_EQ(got.status, 0) << got.err;
    EXPECT_EQ(pngSize(first), std::pair(310, 205));
    EXPECT_EQ(pngSize(second), std::pair(300, 20));
    EXPECT_EQ(toyProgram().paints, 2);
    run({"--picture", first});
    EXPECT_EQ(pngSize(first), std::pair(1024, 512));
}

TEST(Batch, CommandListHasFourFieldsALine) {
    const std::string list = commandList(toyAsProgram());
    EXPECT_EQ(list.substr(0, list.find('\n')), "1\t&First\t&yes or no\tready");
    EXPECT_NE(list.find("9\t&First\t&unbuilt\tlater\n"), std::string::npos);
}

TEST(Batch, ConvertRefusesWhatItCannotDoBeforeItStarts) {
    for (const char* const output : {"x.stl", "obj", "x.obj.bak", "x.OBJ"}) {
        resetToy(); // the toy has none of the file commands
        testing::internal::CaptureStderr();
        EXPECT_EQ(runConvert(toyAsProgram(), "in.obj", output), 2) << output;
        EXPECT_NE(testing::internal::GetCapturedStderr(), "");
        EXPECT_FALSE(started());
    }
}

} // namespace
} // namespace polyfab::test
