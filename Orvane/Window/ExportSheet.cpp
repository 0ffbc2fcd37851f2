#include "ExportSheet.h"

#include "AppModel.h"
#include "DoubleClickSlider.h"
#include "Icon.h"
#include "PanelControls.h"
#include "SegmentedPicker.h"
#include "Theme.h"
#include "ValueField.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace orvane {

namespace {

constexpr int labelWidth = 76;
constexpr int controlWidth = 372;
constexpr int fieldWidth = 30;
constexpr int buttonHeight = 28;

/// A raw value of the model and what it is called; the key that a picker knows it by is its place.
template <class Value> struct Choice {
    Value value;
    const char* label;
};
constexpr Choice<ExportFormat> formats[] = {
    {ExportFormat::jpeg, QT_TR_NOOP("JPEG")},
    {ExportFormat::png, QT_TR_NOOP("PNG")},
    {ExportFormat::heic, QT_TR_NOOP("HEIC")},
    {ExportFormat::tiff, QT_TR_NOOP("TIFF (16-bit)")},
};
constexpr Choice<Baker::Metadata> policies[] = {
    {Baker::Metadata::keep, QT_TR_NOOP("Keep everything")},
    {Baker::Metadata::stripLocation, QT_TR_NOOP("Remove location")},
    {Baker::Metadata::stripAll, QT_TR_NOOP("Remove all")},
};
constexpr Choice<int> sizes[] = {
    {0, QT_TR_NOOP("Full size")},  {4096, QT_TR_NOOP("4096 px")}, {2048, QT_TR_NOOP("2048 px")},
    {1024, QT_TR_NOOP("1024 px")}, {640, QT_TR_NOOP("640 px")},
};

template <class Choices> SegmentedPicker* picker(const QString& name, const Choices& choices)
{
    SegmentedPicker::Choices segments;
    for (const auto& choice : choices)
        segments.emplace_back(QString::number(segments.size()), ExportSheet::tr(choice.label));
    auto* made = new SegmentedPicker(name, std::move(segments));
    made->setFixedWidth(controlWidth);
    return made;
}

template <class Choices, class Field>
void tie(SegmentedPicker* picker, const Choices& choices, Field& field)
{
    QObject::connect(
        picker, &SegmentedPicker::picked, picker,
        [&choices, &field](const QString& key) { field = choices[key.toInt()].value; });
}

template <class Choices, class Value>
void showChoice(SegmentedPicker* picker, const Choices& choices, const Value& value)
{
    for (size_t i = 0; i < std::size(choices); ++i) {
        if (choices[i].value == value)
            picker->choose(QString::number(i));
    }
}

QLabel* note(const QString& text)
{
    auto* line = new QLabel(text);
    Theme::makeSecondary(*line);
    line->setWordWrap(true);
    line->setFixedWidth(controlWidth);
    return line;
}

/// A label, and at its right a control with the notes below it.
///
///   Size      [ Full size | 4096 px | ... ]
///             Downscale to the longest edge. ...
QWidget* formRow(const QString& label, const std::vector<QWidget*>& column)
{
    auto* row = new QWidget;
    auto* grid = new QGridLayout(row);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(6);
    auto* text = new QLabel(label);
    text->setFixedWidth(labelWidth);
    grid->addWidget(text, 0, 0);
    for (int i = 0; i < int(column.size()); ++i)
        grid->addWidget(column[size_t(i)], i, 1);
    return row;
}

QString look()
{
    return QString("QWidget#choices { background: %1; border-radius: 8px; }"
                   "QPushButton#export { background: %2; color: %3; border-color: %2; }"
                   "QPushButton#export:hover { background: #e4e4e4; }"
                   "QPushButton#export:pressed { background: %4; }"
                   "QPushButton#export:focus { border: 2px solid %5; }"
                   "QPushButton#export:disabled { background: %6; color: %7;"
                   " border-color: %6; }"
                   "QPushButton#share { padding: 0; }"
                   "QLineEdit#percent { padding: 0; font-size: 12px; }")
        .arg(Theme::section.name(), Theme::text.name(), Theme::border.name(),
             Theme::secondaryText.name(), Theme::accent.name(), Theme::raised.name(),
             Theme::disabledText.name());
}

} // namespace

ExportSheet::ExportSheet(AppModel& model, QWidget* parent)
    : QDialog(parent)
    , m_model(model)
    , m_format(picker(tr("Format"), formats))
    , m_metadata(picker(tr("Metadata"), policies))
    , m_size(picker(tr("Size"), sizes))
    , m_quality(new DoubleClickSlider(
          {.minimum = 1, .maximum = 100, .rest = 1, .resets = false, .step = 1}))
    , m_qualityField(new ValueField({}))
    , m_png16(new Toggle(tr("16-bit")))
    , m_png16Note(note(tr("Twice the tonal precision, roughly twice the file. Worth it for "
                          "gradients.")))
    , m_lossless(note(tr("Lossless. Large files.")))
    , m_pixels(note({}))
    , m_share(new QPushButton(icon("share"), {}))
    , m_export(new QPushButton(tr("Export")))
    , m_watch([this] { followModel(); })
{
    setWindowTitle(tr("Export Image"));
    setStyleSheet(look());
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(20, 18, 20, 18);
    column->setSpacing(14);
    auto* title = new QLabel(windowTitle());
    QFont font = title->font();
    font.setPixelSize(15);
    font.setWeight(QFont::Medium);
    title->setFont(font);
    column->addWidget(title);
    column->addWidget(choices());
    column->addWidget(buttons());
    column->setSizeConstraint(QLayout::SetFixedSize);
    // Enter exports, wherever the focus is.
    for (QPushButton* button : findChildren<QPushButton*>())
        button->setAutoDefault(false);
    m_export->setDefault(true);

    connectControls();
    m_watch.watch(model.exportSheetShown, model.exportFormat, model.exportQuality,
                  model.exportMetadata, model.exportPNG16, model.exportLongEdge, model.isExporting);
    followModel();
}

