#pragma once

#include "AppModel.h"
#include "FieldWatch.h"
#include "OneStep.h"

#include <QWidget>

namespace orvane {

class ColorWell;
class SegmentedPicker;

/// The shape of the frame round the picture, and what fills it.
class CanvasSection final : public QWidget {
    Q_OBJECT

public:
    CanvasSection(AppModel& model, QWidget* parent);
    /// The id of the first shape whose ratio is within 0.001; "off" for any other.
    static std::string shapeOf(double ratio);

private:
    void pickColor(const QColor& color);
    void refresh();

    AppModel& m_model;
    SegmentedPicker* m_shape;
    QWidget* m_fillLabel;
    SegmentedPicker* m_fill;
    QWidget* m_colorRow;
    ColorWell* m_color;
    OneStep m_step;
    FieldWatch m_watch;
};

} // namespace orvane
