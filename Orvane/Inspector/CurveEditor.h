#pragma once

#include "CurveEditing.h"

#include <QWidget>

class QAbstractButton;
class QLabel;

namespace orvane {

class ChevronButton;
class CurvePlot;
class SegmentedPicker;
class SliderRow;

/// The tone curves: which channel, its plot, and the selected point in numbers. It keeps a copy of
/// the curves and tells each change of one.
///
///   [ RGB | Red | Green | Blue ]
///   ┌──────────────────────────┐
///   │           plot           │
///   └──────────────────────────┘
///   Point      < >  2 of 3
///   Input      ──●───────   [ 64]
///   Output     ────●─────   [ 80]
class CurveEditor final : public QWidget {
    Q_OBJECT

public:
    using Curve = Adjustments::Curve;
    explicit CurveEditor(QWidget* parent = nullptr);

    /// Without a signal. A channel that is missing shows as a straight line.
    void setCurve(const Curve& curve);
    /// "master", "r", "g" or "b".
    QString channel() const;
    CurvePlot& plot() { return *m_plot; }
    SliderRow& input() { return *m_input; }
    SliderRow& output() { return *m_output; }

Q_SIGNALS:
    void curveEdited(const QString& channel, const CurveEditing::Points& points);
    /// As SliderRow's: from press to release, and round a typed number.
    void editingChanged(bool isEditing);

private:
    void showChannel();
    void showPoint();
    void takeEdit(const CurveEditing::Points& points);
    void movePointTo(double x, double y);
    QWidget* makePointRow();
    SliderRow* makeAxisRow(const QString& axis);
    QAbstractButton* makeStepButton(ChevronButton* button, int step);

    Curve m_curve;
    SegmentedPicker* m_picker;
    CurvePlot* m_plot;
    QAbstractButton* m_previous = nullptr;
    QAbstractButton* m_next = nullptr;
    QLabel* m_place = nullptr; ///< "2 of 3"
    SliderRow* m_input;
    SliderRow* m_output;
};

} // namespace orvane
