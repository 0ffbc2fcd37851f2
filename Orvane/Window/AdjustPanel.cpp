#include "AdjustPanel.h"

#include "Schema.h"
#include "SliderRow.h"
#include "Theme.h"

#include <QLabel>
#include <QPainter>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace orvane {

namespace {

constexpr int panelWidth = 320;
constexpr int headerHeight = 32;

/// The sliders that the panel shows, in the catalogue's order and under its groups.
constexpr std::string_view shownKeys[] = {"exposure", "contrast", "saturation"};

bool isShown(const Schema::File::Key& key)
{
    return std::find(std::begin(shownKeys), std::end(shownKeys), key.key) != std::end(shownKeys);
}

/// A section's ground: a rounded field a little lighter than the panel.
class SectionGround final : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Theme::border);
        painter.setBrush(Theme::section);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::radius,
                                Theme::radius);
    }
};

QLabel* header(const std::string& title)
{
    auto* label = new QLabel(QString::fromStdString(title));
    label->setFixedHeight(headerHeight);
    QFont font = label->font();
    font.setWeight(QFont::Medium);
    label->setFont(font);
    return label;
}

} // namespace

AdjustPanel::AdjustPanel(QWidget* parent)
    : QScrollArea(parent)
{
    setFixedWidth(panelWidth);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);

    auto* content = new QWidget;
    auto* sections = new QVBoxLayout(content);
    sections->setContentsMargins(8, 8, 8, 8);
    sections->setSpacing(8);
    for (const Schema::File::Group& group : Schema::groups()) {
        if (std::none_of(group.keys.begin(), group.keys.end(), isShown))
            continue;
        auto* ground = new SectionGround;
        auto* rows = new QVBoxLayout(ground);
        rows->setContentsMargins(12, 0, 12, 10);
        rows->setSpacing(4);
        rows->addWidget(header(group.label));
        for (const Schema::File::Key& key : group.keys) {
            if (!isShown(key))
                continue;
            auto* row =
                new SliderRow(QString::fromStdString(key.label), {key.min, key.max, key.def});
            connect(row, &SliderRow::valueChanged, this,
                    [this, name = key.key](double value) { Q_EMIT adjusted(name, value); });
            m_rows[key.key] = row;
            m_rest[key.key] = key.def;
            rows->addWidget(row);
        }
        sections->addWidget(ground);
    }
    sections->addStretch(1);
    setWidget(content);
}

void AdjustPanel::showState(const EditState& state)
{
    for (const auto& [key, row] : m_rows) {
        const QSignalBlocker quiet(row);
        const auto value = state.adjust.find(key);
        row->setValue(value == state.adjust.end() ? m_rest.at(key) : value->second);
    }
}

} // namespace orvane
