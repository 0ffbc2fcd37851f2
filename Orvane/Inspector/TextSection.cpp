#include "TextSection.h"

#include "ColorWell.h"
#include "FontPicker.h"
#include "Icon.h"
#include "LayerList.h"
#include "ModelSlider.h"
#include "PanelControls.h"
#include "RowList.h"
#include "Theme.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace orvane {

namespace {

constexpr int textLines = 3;
constexpr double percent = 100;

/// A field of a few lines, which Tab leaves.
class CaptionField final : public QPlainTextEdit {
public:
    CaptionField()
    {
        setTabChangesFocus(true);
        setFixedHeight(minimumSizeHint().height());
    }
    QSize minimumSizeHint() const override
    {
        return {80, textLines * QFontMetrics(font()).lineSpacing() + 16};
    }
};

QString fieldLook()
{
    return QString("QPlainTextEdit { background: %1; border: 1px solid %2; border-radius: %3px;"
                   " padding: 2px 1px; }"
                   "QPlainTextEdit:focus { border-color: %4; }")
        .arg(Theme::field.name(), Theme::border.name())
        .arg(Theme::radius)
        .arg(Theme::accent.name());
}

} // namespace

TextSection::TextSection(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_list(new RowList(tr("Texts")))
    , m_step(model)
    , m_details(makeDetails())
    , m_watch([this] { refresh(); })
{
    auto* add = new PanelButton("type", tr("Add Text"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 2, 0, 2);
    column->setSpacing(8);
    column->addWidget(add);
    column->addWidget(m_list);
    column->addWidget(m_details);
    setTabOrder(add, m_list);
    setTabOrder(m_list, m_details);

    // What is typed next is the new caption's text.
    connect(add, &QPushButton::clicked, this, [this] {
        m_model.addText();
        m_watch.refresh();
        m_text->setFocus(Qt::OtherFocusReason);
        m_text->selectAll();
    });
    connect(m_list, &RowList::picked, this,
            [this](const std::string& id) { m_model.selectText(id); });
    m_watch.watch(model.texts, model.selectedTextID);
    refresh();
}

/// Null with none.
const AppModel::TextLayer* TextSection::selected() const
{
    const auto& layers = m_model.texts.value();
    const size_t index = LayerList::indexOf(layers, m_model.selectedTextID.value());
    return index < layers.size() ? &layers[index] : nullptr;
}

QWidget* TextSection::makeDetails()
{
    auto* details = new QWidget;
    auto* column = new QVBoxLayout(details);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeText());
    column->addSpacing(6);
    m_font = new FontPicker(tr("Font"));
    auto* fontRow = labelledRow(tr("Font"));
    fontRow->addWidget(m_font, 1);
    column->addLayout(fontRow);
    column->addSpacing(2);
    connect(m_font, &FontPicker::familyPicked, this, [this](const QString& family) {
        m_step.take([&] { m_model.setTextFont(m_model.selectedTextID, family.toStdString()); });
    });
    addSliders(*column);

    m_color = new ColorWell(tr("Color"));
    auto* colorRow = labelledRow(tr("Color"));
    colorRow->addStretch(1);
    colorRow->addWidget(m_color);
    column->addLayout(colorRow);
    connect(m_color, &ColorWell::colorPicked, this, [this](const QColor& color) {
        m_step.begin();
        m_model.setTextColor(m_model.selectedTextID, color.name().toStdString());
    });
    connect(m_color, &ColorWell::pickEnded, this, [this] { m_step.end(); });

    m_shadow = new Toggle(tr("Shadow"));
    column->addWidget(m_shadow);
    connect(m_shadow, &QAbstractButton::clicked, this,
            [this](bool isOn) { m_model.setTextShadow(m_model.selectedTextID, isOn); });
    column->addWidget(makeLayerRow());
    column->addSpacing(6);
    auto* remove = new PanelButton("trash-2", tr("Remove Text"));
    column->addWidget(remove);
    connect(remove, &QPushButton::clicked, this,
            [this] { m_model.deleteText(m_model.selectedTextID); });
    return details;
}

QWidget* TextSection::makeText()
{
    m_text = new CaptionField;
    m_text->setAccessibleName(tr("Text"));
    m_text->setPlaceholderText(tr("Text"));
    m_text->setStyleSheet(fieldLook());
    connect(m_text, &QPlainTextEdit::textChanged, this, [this] {
        if (!m_isShowing)
            m_model.setText(m_model.selectedTextID, m_text->toPlainText().toStdString());
    });
    return m_text;
}

void TextSection::addSliders(QVBoxLayout& column)
{
    using Layer = AppModel::TextLayer;
    const auto add = [&](const QString& label, const SliderRow::Range& range, double Layer::*field,
                         auto write) {
        const auto read = [this, field, rest = range.rest] {
            const Layer* layer = selected();
            return layer ? layer->*field * percent : rest;
        };
        const auto writeSelected = [this, write](double shown) {
            if (const Layer* layer = selected())
                write(Layer(*layer), shown / percent);
        };
        m_sliders.push_back(new ModelSlider(m_model, label, range, {read, writeSelected}));
        column.addWidget(m_sliders.back());
    };
    add(tr("Size"), {1, 30, 6}, &Layer::size,
        [this](const Layer& layer, double size) { m_model.setTextSize(layer.id, size); });
    add(tr("Position X"), {0, 100, 50}, &Layer::x,
        [this](const Layer& layer, double x) { m_model.setTextPosition(layer.id, x, layer.y); });
    add(tr("Position Y"), {0, 100, 85}, &Layer::y,
        [this](const Layer& layer, double y) { m_model.setTextPosition(layer.id, layer.x, y); });
}

QWidget* TextSection::makeLayerRow()
{
    auto* widget = new QWidget;
    auto* row = labelledRow(tr("Layer"));
    widget->setLayout(row);
    m_place = new QLabel;
    m_backward = new GlyphButton(icon("arrow-down"), tr("Send backward"));
    m_forward = new GlyphButton(icon("arrow-up"), tr("Bring forward"));
    row->addWidget(m_place, 1);
    row->addWidget(m_backward);
    row->addWidget(m_forward);
    for (const auto& [button, forward] : {std::pair{m_backward, false}, {m_forward, true}}) {
        connect(button, &QAbstractButton::clicked, this, [this, isForward = forward] {
            m_model.moveText(m_model.selectedTextID, isForward);
        });
    }
    return widget;
}

void TextSection::refresh()
{
    showList();
    showSelected();
}

void TextSection::showList()
{
    std::vector<RowList::Row> rows;
    for (const AppModel::TextLayer& layer : m_model.texts.value()) {
        const QString text = QString::fromStdString(layer.text).simplified();
        rows.push_back({.id = layer.id,
                        .text = text.isEmpty() ? tr("Empty") : text,
                        .isCurrent = layer.id == m_model.selectedTextID.value(),
                        .isFaint = text.isEmpty()});
    }
    m_list->show(rows);
}

void TextSection::showSelected()
{
    const AppModel::TextLayer* layer = selected();
    m_details->setVisible(layer);
    if (!layer)
        return;
    // What is being typed has come from here: setting it again would move the cursor.
    const QString text = QString::fromStdString(layer->text);
    if (m_text->toPlainText() != text) {
        m_isShowing = true;
        m_text->setPlainText(text);
        m_isShowing = false;
    }
    m_font->setFamily(QString::fromStdString(layer->font));
    for (ModelSlider* slider : m_sliders)
        slider->refresh();
    m_color->setHex(layer->colorHex);
    m_shadow->setChecked(layer->shadow);

    const int number = m_model.textLayerNumber(layer->id);
    const int count = int(m_model.texts.value().size());
    m_place->setText(tr("%1 of %2").arg(number).arg(count));
    m_backward->setEnabled(number > 1);
    m_forward->setEnabled(number < count);
}

} // namespace orvane
