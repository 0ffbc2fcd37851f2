#include "QtDesktop.h"

#include "AlertDialog.h"
#include "FileManager.h"
#include "Pasteboard.h"
#include "PathText.h"
#include "ShareMenu.h"

#include <QApplication>
#include <QCoreApplication>
#include <QTimer>

namespace orvane {

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("QtDesktop", text);
}

/// What a new question lies over: the one that is open, or the window. An open menu would keep the
/// keys from it.
QWidget* topmost(QMainWindow* window)
{
    while (QWidget* const menu = QApplication::activePopupWidget()) {
        menu->close();
        if (QApplication::activePopupWidget() == menu)
            break;
    }
    QWidget* const open = QApplication::activeModalWidget();
    return open ? open : window;
}

/// The mark of unsaved work takes the place of "[*]" in a title, which a name may hold itself.
QString markedTitle(const QString& name)
{
    const QString marked = QString(name).replace("[*]", "[*][*]") + "[*]";
    return name == "Orvane" ? marked : marked + " — Orvane";
}

} // namespace

size_t QtDesktop::ask(const Alert& alert)
{
    return AlertDialog::ask(alert, topmost(m_window));
}

std::vector<std::filesystem::path> QtDesktop::choose(const OpenPanel& panel)
{
    return m_panels.choose(panel, topmost(m_window));
}

std::optional<std::filesystem::path> QtDesktop::chooseTarget(const SavePanel& panel)
{
    return m_panels.chooseTarget(panel, topmost(m_window));
}

std::optional<PastedPicture> QtDesktop::pastedPicture()
{
    return Pasteboard::picture();
}

std::vector<std::filesystem::path> QtDesktop::pastedFiles()
{
    return Pasteboard::files();
}

void QtDesktop::reveal(const std::filesystem::path& path)
{
    showInFileManager(path);
}

void QtDesktop::share(const std::filesystem::path& file)
{
    if (!m_window)
        return;
    QTimer::singleShot(0, m_window, [this, file] {
        if (m_window)
            popUpShareMenu(*m_window, *this, file);
    });
}

void QtDesktop::openAddress(const std::string& address)
{
    if (const Result<void> opened = orvane::openAddress(address); !opened)
        ask({.message = translated("The page couldn't be opened").toStdString(),
             .informative = opened.error().message + "\n" + address,
             .style = Alert::Style::Warning});
}

void QtDesktop::showChrome(const WindowChrome& chrome)
{
    if (!m_window)
        return;
    m_window->setWindowFilePath(chrome.representedFile ? textFromPath(*chrome.representedFile)
                                                       : QString());
    m_window->setWindowTitle(markedTitle(QString::fromStdString(chrome.title)));
    m_window->setWindowModified(chrome.isEdited);
}

} // namespace orvane
