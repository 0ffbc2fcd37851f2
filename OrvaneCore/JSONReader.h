#pragma once

#include "JSON.h"

#include <optional>
#include <string_view>

namespace orvane {

/// Where the strict reading of one value stands: the path walked, and the first complaint.
class JSONReader {
public:
    bool ok() const { return !m_error.has_value(); }
    const Error& error() const { return *m_error; }

    /// Records a complaint at the present path and answers false, for `return reader.fail(...)`.
    bool fail(std::string_view complaint);
    bool expected(std::string_view kind) { return fail("expected " + std::string(kind)); }

    /// The member of an object; records a complaint when it is missing.
    std::optional<JSONView> required(const JSONView& object, std::string_view key);

    /// Runs `read()` one step further down the path, at a key or an index.
    template <class Step, class Read> bool at(const Step& step, Read read)
    {
        m_path.push(step);
        const bool ok = read();
        m_path.pop();
        return ok;
    }

private:
    JSONPath m_path;
    std::optional<Error> m_error;
};

} // namespace orvane