QWidget* ExportSheet::choices()
{
    m_qualityRow = qualityRow();
    auto* choices = new QWidget;
    choices->setObjectName("choices");
    auto* column = new QVBoxLayout(choices);
    column->setContentsMargins(16, 14, 16, 14);
    column->setSpacing(14);
    column->addWidget(formRow(tr("Format"), {m_format, m_png16, m_png16Note, m_lossless}));
    column->insertWidget(1, m_qualityRow);
    column->addWidget(formRow(tr("Metadata"),
                              {m_metadata,
                               note(tr("Location is removed by default — a shared photo shouldn't "
                                       "hand over your address."))}));
    column->addWidget(formRow(
        tr("Size"),
        {m_size, note(tr("Downscale to the longest edge. Full size never enlarges.")), m_pixels}));
    return choices;
}

QWidget* ExportSheet::qualityRow()
{
    m_quality->setObjectName("Export quality");
    m_quality->setAccessibleName(tr("Quality"));
    m_qualityField->setAccessibleName(tr("Quality"));
    m_qualityField->setObjectName("percent");
    m_qualityField->setFixedSize(fieldWidth, 22);
    m_qualityField->setAlignment(Qt::AlignRight);
    auto* control = new QWidget;
    control->setFixedWidth(controlWidth);
    auto* row = new QHBoxLayout(control);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(m_quality, 1);
    row->addWidget(m_qualityField);
    return formRow(tr("Quality"), {control});
}

QWidget* ExportSheet::buttons()
{
    m_export->setObjectName("export");
    m_share->setObjectName("share");
    m_share->setAccessibleName(tr("Share"));
    m_share->setToolTip(tr("Share"));
    auto* cancel = new QPushButton(tr("Cancel"));
    connect(cancel, &QPushButton::clicked, this, &ExportSheet::reject);
    auto* buttons = new QWidget;
    auto* row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(cancel);
    row->addStretch(1);
    row->addWidget(m_share);
    row->addWidget(m_export);
    for (QPushButton* button : {cancel, m_export}) {
        button->setFixedHeight(buttonHeight);
        button->setMinimumWidth(88);
    }
    m_share->setIconSize({16, 16});
    m_share->setFixedSize(40, buttonHeight);
    return buttons;
}

void ExportSheet::connectControls()
{
    tie(m_format, formats, m_model.exportFormat);
    tie(m_metadata, policies, m_model.exportMetadata);
    tie(m_size, sizes, m_model.exportLongEdge);
    const auto setQuality = [this](double percent) {
        m_model.exportQuality = std::clamp(percent, 1.0, 100.0);
        showChoices();
    };
    connect(m_quality, &DoubleClickSlider::numberChanged, this, setQuality);
    connect(m_qualityField, &ValueField::numberTyped, this, setQuality);
    connect(m_png16, &QCheckBox::toggled, this, [this](bool isOn) { m_model.exportPNG16 = isOn; });
    connect(m_share, &QPushButton::clicked, this, [this] { closeAnd(&AppModel::shareImage); });
    connect(m_export, &QPushButton::clicked, this, [this] { closeAnd(&AppModel::performExport); });
}

void ExportSheet::closeAnd(void (AppModel::*act)())
{
    m_model.exportSheetShown = false;
    followModel();
    (m_model.*act)();
}

void ExportSheet::reject()
{
    m_model.exportSheetShown = false;
    QDialog::reject();
}

void ExportSheet::followModel()
{
    const bool isWanted = m_model.exportSheetShown;
    if (!isWanted) {
        hide();
        return;
    }
    showChoices();
    if (isVisible())
        return;
    open();
    activateWindow();
}

void ExportSheet::showChoices()
{
    const ExportFormat format = m_model.exportFormat;
    const bool isPNG = format == ExportFormat::png;
    showChoice(m_format, formats, format);
    showChoice(m_metadata, policies, m_model.exportMetadata.value());
    showChoice(m_size, sizes, m_model.exportLongEdge.value());
    m_quality->setNumber(m_model.exportQuality);
    m_qualityField->setNumber(m_model.exportQuality);
    m_png16->setChecked(m_model.exportPNG16);

    m_qualityRow->setVisible(info(format).lossy);
    m_png16->setVisible(isPNG);
    m_png16Note->setVisible(isPNG);
    m_lossless->setVisible(!info(format).lossy);
    m_pixels->setText(pixelSize());
    m_export->setEnabled(!m_model.isExporting);
    m_share->setEnabled(!m_model.isExporting);
}

QString ExportSheet::pixelSize() const
{
    const std::optional<CIImage> frame = m_model.geometrySource();
    if (!frame)
        return {};
    const int longEdge = m_model.exportLongEdge;
    const CGRect extent = (longEdge > 0 ? AppModel::resizedCI(*frame, longEdge) : *frame).extent();
    return tr("%1 × %2 px").arg(std::lround(extent.width())).arg(std::lround(extent.height()));
}

} // namespace orvane
