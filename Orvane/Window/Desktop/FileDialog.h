#pragma once

#include <QFileDialog>

#include <functional>

namespace orvane {

class FileIcons;

/// The toolkit's file dialog with the looks of this program. It offers the places where pictures
/// lie, cards and disks among them, and neither renames nor deletes.
class FileDialog final : public QFileDialog {
    Q_OBJECT

public:
    /// The icons must outlive it.
    FileDialog(QWidget* over, const QString& title, FileIcons& icons);

    /// Asked before the choice is taken; the dialog stays open while it says no.
    std::function<bool()> mayAccept;

    void done(int result) override;

private:
    void dress();
    void forbidChanges();
};

} // namespace orvane
