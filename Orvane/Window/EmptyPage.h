#pragma once

#include <QWidget>

class QPushButton;

namespace orvane {

class IconView;

/// What stands in the canvas's place while no image is open.
class EmptyPage final : public QWidget {
    Q_OBJECT

public:
    explicit EmptyPage(QWidget* parent = nullptr);

    /// While files hover over the window.
    void setDropTargeted(bool isTargeted);
    void takeFocus();

Q_SIGNALS:
    void openAsked();
    void importAsked();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* makeButtons();

    IconView* m_sign;
    QPushButton* m_open = nullptr;
};

} // namespace orvane
