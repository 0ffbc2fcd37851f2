#pragma once

#include "AppModel.h"
#include "FieldWatch.h"

#include <QObject>

namespace orvane {

class HistogramView;

/// Floats the histogram in the upper right corner of the canvas while `histogramOn` is true.
class HistogramOverlay final : public QObject {
    Q_OBJECT

public:
    HistogramOverlay(AppModel& model, QWidget* canvas);

    const HistogramView& view() const { return *m_view; }

protected:
    bool eventFilter(QObject* canvas, QEvent* event) override;

private:
    void place();
    void refresh();

    AppModel& m_model;
    QWidget* m_canvas;
    HistogramView* m_view;
    FieldWatch m_watch;
};

} // namespace orvane
