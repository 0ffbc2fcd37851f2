#pragma once

#include <QWidget>

class QPushButton;

namespace orvane {

/// The left column: photos to choose from. Until the library is connected it says what that would
/// give, and offers it.
class SourceSidebar final : public QWidget {
    Q_OBJECT

public:
    explicit SourceSidebar(QWidget* parent = nullptr);

    QSize sizeHint() const override;

Q_SIGNALS:
    void connectAsked();

private:
    QWidget* makeTitle();
    QWidget* makeInvitation();
};

} // namespace orvane
