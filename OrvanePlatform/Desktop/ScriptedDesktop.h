#pragma once

#include "Desktop.h"

#include <deque>
#include <stdexcept>
#include <utility>

namespace orvane {

/// A desktop for tests: it answers from a script and keeps what it was asked. A question that the
/// script does not expect throws, so that no test passes over one.
class ScriptedDesktop final : public Desktop {
public:
    // What will be answered, in order.
    std::deque<size_t> answers; ///< buttons of alerts that have any
    std::deque<std::vector<std::filesystem::path>> choices;
    std::deque<std::optional<std::filesystem::path>> targets;
    std::optional<PastedPicture> pasteboardPicture;
    std::vector<std::filesystem::path> pasteboardFiles;
    bool isWindowShown = true;

    // What was asked and told.
    std::vector<Alert> alerts;
    std::vector<OpenPanel> openPanels;
    std::vector<SavePanel> savePanels;
    std::vector<std::filesystem::path> revealed;
    std::vector<std::filesystem::path> shared;
    std::vector<std::string> addresses;
    WindowChrome chrome; ///< the last

    /// The alerts since the last call.
    std::vector<Alert> takeAlerts() { return std::exchange(alerts, {}); }

    size_t ask(const Alert& alert) override
    {
        alerts.push_back(alert);
        return alert.buttons.empty() ? 0 : next(answers, alert.message);
    }
    std::vector<std::filesystem::path> choose(const OpenPanel& panel) override
    {
        openPanels.push_back(panel);
        return next(choices, panel.message);
    }
    std::optional<std::filesystem::path> chooseTarget(const SavePanel& panel) override
    {
        savePanels.push_back(panel);
        return next(targets, panel.suggestedName);
    }
    std::optional<PastedPicture> pastedPicture() override { return pasteboardPicture; }
    std::vector<std::filesystem::path> pastedFiles() override { return pasteboardFiles; }
    void reveal(const std::filesystem::path& path) override { revealed.push_back(path); }
    void share(const std::filesystem::path& file) override { shared.push_back(file); }
    void openAddress(const std::string& address) override { addresses.push_back(address); }
    bool hasWindow() const override { return isWindowShown; }
    void showChrome(const WindowChrome& shown) override { chrome = shown; }

private:
    template <class T> static T next(std::deque<T>& script, const std::string& question)
    {
        if (script.empty())
            throw std::logic_error("The script has no answer to: " + question);
        T answer = std::move(script.front());
        script.pop_front();
        return answer;
    }
};

} // namespace orvane
