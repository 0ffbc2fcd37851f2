#pragma once

namespace orvane {

/// Lets writes past a limit on file sizes, and to programs that are gone, fail like other writes in
/// place of ending this one. At the very start.
void ignoreSignals();

} // namespace orvane
