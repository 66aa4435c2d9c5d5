// SPDX-License-Identifier: MIT
// How the changes of a text are told: whatever they are, who applies them has the new text.
#include "platform/qt/window/accessible.h"

#include <gtest/gtest.h>

#include <random>

namespace {

TextScreen Screen(const QStringList& rows) {
    TextScreen screen;
    screen.rows = rows;
    return screen;
}

QString Applied(QString text, const std::vector<TextChange>& changes) {
    for (const TextChange& change : changes) {
        EXPECT_EQ(text.mid(change.offset, change.removed.size()), change.removed);
        text.replace(change.offset, change.removed.size(), change.inserted);
    }
    return text;
}

TEST(TextScreen, SameTextHasNoChanges) {
    EXPECT_TRUE(ChangesBetween(Screen({"a", "", "b"}), Screen({"a", "", "b"})).empty());
}

TEST(TextScreen, OnlyTheNewTextOfARowIsAChange) {
    const auto changes = ChangesBetween(Screen({"", "login: "}), Screen({"", "login: anna"}));
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0].offset, 8);
    EXPECT_EQ(changes[0].removed, "");
    EXPECT_EQ(changes[0].inserted, "anna");
}

TEST(TextScreen, LetterInTheMiddleIsTheOnlyChange) {
    const auto changes = ChangesBetween(Screen({"cat here"}), Screen({"cot here"}));
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0].offset, 1);
    EXPECT_EQ(changes[0].removed, "a");
    EXPECT_EQ(changes[0].inserted, "o");
}

TEST(TextScreen, ScrollingByARowRemovesOneLineAndInsertsOne) {
    const auto changes =
        ChangesBetween(Screen({"one", "two", "three"}), Screen({"two", "three", "four"}));
    ASSERT_EQ(changes.size(), 2u);
    EXPECT_EQ(changes[0].offset, 0);
    EXPECT_EQ(changes[0].removed, "one\n");
    EXPECT_EQ(changes[1].inserted, "\nfour");
}

TEST(TextScreen, ChangesAlwaysLeadToTheNewText) {
    std::mt19937 random(20260);
    const QStringList words = {"", "", "a", "ab", "abc", "b c", "stock", "stocks"};
    for (int round = 0; round < 20000; round++) {
        QStringList before, now;
        for (auto i = random() % 6; i > 0; i--) before << words[static_cast<int>(random() % 8)];
        if (random() % 2) now = before.mid(static_cast<int>(random() % 3));
        for (auto i = random() % 6; i > 0; i--) now << words[static_cast<int>(random() % 8)];
        const TextScreen from = Screen(before), to = Screen(now);
        ASSERT_EQ(Applied(TextOf(from), ChangesBetween(from, to)), TextOf(to))
            << before.join('|').toStdString() << " to " << now.join('|').toStdString();
    }
}

TEST(TextScreen, OffsetsAndPositionsConvertBothWays) {
    const TextScreen screen = Screen({"one", "", "three"});
    for (int offset = 0; offset <= TextOf(screen).size(); offset++)
        EXPECT_EQ(OffsetOf(screen, PlaceOf(screen, offset)), offset);
    EXPECT_EQ(PlaceOf(screen, 5), QPoint(0, 2));
    EXPECT_EQ(OffsetOf(screen, QPoint(99, 0)), 3);
    EXPECT_EQ(OffsetOf(screen, QPoint(0, 99)), 5);
    EXPECT_EQ(OffsetOf(screen, QPoint(-3, -3)), 0);
    EXPECT_EQ(OffsetOf(TextScreen(), QPoint(3, 3)), 0);
}

TEST(TextScreen, SelectionIsARangeOfEachRow) {
    TextScreen screen = Screen({"abcdef", "ab", "abcdef"});
    EXPECT_TRUE(SelectedRanges(screen).empty());
    screen.selected = QRect(QPoint(1, 0), QPoint(3, 2));
    const auto ranges = SelectedRanges(screen);
    ASSERT_EQ(ranges.size(), 3u);
    EXPECT_EQ(TextOf(screen).mid(ranges[0].start, ranges[0].end - ranges[0].start), "bcd");
    EXPECT_EQ(TextOf(screen).mid(ranges[1].start, ranges[1].end - ranges[1].start), "b");
    EXPECT_EQ(TextOf(screen).mid(ranges[2].start, ranges[2].end - ranges[2].start), "bcd");
}

}  // namespace
