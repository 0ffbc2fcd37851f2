#include "MainWindow.h"
#include "PathText.h"
#include "QtPanels.h"
#include "StartTrace.h"
#include "Theme.h"

#include <QApplication>
#include <QThreadPool>

#include <algorithm>

int main(int argc, char** argv)
{
    using namespace orvane;

    // Declared first, so that it goes last: work in the background may outlive the window.
    QThreadPool pool;
    // Decoding, rendering and exporting wait for each other in the engine alone, never for a
    // thread.
    pool.setMaxThreadCount(8);

    // What is named on the command line is decoded while the window is being made. Qt's own options
    // are still among the arguments, so only files count here.
    std::vector<std::filesystem::path> paths;
    for (int i = 1; i < argc; ++i) {
        if (std::error_code none; std::filesystem::exists(argv[i], none))
            paths.emplace_back(argv[i]);
    }
    QFuture<PictureOpening> opening;
    if (!paths.empty())
        opening = openPictures(pool, paths);

    QApplication application(argc, argv);
    QApplication::setApplicationName("Orvane");
    Theme::apply(application);

    QtPanels panels;
    MainWindow window(pool, panels);
    panels.setWindow(&window);
    window.show();
    QObject::connect(&window, &MainWindow::firstPicturePainted,
                     [] { StartTrace::report("first picture painted"); });
    StartTrace::report("window shown");

    // What Qt left of the arguments are files, also those that are not there: they get their word.
    const QStringList arguments = QApplication::arguments().mid(1);
    std::vector<std::filesystem::path> named;
    for (const QString& argument : arguments)
        named.push_back(pathFromText(argument));
    const auto missing = std::stable_partition(named.begin(), named.end(), [](const auto& path) {
        std::error_code none;
        return std::filesystem::exists(path, none);
    });
    if (!paths.empty() && std::equal(named.begin(), missing, paths.begin(), paths.end()))
        window.adopt(withMissing({missing, named.end()}, opening), paths);
    else if (!arguments.isEmpty())
        window.open(arguments);

    const int result = QApplication::exec();
    window.stopWork();
    pool.waitForDone();
    return result;
}
