#pragma once

#include <concepts>
#include <utility>

namespace orvane {

/// What a value was when a modal tool opened.
template <std::equality_comparable T> class ModalSession {
public:
    explicit ModalSession(T start)
        : m_start(std::move(start))
    {
    }

    const T& start() const { return m_start; }

    /// Whether leaving the tool with this value is a step to undo.
    bool commits(const T& end) const { return !(end == m_start); }

    /// The value to put back when the tool is cancelled.
    const T& cancelled() const { return m_start; }

    bool operator==(const ModalSession&) const = default;

private:
    T m_start;
};

} // namespace orvane
