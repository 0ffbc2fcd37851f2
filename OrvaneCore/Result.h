#pragma once

#include <string>
#include <utility>
#include <variant>

namespace orvane {

/// Why something failed, as one sentence that a person can act on.
struct Error {
    std::string message;
};

/// A value, or the Error that stands in its place. For what can fail: files, codecs, JSON, network.
template <class T> class [[nodiscard]] Result {
public:
    Result(T value)
        : m_content(std::in_place_index<0>, std::move(value))
    {
    }
    Result(Error error)
        : m_content(std::in_place_index<1>, std::move(error))
    {
    }

    bool ok() const { return m_content.index() == 0; }
    explicit operator bool() const { return ok(); }

    /// The value; only when ok().
    T& operator*() { return std::get<0>(m_content); }
    const T& operator*() const { return std::get<0>(m_content); }
    T* operator->() { return &std::get<0>(m_content); }
    const T* operator->() const { return &std::get<0>(m_content); }

    /// The error; only when not ok().
    const Error& error() const { return std::get<1>(m_content); }

private:
    std::variant<T, Error> m_content;
};

/// Success without a value, or an Error.
template <> class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Error error)
        : m_error(std::move(error))
        , m_failed(true)
    {
    }

    bool ok() const { return !m_failed; }
    explicit operator bool() const { return ok(); }
    const Error& error() const { return m_error; }

private:
    Error m_error;
    bool m_failed = false;
};

} // namespace orvane
