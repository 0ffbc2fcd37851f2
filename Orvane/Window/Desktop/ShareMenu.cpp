#include "ShareMenu.h"

#include "FileManager.h"
#include "Icon.h"
#include "Pasteboard.h"
#include "PathText.h"
#include "Programs.h"
#include "SharedPicture.h"

#include <QApplication>
#include <QCoreApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMimeDatabase>
#include <QPointer>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <string_view>

namespace orvane {

namespace {

namespace fs = std::filesystem;

/// From the window's right edge, and from its top: below the toolbar.
constexpr QPoint inset(12, 56);
/// This program itself is no other to open the image with.
constexpr const char* ownEntry = "orvane.desktop";

/// What the menu's actions share. The desktop outlives the window.
struct Shared {
    QMainWindow& window;
    Desktop& desktop;
    fs::path file;
};

QString translated(const char* text)
{
    return QCoreApplication::translate("ShareMenu", text);
}

/// A failure is told; success shows itself.
void tell(Desktop& desktop, const char* message, const Result<void>& result)
{
    if (!result)
        desktop.ask({.message = translated(message).toStdString(),
                     .informative = result.error().message,
                     .style = Alert::Style::Warning});
}

void email(const Shared& shared)
{
    tell(shared.desktop, "The mail program couldn't be opened", emailFile(shared.file));
}

void openWithDefault(const Shared& shared)
{
    tell(shared.desktop, "The image couldn't be opened", openFile(shared.file));
}

void copyFile(const Shared& shared)
{
    Pasteboard::copyFile(shared.file);
}

/// In the background: a large picture takes a second to become what the pasteboard takes.
void copyImage(const Shared& shared)
{
    const auto copy = [window = QPointer<QMainWindow>(&shared.window),
                       desktop = &shared.desktop](Result<std::vector<uint8_t>>& png) {
        if (png)
            Pasteboard::copyPicture({PastedPicture::Kind::Png, std::move(*png)});
        else if (window)
            tell(*desktop, "The image couldn't be copied", png.error());
    };
    QThreadPool::globalInstance()->start([copy, file = shared.file] {
        const auto png = std::make_shared<Result<std::vector<uint8_t>>>(pngOfFile(file));
        QMetaObject::invokeMethod(qApp, [copy, png] { copy(*png); });
    });
}

void showInFolder(const Shared& shared)
{
    shared.desktop.reveal(shared.file);
}

/// The programs for files of this kind; the desktop's own choice when none is known.
void addPrograms(QMenu& menu, const Shared& shared)
{
    const QString kind =
        QMimeDatabase()
            .mimeTypeForFile(textFromPath(shared.file), QMimeDatabase::MatchExtension)
            .name();
    for (const Program& program : programsFor(kind)) {
        if (program.id != ownEntry)
            menu.addAction(QString(program.name).replace('&', "&&"), [shared, program] {
                tell(shared.desktop, "The image couldn't be opened",
                     orvane::openWith(program, shared.file));
            });
    }
    if (menu.isEmpty())
        menu.addAction(translated("Default Program"), [shared] { openWithDefault(shared); });
}

struct Way {
    const char* name;
    std::string_view icon;
    void (*take)(const Shared&); ///< null: a choice of programs
};
constexpr Way ways[] = {
    {QT_TRANSLATE_NOOP("ShareMenu", "Email"), "mail", email},
    {QT_TRANSLATE_NOOP("ShareMenu", "Open With"), "external-link", nullptr},
    {QT_TRANSLATE_NOOP("ShareMenu", "Copy File"), "copy", copyFile},
    {QT_TRANSLATE_NOOP("ShareMenu", "Copy Image"), "image", copyImage},
    {QT_TRANSLATE_NOOP("ShareMenu", "Show in File Manager"), "folder-open", showInFolder},
};

} // namespace

void popUpShareMenu(QMainWindow& window, Desktop& desktop, const fs::path& file)
{
    auto* menu = new QMenu(&window);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setAccessibleName(translated("Share"));
    const Shared shared{window, desktop, file};
    for (const Way& way : ways) {
        if (way.take)
            menu->addAction(icon(way.icon), translated(way.name),
                            [shared, way] { way.take(shared); });
        else
            addPrograms(*menu->addMenu(icon(way.icon), translated(way.name)), shared);
    }
    const int left = window.width() - menu->sizeHint().width() - inset.x();
    menu->popup(window.mapToGlobal(QPoint(left, inset.y())));
}

} // namespace orvane
