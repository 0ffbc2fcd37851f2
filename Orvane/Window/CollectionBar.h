#pragma once

#include "FieldWatch.h"

#include <QWidget>

#include <filesystem>
#include <functional>
#include <vector>

class QToolButton;

namespace orvane {

class AppModel;
class DropFrame;

/// The strip under the canvas: what can be done with the open set, and, with more than one image,
/// the filmstrip.
class CollectionBar final : public QWidget {
    Q_OBJECT

public:
    /// Adds files to the session.
    using OpenFiles = std::function<void(const std::vector<std::filesystem::path>&)>;

    CollectionBar(AppModel& model, OpenFiles openFiles, QWidget* parent = nullptr);

    static constexpr int rowHeight = 38;
    static constexpr int fullHeight = 116; ///< with the filmstrip

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* controls();
    QWidget* strip();
    void refresh();

    AppModel& m_model;
    OpenFiles m_openFiles;
    std::vector<QWidget*> m_withOne; ///< shown with at least one image
    std::vector<QWidget*> m_withSeveral;
    std::vector<QWidget*> m_withStyle; ///< of use once a style has been copied
    DropFrame* m_dropFrame; ///< shown while something that can be dropped here hovers
    FieldWatch m_watch;
};

} // namespace orvane
