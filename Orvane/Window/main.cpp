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

namespace {

using Files = orvane::OrvaneDelegate::Files;

/// What Qt left of the arguments are files, also those that are not there: they get their word.
Files filesOf(const QStringList& arguments)
{
    Files files;
    for (const QString& argument : arguments)
        files.push_back(std::filesystem::absolute(orvane::pathFromText(argument)));
    return files;
}

} // namespace

int main(int argc, char** argv)
{
    using namespace orvane;

    ignoreSignals();
    // Declared first, so that it goes last: work in the background may outlive the window.
    QThreadPool pool;
    // Decoding, rendering and exporting wait for each other in the engine alone, never for a
    // thread.
    pool.setMaxThreadCount(8);

    // The first picture that is named is decoded while the window is being made. Qt's own options
    // are still among the arguments, so only a file counts here.
    std::optional<QFuture<ReadImages>> first;
    Files begun;
    for (int i = 1; i < argc && begun.empty(); ++i) {
        if (std::error_code none; std::filesystem::is_regular_file(argv[i], none))
            begun.push_back(std::filesystem::absolute(argv[i]));
    }
    if (!begun.empty())
        first = PictureOpener::readFirst(pool, begun);

    QApplication application(argc, argv);
    QApplication::setApplicationName("Orvane");
    QApplication::setDesktopFileName("orvane");
    Theme::apply(application);
    QApplication::setWindowIcon(applicationIcon());

    const Files named = filesOf(QApplication::arguments().mid(1));
    SingleInstance instance(supportFolder());
    if (!instance.isFirst() && instance.handOver(named)) {
        pool.waitForDone();
        return 0;
    }

    QtDesktop desktop;
    OrvaneApp app(desktop, pool, supportFolder());
    desktop.setWindow(&app.window);
    app.window.show();
    QObject::connect(
        &app.window.canvas(), &CIPreviewView::picturePainted, &app.window,
        [] { StartTrace::report("first picture painted"); }, Qt::SingleShotConnection);
    StartTrace::report("window shown");

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
