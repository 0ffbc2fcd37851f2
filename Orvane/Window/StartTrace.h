#pragma once

namespace orvane::StartTrace {

/// One line to standard error with the milliseconds since the process began, when the environment
/// has ORVANE_TRACE_START: "orvane: window shown after 120 ms". The kernel counts the beginning in
/// steps of 10 ms.
void report(const char* what);

} // namespace orvane::StartTrace
