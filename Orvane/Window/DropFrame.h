#pragma once

#include <QWidget>

namespace orvane {

/// A frame over a column that what is dragged would be dropped on. It takes no events of its own.
class DropFrame final : public QWidget {
    Q_OBJECT

public:
    /// Covers the column and follows its size. Hidden at first.
    explicit DropFrame(QWidget* column);

    void setDropTargeted(bool isTargeted);

protected:
    bool eventFilter(QObject* column, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace orvane
