#pragma once

#include "Desktop.h"
#include "FilePanels.h"
#include "UserDefaults.h"

#include <QMainWindow>
#include <QPointer>

namespace orvane {

/// The desktop behind the window. The window may come later, and go at any time, even while a
/// question is open: then that was closed.
class QtDesktop final : public Desktop {
public:
    QtDesktop() = default;

    void setWindow(QMainWindow* window) { m_window = window; }

    size_t ask(const Alert& alert) override;
    std::vector<std::filesystem::path> choose(const OpenPanel& panel) override;
    std::optional<std::filesystem::path> chooseTarget(const SavePanel& panel) override;

    std::optional<PastedPicture> pastedPicture() override;
    std::vector<std::filesystem::path> pastedFiles() override;

    void reveal(const std::filesystem::path& path) override;
    void share(const std::filesystem::path& file) override;
    void openAddress(const std::string& address) override;

    bool hasWindow() const override { return m_window; }
    void showChrome(const WindowChrome& chrome) override;

private:
    QPointer<QMainWindow> m_window;
    UserDefaults m_defaults;
    FilePanels m_panels{m_defaults};
};

} // namespace orvane
