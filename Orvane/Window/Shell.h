#pragma once

namespace orvane {

class AppModel;
class Desktop;

/// What commands act on: the model, the desktop, and the window round them.
class Shell {
public:
    Shell(AppModel& shellModel, Desktop& shellDesktop)
        : model(shellModel)
        , desktop(shellDesktop)
    {
    }
    virtual ~Shell() = default;

    AppModel& model;
    Desktop& desktop;

    virtual bool isInspectorShown() const = 0;
    virtual void showInspector(bool shown) = 0;
    virtual bool isSidebarShown() const = 0;
    virtual void showSidebar(bool shown) = 0;
    virtual bool isFullScreen() const = 0;
    virtual void showFullScreen(bool full) = 0;
    virtual void openHelp() = 0;
    virtual void openSettings() = 0;
    virtual void closeWindow() = 0;
};

} // namespace orvane
