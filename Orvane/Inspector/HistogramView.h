#pragma once

#include "AppModelFields.h"

#include <QWidget>

namespace orvane {

/// The histogram that floats over the canvas. The mouse goes through it to the picture.
class HistogramView final : public QWidget {
    Q_OBJECT

public:
    explicit HistogramView(QWidget* parent = nullptr);

    /// An empty one shows that there is no picture.
    void setHistogram(const Histogram& histogram);
    QSize sizeHint() const override { return {260, 150}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Histogram m_histogram;
};

} // namespace orvane
