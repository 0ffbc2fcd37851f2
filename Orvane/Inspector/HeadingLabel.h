#pragma once

#include <QLabel>

namespace orvane {

/// The title over a group of sections. Screen readers know it for a heading, and can go from one to
/// the next.
class HeadingLabel final : public QLabel {
    Q_OBJECT

public:
    explicit HeadingLabel(const QString& title, QWidget* parent = nullptr);
};

} // namespace orvane
