#pragma once

#include "BakeChain.h"

#include <QString>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// The questions that the window asks the user and waits for. Tests answer them from a script.
class Panels {
public:
    virtual ~Panels() = default;

    /// Which pictures to open; empty when the user thought better of it.
    virtual std::vector<std::filesystem::path> picturesToOpen() = 0;
    /// Where a finished file goes, beginning in the suggestion's folder. It has an extension of the
    /// format, and the user has agreed to the overwriting of what is there.
    virtual std::optional<std::filesystem::path>
    exportTarget(const std::filesystem::path& suggestion, const ExportFormatInfo& format) = 0;
    /// Tells of a failure.
    virtual void alert(const QString& message, const QString& informative) = 0;
    /// Whether to go on with `action`, the button's text. The default is not to.
    virtual bool confirm(const QString& message, const QString& informative,
                         const QString& action) = 0;
};

} // namespace orvane
