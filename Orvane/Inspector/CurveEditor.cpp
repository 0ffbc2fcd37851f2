#include "CurveEditor.h"

#include "Chevron.h"
#include "CurvePlot.h"
#include "PanelControls.h"
#include "SegmentedPicker.h"
#include "SliderRow.h"
#include "Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace orvane {

namespace {

struct Channel {
    const char* key;
    const char* label;
    QColor tint;
};
const Channel channels[] = {
    {"master", QT_TRANSLATE_NOOP("orvane::CurveEditor", "RGB"), Theme::text},
    {"r", QT_TRANSLATE_NOOP("orvane::CurveEditor", "Red"), {0xe0, 0x6c, 0x6c}},
    {"g", QT_TRANSLATE_NOOP("orvane::CurveEditor", "Green"), {0x6f, 0xc0, 0x78}},
    {"b", QT_TRANSLATE_NOOP("orvane::CurveEditor", "Blue"), {0x7a, 0x9c, 0xf0}},
};

const Channel& channelOf(const QString& key)
{
    for (const Channel& channel : channels) {
        if (key == channel.key)
            return channel;
    }
    return channels[0];
}

SegmentedPicker::Choices choices()
{
    SegmentedPicker::Choices result;
    for (const Channel& channel : channels)
        result.emplace_back(channel.key, CurveEditor::tr(channel.label));
    return result;
}

} // namespace

CurveEditor::CurveEditor(QWidget* parent)
    : QWidget(parent)
    , m_picker(new SegmentedPicker(tr("Channel"), choices()))
    , m_plot(new CurvePlot)
    , m_input(makeAxisRow(tr("Input")))
    , m_output(makeAxisRow(tr("Output")))
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    column->addWidget(m_picker);
    column->addWidget(m_plot);
    column->addWidget(makePointRow());
    column->addWidget(m_input);
    column->addWidget(m_output);

    connect(m_picker, &SegmentedPicker::picked, this, &CurveEditor::showChannel);
    connect(m_plot, &CurvePlot::selectionChanged, this, &CurveEditor::showPoint);
    connect(m_plot, &CurvePlot::pointsEdited, this, &CurveEditor::takeEdit);
    connect(m_plot, &CurvePlot::editingChanged, this, &CurveEditor::editingChanged);
    connect(m_input, &SliderRow::editingChanged, this, &CurveEditor::editingChanged);
    connect(m_output, &SliderRow::editingChanged, this, &CurveEditor::editingChanged);
    connect(m_input, &SliderRow::valueChanged, this,
            [this](double x) { movePointTo(x, m_plot->points()[m_plot->selected()].y); });
    connect(m_output, &SliderRow::valueChanged, this,
            [this](double y) { movePointTo(m_plot->points()[m_plot->selected()].x, y); });
    showChannel();
}

SliderRow* CurveEditor::makeAxisRow(const QString& axis)
{
    return new SliderRow(axis,
                         {.minimum = 0, .maximum = 255, .rest = 0, .resets = false, .step = 1});
}

QWidget* CurveEditor::makePointRow()
{
    auto* row = new QWidget;
    auto* layout = labelledRow(tr("Point"));
    row->setLayout(layout);
    m_previous =
        makeStepButton(new ChevronButton(ChevronButton::Direction::Left, tr("Previous point")), -1);
    m_next =
        makeStepButton(new ChevronButton(ChevronButton::Direction::Right, tr("Next point")), 1);
    m_place = new QLabel;
    layout->addWidget(m_previous);
    layout->addWidget(m_next);
    layout->addWidget(m_place);
    layout->addStretch(1);
    return row;
}

QAbstractButton* CurveEditor::makeStepButton(ChevronButton* button, int step)
{
    connect(button, &ChevronButton::clicked, this,
            [this, step] { m_plot->select(size_t(int(m_plot->selected()) + step)); });
    return button;
}

void CurveEditor::setCurve(const Curve& curve)
{
    m_curve = curve;
    const auto found = m_curve.find(channel().toStdString());
    m_plot->setPoints(found == m_curve.end() ? CurveEditing::identity() : found->second);
    showPoint();
}

QString CurveEditor::channel() const
{
    return m_picker->chosen();
}

void CurveEditor::showChannel()
{
    const Channel& shown = channelOf(channel());
    m_plot->setTint(shown.tint);
    m_plot->setAccessibleName(tr("Tone curve for %1").arg(tr(shown.label)));
    m_plot->select(0);
    setCurve(Curve(m_curve));
}

void CurveEditor::showPoint()
{
    const CurveEditing::Points& points = m_plot->points();
    const size_t index = m_plot->selected();
    m_place->setText(tr("%1 of %2").arg(index + 1).arg(points.size()));
    m_previous->setEnabled(index > 0);
    m_next->setEnabled(index + 1 < points.size());
    m_input->setValue(points[index].x);
    m_output->setValue(points[index].y);
    m_input->setEnabled(CurveEditing::isInterior(points, index));
    for (auto [row, axis] : {std::pair{m_input, tr("Input")}, {m_output, tr("Output")}})
        row->setSpokenName(tr("%1 for point %2").arg(axis).arg(index + 1));
}

void CurveEditor::movePointTo(double x, double y)
{
    m_plot->movePoint(m_plot->selected(), {x, y});
    showPoint(); // where it was held, if it could not go so far
}

void CurveEditor::takeEdit(const CurveEditing::Points& points)
{
    m_curve[channel().toStdString()] = points;
    showPoint();
    Q_EMIT curveEdited(channel(), points);
}

} // namespace orvane
