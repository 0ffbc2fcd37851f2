#include "CropSection.h"

#include "ModelSlider.h"
#include "PanelControls.h"
#include "SegmentedPicker.h"
#include "Theme.h"

#include <QComboBox>
#include <QLabel>
#include <QVBoxLayout>

namespace orvane {

namespace {

constexpr int ratiosPerLine = 4;

SegmentedPicker::Choices ratios(const AppModel& model)
{
    SegmentedPicker::Choices choices;
    for (const LookItem& aspect : model.aspects)
        choices.emplace_back(QString::fromStdString(aspect.id),
                             QString::fromStdString(aspect.name));
    return choices;
}

/// Values of `cropGuide` with their labels.
constexpr struct {
    const char* id;
    const char* label;
} guides[] = {
    {"thirds", QT_TRANSLATE_NOOP("orvane::CropSection", "Thirds")},
    {"grid", QT_TRANSLATE_NOOP("orvane::CropSection", "Grid")},
    {"diagonal", QT_TRANSLATE_NOOP("orvane::CropSection", "Diagonals")},
    {"golden", QT_TRANSLATE_NOOP("orvane::CropSection", "Golden Ratio")},
    {"cross", QT_TRANSLATE_NOOP("orvane::CropSection", "Cross")},
    {"none", QT_TRANSLATE_NOOP("orvane::CropSection", "None")},
};

} // namespace

CropSection::CropSection(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_edit(new PanelButton("crop", tr("Edit Crop on the Image")))
    , m_aspect(new SegmentedPicker(tr("Aspect Ratio"), ratios(model), ratiosPerLine))
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
    auto* ratioLabel = new QLabel(tr("Aspect Ratio"));
    Theme::makeSecondary(*ratioLabel);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(m_edit);
    column->addWidget(ratioLabel);
    column->addWidget(m_aspect);
    column->addLayout(makeGuideRow());
    column->addWidget(m_straighten);
    column->addLayout(makeFlipRow());

    connect(m_edit, &QPushButton::clicked, this,
            [this] { m_model.cropMode ? m_model.finishCrop() : m_model.enterCrop(); });
    connect(m_aspect, &SegmentedPicker::picked, this,
            [this](const QString& id) { m_model.setAspect(id.toStdString()); });
    m_watch.watch(model.cropMode, model.aspectId, model.cropGuide, model.rotation, model.flipH,
                  model.flipV);
    refresh();
}

QLayout* CropSection::makeGuideRow()
{
    m_guide = new QComboBox;
    m_guide->setAccessibleName(tr("Guide"));
    m_guide->setToolTip(tr("Lines over the picture while it is cropped"));
    for (const auto& guide : guides)
        m_guide->addItem(tr(guide.label), QString(guide.id));
    connect(m_guide, &QComboBox::activated, this,
            [this](int index) { m_model.cropGuide = std::string(guides[index].id); });
    auto* row = labelledRow(tr("Guide"));
    row->addWidget(m_guide, 1);
    return row;
}

QLayout* CropSection::makeFlipRow()
{
    m_flipH = makeFlip("move-horizontal", tr("Flip H"), tr("Flip Horizontal"), "h");
    m_flipV = makeFlip("move-vertical", tr("Flip V"), tr("Flip Vertical"), "v");
    auto* row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(m_flipH, 1);
    row->addWidget(m_flipV, 1);
    return row;
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
    m_guide->setCurrentIndex(m_guide->findData(QString::fromStdString(m_model.cropGuide)));
    m_straighten->refresh();
    m_flipH->setChecked(m_model.flipH);
    m_flipV->setChecked(m_model.flipV);
}

} // namespace orvane
