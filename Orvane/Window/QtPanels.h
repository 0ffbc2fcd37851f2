#pragma once

#include "Panels.h"

class QWidget;

namespace orvane {

/// With the format's extension at its end, unless it has one of the format's.
std::filesystem::path withExtension(std::filesystem::path path, const ExportFormatInfo& format);

/// The panels as modal dialogs over a window.
class QtPanels final : public Panels {
public:
    /// The window may be set later, and must outlive the panels' use.
    void setWindow(QWidget* window) { m_window = window; }

    std::vector<std::filesystem::path> picturesToOpen() override;
    std::optional<std::filesystem::path> exportTarget(const std::filesystem::path& suggestion,
                                                      const ExportFormatInfo& format) override;
    void alert(const QString& message, const QString& informative) override;
    bool confirm(const QString& message, const QString& informative,
                 const QString& action) override;

private:
    QWidget* m_window = nullptr;
    QString m_openFolder; ///< where the last choice was made; empty: the present folder
};

} // namespace orvane
