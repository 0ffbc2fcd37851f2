#include "PackagedResources.h"

#include <system_error>

namespace orvane {

std::filesystem::path packagedResources()
{
    std::error_code none;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", none);
    const auto beside = executable.parent_path() / "Orvane_Orvane.bundle";
    return std::filesystem::is_directory(beside, none) ? beside : ORVANE_SOURCE_BUNDLE;
}

} // namespace orvane
