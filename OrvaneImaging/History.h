#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace orvane {

/// Undo and redo of whole snapshots of a state. It knows no clock: who calls says what time it is,
/// in seconds. Nothing fails; what cannot be honoured answers no state and changes nothing.
///
/// Copies share their snapshots, which never change, so that parking an image's history or
/// remembering it at the start of a tool costs no more than its pointers.
template <std::equality_comparable T> class History {
public:
    using Snapshot = std::shared_ptr<const T>;
    using Stack = std::vector<Snapshot>;

    /// Every state from the oldest to the newest that redo can reach.
    struct Timeline {
        Stack entries;
        int current = -1; ///< index of the state that stands now; -1 without entries
    };

    /// Most states in either stack. The current one counts: 49 steps back.
    static constexpr size_t maxDepth = 50;
    /// Seconds. Two pushes nearer in time than this make one step.
    static constexpr double coalesceWindow = 0.6;

    /// Oldest first; the last one is the state that stands now.
    const Stack& undoStack() const { return m_undoStack; }
    /// The last one is what redo brings back next.
    const Stack& redoStack() const { return m_redoStack; }
    /// When a push or commit last changed the stacks; absent after all else.
    std::optional<double> lastTouch() const { return m_lastTouch; }

    bool canUndo() const { return m_undoStack.size() > 1; }
    bool canRedo() const { return !m_redoStack.empty(); }

    /// The state to which the first undo returns. A history that has one already stays as it is.
    void seed(T state);

    /// Takes in the state after a change that may be one of many, as while a slider moves: it makes
    /// one step with the push or commit before it when that is less than coalesceWindow ago. A
    /// state equal to the present one leaves no trace.
    void push(const T& state, double now);

    /// The same for a change that is always a step of its own.
    void commit(const T& state, double now);

    /// The state to apply.
    std::optional<T> undo();
    std::optional<T> redo();

    Timeline timeline() const;
    /// Goes to an entry of the timeline and loses none of them.
    std::optional<T> jump(int index);

    bool operator==(const History& other) const;

private:
    bool stands(const T& state) const
    {
        return !m_undoStack.empty() && *m_undoStack.back() == state;
    }
    void touch(double now);
    static void append(Stack& stack, Snapshot snapshot);
    static bool equal(const Stack& a, const Stack& b);

    Stack m_undoStack;
    Stack m_redoStack;
    std::optional<double> m_lastTouch;
};

template <std::equality_comparable T> void History<T>::seed(T state)
{
    if (!m_undoStack.empty())
        return;
    append(m_undoStack, std::make_shared<const T>(std::move(state)));
    m_lastTouch.reset();
}

template <std::equality_comparable T> void History<T>::push(const T& state, double now)
{
    if (stands(state))
        return;
    // The window slides with each push: a drag without a pause is one step, however long it is.
    if (!m_undoStack.empty() && m_lastTouch && now - *m_lastTouch < coalesceWindow)
        m_undoStack.back() = std::make_shared<const T>(state);
    else
        append(m_undoStack, std::make_shared<const T>(state));
    touch(now);
}

template <std::equality_comparable T> void History<T>::commit(const T& state, double now)
{
    if (stands(state))
        return;
    append(m_undoStack, std::make_shared<const T>(state));
    touch(now);
}

template <std::equality_comparable T> std::optional<T> History<T>::undo()
{
    if (!canUndo())
        return std::nullopt;
    append(m_redoStack, std::move(m_undoStack.back()));
    m_undoStack.pop_back();
    m_lastTouch.reset();
    return *m_undoStack.back();
}

template <std::equality_comparable T> std::optional<T> History<T>::redo()
{
    if (!canRedo())
        return std::nullopt;
    append(m_undoStack, std::move(m_redoStack.back()));
    m_redoStack.pop_back();
    m_lastTouch.reset();
    return *m_undoStack.back();
}

template <std::equality_comparable T> typename History<T>::Timeline History<T>::timeline() const
{
    Timeline timeline{m_undoStack, int(m_undoStack.size()) - 1};
    timeline.entries.insert(timeline.entries.end(), m_redoStack.rbegin(), m_redoStack.rend());
    return timeline;
}

template <std::equality_comparable T> std::optional<T> History<T>::jump(int index)
{
    const Stack entries = timeline().entries;
    if (index < 0 || size_t(index) >= entries.size())
        return std::nullopt;
    const auto next = entries.begin() + index + 1;
    m_undoStack.assign(entries.begin(), next);
    m_redoStack.assign(std::make_reverse_iterator(entries.end()), std::make_reverse_iterator(next));
    m_lastTouch.reset();
    return *m_undoStack.back();
}

template <std::equality_comparable T> bool History<T>::operator==(const History& other) const
{
    return m_lastTouch == other.m_lastTouch && equal(m_undoStack, other.m_undoStack)
        && equal(m_redoStack, other.m_redoStack);
}

template <std::equality_comparable T> void History<T>::touch(double now)
{
    m_lastTouch = now;
    m_redoStack.clear();
}

template <std::equality_comparable T> void History<T>::append(Stack& stack, Snapshot snapshot)
{
    stack.push_back(std::move(snapshot));
    if (stack.size() > maxDepth)
        stack.erase(stack.begin());
}

template <std::equality_comparable T> bool History<T>::equal(const Stack& a, const Stack& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const Snapshot& x, const Snapshot& y) { return x == y || *x == *y; });
}

} // namespace orvane
