#include "History.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace orvane {
namespace {

using Letters = History<char>;

std::string text(const Letters::Stack& stack)
{
    std::string letters;
    for (const auto& state : stack)
        letters += *state;
    return letters;
}

/// "undo|redo", with a "!" after them while a touch is remembered.
std::string text(const Letters& history)
{
    return text(history.undoStack()) + "|" + text(history.redoStack())
        + (history.lastTouch() ? "!" : "");
}

/// Plays a script: a letter is pushed, a capital committed, ">" waits half a second, "_" 0.1, "<"
/// undoes, "^" redoes, a digit jumps, "*" seeds.
Letters played(const char* script)
{
    Letters history;
    double now = 1000;
    for (const char* step = script; *step; ++step) {
        if (*step == '>')
            now += 0.5;
        else if (*step == '_')
            now += 0.1;
        else if (*step == '<')
            history.undo();
        else if (*step == '^')
            history.redo();
        else if (*step >= '0' && *step <= '9')
            history.jump(*step - '0');
        else if (*step == '*')
            history.seed('*');
        else if (*step >= 'a')
            history.push(*step, now);
        else
            history.commit(*step, now);
    }
    return history;
}

TEST(History, KeepsItsStacks)
{
    const struct {
        const char* script;
        const char* stacks;
    } cases[] = {
        {"", "|"},
        {"<^0", "|"},
        {"*", "*|"},
        {"*<", "*|"},
        {"a*", "a|!"}, // a seed never touches what is there
        {"*a", "*a|!"}, // nothing to merge with after a seed
        {"*a>b>c", "*c|!"}, // the window slides
        {"*a>_b", "*ab|!"}, // 0.6 seconds are no longer inside it
        {"*A>b", "*b|!"}, // a push merges with a commit, too
        {"*a>B", "*aB|!"}, // a commit with nothing
        {"*a>aaa>_b", "*ab|!"}, // repeats do not hold the window open
        {"*AB<<", "*|BA"},
        {"*AB<<^", "*A|B"},
        {"*AB<c", "*Ac|!"}, // always a new step after an undo
        {"*A<^b", "*Ab|!"},
        {"*AB<A", "*A|B"}, // an equal state empties nothing
        {"*AB<a", "*Aa|!"},
        {"*ABC1", "*A|CB"},
        {"*ABC13", "*ABC|"},
        {"*ABC<2", "*AB|C"},
        {"*ABC4", "*ABC|!"}, // outside the timeline
        {"*ABC3", "*ABC|"}, // to where it stands: only the touch goes
        {"*A<<", "*|A"},
        {"*A0b", "*b|!"},
    };
    for (const auto& [script, stacks] : cases)
        EXPECT_EQ(text(played(script)), stacks) << script;
}

TEST(History, AnswersTheStateToApply)
{
    Letters history = played("*AB");
    EXPECT_EQ(history.undo(), 'A');
    EXPECT_TRUE(history.canUndo());
    EXPECT_EQ(history.undo(), '*');
    EXPECT_FALSE(history.canUndo());
    EXPECT_EQ(history.undo(), std::nullopt);
    EXPECT_EQ(history.redo(), 'A');
    EXPECT_TRUE(history.canRedo());
    EXPECT_EQ(history.jump(2), 'B');
    EXPECT_EQ(history.redo(), std::nullopt);
    EXPECT_EQ(history.jump(-1), std::nullopt);
    EXPECT_EQ(history.jump(3), std::nullopt);

    const Letters::Timeline timeline = played("*ABC<<").timeline();
    EXPECT_EQ(text(timeline.entries), "*ABC");
    EXPECT_EQ(timeline.current, 1);
    EXPECT_EQ(Letters().timeline().current, -1);
}

TEST(History, HoldsFiftyStatesInEitherStack)
{
    History<int> history;
    history.seed(0);
    for (int i = 1; i <= 50; ++i)
        history.commit(i, 0);
    EXPECT_EQ(history.undoStack().size(), 50u);
    EXPECT_EQ(*history.undoStack().front(), 1);
    int steps = 0;
    while (history.undo())
        ++steps;
    EXPECT_EQ(steps, 49);
    history.push(-1, 100);
    EXPECT_EQ(history.undoStack().size(), 2u);
    for (int i = 0; i < 60; ++i)
        history.push(i, 200 + i);
    EXPECT_EQ(history.undoStack().size(), 50u);
    EXPECT_EQ(*history.undoStack().back(), 59);
}

TEST(History, ComparesByValueAndSharesItsSnapshots)
{
    const Letters a = played("*AB<");
    EXPECT_EQ(a, played("*AB<"));
    EXPECT_NE(a, played("*AC<"));
    EXPECT_NE(a, played("*AB"));
    EXPECT_NE(played("*A"), played("*_A"));

    Letters copy = a;
    EXPECT_EQ(copy.undoStack().front().get(), a.undoStack().front().get());
    copy.push('z', 0);
    copy.push('y', 0.1);
    EXPECT_EQ(text(a), "*A|B");
}

} // namespace
} // namespace orvane
