#include "ExportDialog.h"

#include "SliderRow.h"
#include "Theme.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>

namespace orvane {

namespace {

struct SizeChoice {
    const char* label;
    int longEdge;
};
constexpr SizeChoice sizes[] = {
    {QT_TRANSLATE_NOOP("orvane::ExportDialog", "Full size"), 0},
    {"4096 px", 4096},
    {"2048 px", 2048},
    {"1024 px", 1024},
    {"640 px", 640},
};

struct MetadataChoice {
    const char* label;
    Baker::Metadata metadata;
};
constexpr MetadataChoice metadataChoices[] = {
    {QT_TRANSLATE_NOOP("orvane::ExportDialog", "Keep everything"), Baker::Metadata::keep},
    {QT_TRANSLATE_NOOP("orvane::ExportDialog", "Remove location"), Baker::Metadata::stripLocation},
    {QT_TRANSLATE_NOOP("orvane::ExportDialog", "Remove all"), Baker::Metadata::stripAll},
};

QLabel* hint(const QString& text)
{
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    Theme::makeSecondary(*label);
    return label;
}

/// A field over the sentence that explains it.
QWidget* explained(QWidget* field, QWidget* explanation)
{
    auto* both = new QWidget;
    auto* column = new QVBoxLayout(both);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    column->addWidget(field);
    column->addWidget(explanation);
    return both;
}

} // namespace

ExportDialog::ExportDialog(const ExportOptions& options, QWidget* parent)
    : QDialog(parent)
    , m_format(new QComboBox)
    , m_quality(new SliderRow(tr("Quality"), {1, 100, 90}))
    , m_sixteenBit(new QCheckBox(tr("16-bit")))
    , m_losslessHint(hint(tr("Lossless. Large files.")))
    , m_metadata(new QComboBox)
    , m_size(new QComboBox)
{
    setWindowTitle(tr("Export Image"));
    for (const ExportFormatInfo& row : exportFormats)
        m_format->addItem(QString::fromUtf8(row.name.data(), qsizetype(row.name.size())));
    for (const MetadataChoice& choice : metadataChoices)
        m_metadata->addItem(tr(choice.label), int(choice.metadata));
    for (const SizeChoice& choice : sizes)
        m_size->addItem(tr(choice.label), choice.longEdge);

    m_format->setCurrentIndex(int(options.format));
    m_quality->setValue(options.quality * 100);
    m_sixteenBit->setChecked(options.png16);
    m_metadata->setCurrentIndex(m_metadata->findData(int(options.metadata)));
    m_size->setCurrentIndex(std::max(0, m_size->findData(options.longEdge)));
    m_format->setObjectName("format");

    m_form = new QFormLayout;
    m_form->setLabelAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_form->setHorizontalSpacing(16);
    m_form->setVerticalSpacing(12);
    m_form->addRow(tr("Format"), explained(m_format, m_losslessHint));
    m_quality->hideLabel();
    m_form->addRow(tr("Quality"), m_quality);
    m_form->addRow(QString(),
                   explained(m_sixteenBit,
                             hint(tr("Twice the tonal precision, roughly twice the file. "
                                     "Worth it for gradients."))));
    m_form->addRow(tr("Metadata"),
                   explained(m_metadata,
                             hint(tr("Location is removed by default — a shared "
                                     "photo shouldn't hand over your address."))));
    m_form->addRow(tr("Size"),
                   explained(m_size,
                             hint(tr("Downscale to the longest edge. Full size "
                                     "never enlarges."))));

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    auto* proceed = buttons->addButton(tr("Export"), QDialogButtonBox::AcceptRole);
    proceed->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_format, &QComboBox::currentIndexChanged, this, &ExportDialog::showWhatApplies);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(20, 20, 20, 16);
    column->setSpacing(20);
    column->addLayout(m_form);
    column->addWidget(buttons);
    column->setSizeConstraint(QLayout::SetFixedSize);
    setMinimumWidth(400);
    showWhatApplies();
}

ExportOptions ExportDialog::options() const
{
    return {.format = exportFormats[size_t(m_format->currentIndex())].format,
            .quality = m_quality->value() / 100,
            .longEdge = m_size->currentData().toInt(),
            .metadata = Baker::Metadata(m_metadata->currentData().toInt()),
            .png16 = m_sixteenBit->isChecked()};
}

void ExportDialog::showWhatApplies()
{
    const ExportFormatInfo& format = exportFormats[size_t(m_format->currentIndex())];
    const bool isPng = format.format == ExportFormat::png;
    m_form->setRowVisible(m_quality, format.lossy);
    m_losslessHint->setVisible(!format.lossy);
    m_form->setRowVisible(m_sixteenBit->parentWidget(), isPng);
}

} // namespace orvane
