#pragma once

#include <QProgressBar>

namespace orvane {

/// Progress as a thin line without words.
class ProgressLine final : public QProgressBar {
    Q_OBJECT

public:
    explicit ProgressLine(const QString& name, QWidget* parent = nullptr);

    /// 0..1
    void setFraction(double fraction);
    QSize sizeHint() const override { return {96, 4}; }
    QSize minimumSizeHint() const override { return {24, 4}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace orvane
