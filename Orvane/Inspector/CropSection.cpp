#include "CropSection.h"

#include "ModelSlider.h"
#include "PanelControls.h"
#include "SegmentedPicker.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace orvane {

namespace {

constexpr int ratiosPerLine = 4;
constexpr int guidesPerLine = 3;

SegmentedPicker::Choices ratios(const AppModel& model)
{
    SegmentedPicker::Choices choices;
    for (const LookItem& aspect : model.aspects)
        choices.emplace_back(QString::fromStdString(aspect.id),
                             QString::fromStdString(aspect.name));
    return choices;
}

/// By the values of `cropGuide`.
SegmentedPicker::Choices guides()
{
    return {{"thirds", CropSection::tr("Thirds")},      {"grid", CropSection::tr("Grid")},
            {"diagonal", CropSection::tr("Diagonals")}, {"golden", CropSection::tr("Golden")},
            {"cross", CropSection::tr("Cross")},        {"none", CropSection::tr("None")}};
}

} // namespace

CropSection::CropSection(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_edit(new PanelButton("crop", tr("Edit Crop on the Image")))
    , m_aspect(new SegmentedPicker(tr("Aspect Ratio"), ratios(model), ratiosPerLine))
    , m_guideLabel(captionLabel(tr("Guide")))
    , m_guide(new SegmentedPicker(tr("Guide"), guides(), guidesPerLine))
    , m_straighten(new ModelSlider(model, tr("Straighten"), {.minimum = -15, .maximum = 15},
                                   {.read = [&model] { return model.rotation.value(); },
                                    .write =
                                        [&model](double degrees) {
                                            model.rotation = degrees;
                                            model.pushHistory();
                                        },
                                    .pressed = [&model] { model.pushHistory(); }},
                                   "°"))
    , m_watch([this] { refresh(); })
{
    m_edit->setCheckable(true);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(m_edit);
    column->addWidget(captionLabel(tr("Aspect Ratio")));
    column->addWidget(m_aspect);
    column->addWidget(m_guideLabel);
    column->addWidget(m_guide);
    column->addWidget(m_straighten);
    column->addLayout(makeFlipRow());

    connect(m_edit, &QPushButton::clicked, this,
            [this] { m_model.cropMode ? m_model.finishCrop() : m_model.enterCrop(); });
    connect(m_aspect, &SegmentedPicker::picked, this,
            [this](const QString& id) { m_model.setAspect(id.toStdString()); });
    connect(m_guide, &SegmentedPicker::picked, this,
            [this](const QString& id) { m_model.cropGuide = id.toStdString(); });
    m_watch.watch(model.cropMode, model.aspectId, model.cropGuide, model.rotation, model.flipH,
                  model.flipV);
    refresh();
}

QLayout* CropSection::makeFlipRow()
{
    m_flipH = makeFlip("move-horizontal", tr("Flip H"), tr("Flip Horizontal"), "h");
    m_flipV = makeFlip("move-vertical", tr("Flip V"), tr("Flip Vertical"), "v");
    return buttonRow({m_flipH, m_flipV});
}

QPushButton* CropSection::makeFlip(const char* icon, const QString& text, const QString& help,
                                   const char* axis)
{
    auto* button = new PanelButton(icon, text, help);
    button->setAccessibleName(help);
    button->setCheckable(true);
    connect(button, &QPushButton::clicked, this, [this, axis] { m_model.flip(axis); });
    return button;
}

void CropSection::refresh()
{
    m_edit->setChecked(m_model.cropMode);
    m_aspect->choose(QString::fromStdString(m_model.aspectId));
    m_guide->choose(QString::fromStdString(m_model.cropGuide));
    m_guide->setVisible(m_model.cropMode);
    m_guideLabel->setVisible(m_model.cropMode);
    m_straighten->refresh();
    m_flipH->setChecked(m_model.flipH);
    m_flipV->setChecked(m_model.flipV);
}

} // namespace orvane
