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
    /// The message stands above all else; it may be empty. The icons must outlive the dialog.
    FileDialog(QWidget* over, const QString& title, const QString& message, FileIcons& icons);

    /// Where there is no choice among kinds of files.
    void hideKinds();

    /// Asked before the choice is taken; the dialog stays open while it says no.
    std::function<bool()> mayAccept;

    void done(int result) override;

private:
    void dress();
    void addMessage(const QString& message);
    void forbidChanges();
};

} // namespace orvane
