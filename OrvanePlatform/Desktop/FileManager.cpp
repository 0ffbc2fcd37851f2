#include "FileManager.h"

#include "FileAddress.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QProcess>
#include <QStandardPaths>

namespace orvane {

namespace {

namespace fs = std::filesystem;

/// Starts a program of the package xdg-utils. Its output is nobody's business.
Result<void> startTool(const QString& name, const QStringList& arguments)
{
    const QString found = QStandardPaths::findExecutable(name);
    QProcess tool;
    tool.setProgram(found);
    tool.setArguments(arguments);
    tool.setStandardOutputFile(QProcess::nullDevice());
    tool.setStandardErrorFile(QProcess::nullDevice());
    if (!found.isEmpty() && tool.startDetached())
        return {};
    return Error{"The program “" + name.toStdString()
                 + "” could not be started. It comes with the package xdg-utils."};
}

void openFolderOf(const fs::path& path)
{
    std::error_code none;
    const fs::path folder = fs::is_directory(path, none) ? path : path.parent_path();
    // A desktop without a file manager has nothing to show it in.
    (void)openFile(folder);
}

} // namespace

void showInFileManager(const fs::path& path)
{
    QDBusMessage call = QDBusMessage::createMethodCall("org.freedesktop.FileManager1",
                                                       "/org/freedesktop/FileManager1",
                                                       "org.freedesktop.FileManager1", "ShowItems");
    // The second is a token of the start-up notification, of which there is none here.
    call.setArguments({QStringList(fileAddress(path)), QString()});
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolderOf(path);
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, path] {
        if (watcher->isError())
            openFolderOf(path);
        watcher->deleteLater();
    });
}

Result<void> openFile(const fs::path& path)
{
    // As an address it arrives byte for byte, whatever the name is made of.
    return startTool("xdg-open", {fileAddress(path)});
}

Result<void> openAddress(const std::string& address)
{
    return startTool("xdg-open", {QString::fromStdString(address)});
}

Result<void> emailFile(const fs::path& file)
{
    return startTool("xdg-email", {"--attach", QString::fromLocal8Bit(file.c_str())});
}

} // namespace orvane
