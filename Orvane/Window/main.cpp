#include "ApplicationIcon.h"
#include "CIPreviewView.h"
#include "OrvaneApp.h"
#include "PathText.h"
#include "ProcessSignals.h"
#include "QtDesktop.h"
#include "SingleInstance.h"
#include "StartTrace.h"
#include "Theme.h"

#include <QApplication>
#include <QSessionManager>

namespace {

using Files = orvane::OrvaneDelegate::Files;

/// What Qt left of the arguments are files, also those that are not there: they get their word.
Files filesOf(const QStringList& arguments)
{
    Files files;
    for (const QString& argument : arguments) {
        if (!argument.isEmpty())
            files.push_back(std::filesystem::absolute(orvane::pathFromText(argument)));
    }
    return files;
}

/// The arguments as files, before Qt has seen them; absent when options may be among them, which Qt
/// alone can tell apart.
std::optional<Files> plainFiles(const std::vector<std::string>& arguments)
{
    Files files;
    for (const std::string& argument : arguments) {
        if (argument.empty() || argument.front() == '-')
            return std::nullopt;
        files.push_back(std::filesystem::absolute(argument));
    }
    return files;
}

/// The first picture that is named. Options are still among the arguments, so only a file counts.
Files firstFile(const std::vector<std::string>& arguments)
{
    for (const std::string& argument : arguments) {
        if (std::error_code none; std::filesystem::is_regular_file(argument, none))
            return {std::filesystem::absolute(argument)};
    }
    return {};
}

} // namespace

int main(int argc, char** argv)
{
    using namespace orvane;

    ignoreSignals();
    const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    SingleInstance instance(supportFolder());
    // Nearly every second start ends here, with nothing loaded.
    const std::optional<Files> plain = plainFiles(arguments);
    if (plain && instance.handOver(*plain))
        return 0;

    // Declared first, so that it goes last: work in the background may outlive the window.
    QThreadPool pool;
    // Decoding, rendering and exporting wait for each other in the engine alone, never for a
    // thread.
    pool.setMaxThreadCount(8);

    // The first picture is decoded while the window is being made.
    std::optional<QFuture<ReadImages>> first;
    const Files begun = firstFile(arguments);
    if (!begun.empty() && (plain || instance.isFirst()))
        first = PictureOpener::readFirst(pool, begun);

    QApplication application(argc, argv);
    QApplication::setApplicationName("Orvane");
    QApplication::setDesktopFileName("orvane");
    Theme::apply(application);
    QApplication::setWindowIcon(applicationIcon());

    const Files named = filesOf(QApplication::arguments().mid(1));
    if (!plain && instance.handOver(named))
        return 0;

    QtDesktop desktop;
    OrvaneApp app(desktop, pool, supportFolder());
    desktop.setWindow(&app.window);
    app.window.show();
    QObject::connect(
        &app.window.canvas(), &CIPreviewView::picturePainted, &app.window,
        [] { StartTrace::report("first picture painted"); }, Qt::SingleShotConnection);
    StartTrace::report("window shown");

    // The end of the desktop's session asks like the closing of the window.
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &app.window,
                     [&app](QSessionManager& session) {
                         if (!session.allowsInteraction())
                             return;
                         if (!app.delegate.applicationShouldTerminate())
                             session.cancel();
                         session.release();
                     });
    instance.listen([&app](const Files& files) {
        app.window.setWindowState(app.window.windowState() & ~Qt::WindowMinimized);
        app.window.raise();
        app.window.activateWindow();
        app.delegate.accept(files);
    });
    if (named.empty() || named.front() != (begun.empty() ? std::filesystem::path() : begun.front()))
        first.reset();
    app.delegate.accept(named, std::move(first));
    app.delegate.attach(app.model, desktop, app.opener);

    const int result = QApplication::exec();
    app.opener.stop();
    pool.waitForDone();
    return result;
}
