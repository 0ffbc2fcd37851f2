#pragma once

#include <QWidget>

#include <functional>

namespace orvane {

/// What must be understood of saving and exporting, and the keys of everything. Its text can be
/// selected, and scrolled by keys; Escape closes it.
class HelpWindow final : public QWidget {
    Q_OBJECT

public:
    /// The keys of an action, the first one first, as this desktop writes them.
    using Keys = std::function<QStringList(const char* actionId)>;

    explicit HelpWindow(const Keys& keys, QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace orvane
