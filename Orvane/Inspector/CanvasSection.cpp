#include "CanvasSection.h"

#include "ColorWell.h"
#include "CropRatio.h"
#include "PanelControls.h"
#include "SegmentedPicker.h"

#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

/// How far a stored ratio may be from a shape's.
constexpr double ratioReach = 0.001;

QString text(std::string_view ascii)
{
    return QString::fromLatin1(ascii.data(), qsizetype(ascii.size()));
}

SegmentedPicker::Choices shapes()
{
    SegmentedPicker::Choices choices;
    for (const CanvasShape& shape : canvasShapes)
        choices.emplace_back(text(shape.id), text(shape.name));
    return choices;
}

} // namespace

CanvasSection::CanvasSection(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_shape(new SegmentedPicker(tr("Shape"), shapes()))
    , m_fillLabel(captionLabel(tr("Fill")))
    , m_fill(new SegmentedPicker(
          tr("Fill"), {{"blur", tr("Blur")}, {"edge", tr("Repeat Edge")}, {"color", tr("Color")}}))
    , m_colorRow(new QWidget)
    , m_color(new ColorWell(tr("Color")))
    , m_step(model)
    , m_watch([this] { refresh(); })
{
    auto* colorRow = labelledRow(tr("Color"));
    colorRow->addStretch(1);
    colorRow->addWidget(m_color);
    m_colorRow->setLayout(colorRow);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(captionLabel(tr("Shape")));
    column->addWidget(m_shape);
    column->addWidget(m_fillLabel);
    column->addWidget(m_fill);
    column->addWidget(m_colorRow);

    connect(m_shape, &SegmentedPicker::picked, this,
            [this](const QString& id) { m_model.setCanvasShape(id.toStdString()); });
    connect(m_fill, &SegmentedPicker::picked, this, [this](const QString& fill) {
        m_model.canvasFill = fill.toStdString();
        m_model.commitHistory();
    });
    connect(m_color, &ColorWell::colorPicked, this, &CanvasSection::pickColor);
    connect(m_color, &ColorWell::pickEnded, this, [this] { m_step.end(); });
    m_watch.watch(model.canvasAspect, model.canvasFill, model.canvasColor);
    refresh();
}

std::string CanvasSection::shapeOf(double ratio)
{
    const auto* const shape =
        std::find_if(canvasShapes.begin(), canvasShapes.end(), [&](const CanvasShape& candidate) {
            return std::abs(candidate.aspect - ratio) <= ratioReach;
        });
    return std::string(shape == canvasShapes.end() ? canvasShapes[0].id : shape->id);
}

void CanvasSection::pickColor(const QColor& color)
{
    m_step.begin();
    m_model.canvasColor = color.name().toStdString();
    m_model.pushHistory();
}

void CanvasSection::refresh()
{
    const bool hasCanvas = m_model.canvasAspect > 0;
    m_shape->choose(QString::fromStdString(shapeOf(m_model.canvasAspect)));
    m_fill->choose(QString::fromStdString(m_model.canvasFill));
    m_color->setHex(m_model.canvasColor);
    m_fillLabel->setVisible(hasCanvas);
    m_fill->setVisible(hasCanvas);
    m_colorRow->setVisible(hasCanvas && m_model.canvasFill.value() == "color");
}

} // namespace orvane
