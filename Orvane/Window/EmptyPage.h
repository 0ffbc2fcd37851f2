#pragma once

#include <QWidget>

class QLabel;

namespace orvane {

/// What stands in the canvas's place while no image is open.
class EmptyPage final : public QWidget {
    Q_OBJECT

public:
    explicit EmptyPage(QWidget* parent = nullptr);

    /// While files hover over the window.
    void setDropTargeted(bool isTargeted);

Q_SIGNALS:
    void openAsked();
    void importAsked();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* makeButtons();
    void showSign();

    QLabel* m_sign;
    bool m_isTargeted = false;
};

} // namespace orvane
