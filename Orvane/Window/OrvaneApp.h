#pragma once

#include "AppModel.h"
#include "MainWindow.h"
#include "OrvaneDelegate.h"
#include "PictureOpener.h"

#include <QThreadPool>

namespace orvane {

/// The program, put together: the model over its stores, the window over the model, and who takes
/// files from outside. For `main` and for tests, which bring a desktop of their own.
class OrvaneApp {
public:
    /// `desktop` and `pool` outlive it.
    OrvaneApp(Desktop& desktop, QThreadPool& pool, const std::filesystem::path& supportFolder);
    ~OrvaneApp();
    OrvaneApp(const OrvaneApp&) = delete;
    OrvaneApp& operator=(const OrvaneApp&) = delete;

    AppModel model;
    OrvaneDelegate delegate;
    PictureOpener opener;
    MainWindow window;
};

/// Where the stores are kept: "Orvane" in the user's folder for the data of programs.
std::filesystem::path supportFolder();

} // namespace orvane
