#pragma once

#include <QIcon>

namespace orvane {

/// The program's own icon, for its windows.
QIcon applicationIcon();

} // namespace orvane
