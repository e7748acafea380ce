#include "app/commands/command_set.h"

#include <gdk/gdkkeysyms.h>
#include <gtest/gtest.h>

namespace {

struct Pane {
    void Undo() { done += "undo "; }
    void Fetch() { done += "fetch "; }
    std::string done;
};

constexpr CommandRow<Pane> kRows[] = {
    {{.number = 1401, .tip = "Take it back", .keys = {kKeyControl | GDK_Z}, .needs = kNeedsUndo},
     &Pane::Undo},
    {{.number = 1019, .also = {1008}, .keys = {kKeyControl | GDK_B}, .needs = kNeedsSelection},
     &Pane::Fetch},
    {{.number = 1021, .tip = "Settings"}, &Pane::Fetch},
    {{.number = 1313, .keys = {kKeyControl | GDK_Left}, .needs = kNeedsSound, .sharesKeys = true},
     &Pane::Fetch},
};

TEST(CommandSetTest, WhatCannotActSaysWhyAndNumbersOfOneCommandAreAlike) {
    Pane pane;
    CommandNeeds available = 0;
    std::string told;
    CommandSet commands([&] { return available; }, [&](const char* text) { told = text; });
    commands.Add(pane, kRows);
    commands.AddRange(1451, 1458, [&](int number) { pane.done += std::to_string(number); });
    EXPECT_TRUE(commands.Run(1401));
    EXPECT_EQ("", pane.done);
    EXPECT_EQ("There is nothing to undo.", told);
    available = kNeedsUndo;
    for (const int number : {1401, 1008, 1019, 1452})
        EXPECT_TRUE(commands.Run(number));
    EXPECT_EQ("undo fetch fetch 1452", pane.done);
    for (const int number : {0, 7, 1450, 1459})
        EXPECT_FALSE(commands.Run(number)) << number;
    EXPECT_EQ("Take it back (Ctrl+Z)", commands.Tip(1401));
    EXPECT_EQ("Settings", commands.Tip(1021));
    EXPECT_EQ(1019, CommandOfKey(commands.Keys(), kKeyControl | GDK_B));
    EXPECT_EQ(kKeyControl | GDK_B, KeyOfCommand(commands.Keys(), 1008)) << "a menu shows it";
    EXPECT_EQ(0u, KeyOfCommand(commands.Keys(), 0));
}

TEST(CommandSetTest, ASharedKeyIsTheCommandsOnlyWhileItCanAct) {
    Pane pane;
    CommandNeeds available = 0;
    CommandSet commands([&] { return available; }, nullptr);
    commands.Add(pane, kRows);
    constexpr LKeyCode kBack = kKeyControl | GDK_Left;
    EXPECT_TRUE(commands.LeavesKey(kBack));
    available = kNeedsSound;
    EXPECT_FALSE(commands.LeavesKey(kBack));
    EXPECT_FALSE(commands.LeavesKey(kKeyControl | GDK_Z)) << "it says why it cannot act";
    EXPECT_FALSE(commands.LeavesKey(GDK_X)) << "of no command";
}

}  // namespace
