#include "OpenEventLog.h"

#include "AtomicFile.h"
#include "PathText.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace orvane {

void logOpenEvents(const std::set<std::filesystem::path>& accepted)
{
    const char* const log = std::getenv("KQ4_UI_TEST_OPEN_EVENT_LOG");
    if (!log || !*log)
        return;
    // As bytes: the order of paths goes by their components.
    std::vector<std::string> lines;
    lines.reserve(accepted.size());
    for (const std::filesystem::path& path : accepted)
        lines.push_back(textFromPath(path).toStdString() + "\n");
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string& line : lines)
        text += line;
    // What the log is for sees its absence.
    (void)writeFile(log, text);
}

} // namespace orvane
