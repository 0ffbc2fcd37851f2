#include "OrvaneApp.h"

#include <QStandardPaths>

#include <cstdlib>

namespace orvane {

OrvaneApp::OrvaneApp(Desktop& desktop, QThreadPool& pool,
                     const std::filesystem::path& supportFolder)
    : model({.desktop = desktop, .supportFolder = supportFolder})
    , opener(model, pool)
    , window(model, desktop, delegate, opener, pool)
{
    model.setFileOpener([this](std::vector<std::filesystem::path> files, bool append) {
        opener.open(std::move(files),
                    append ? PictureOpener::How::Append : PictureOpener::How::Replace);
    });
}

OrvaneApp::~OrvaneApp()
{
    opener.stop();
    delegate.detach();
}

std::filesystem::path supportFolder()
{
    // As bytes: a home folder need not be named in UTF-8.
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && std::filesystem::path(data).is_absolute())
        return std::filesystem::path(data) / "Orvane";
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home ? home : "/") / ".local/share/Orvane";
}

} // namespace orvane
