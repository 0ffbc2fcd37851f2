#include "LevelsView.h"

#include "LevelsPlot.h"
#include "PanelControls.h"
#include "SliderRow.h"
#include "Theme.h"

#include <QGridLayout>
#include <QLabel>

#include <cmath>

namespace orvane {

LevelsView::LevelsView(QWidget* parent)
    : QWidget(parent)
    , m_plot(new LevelsPlot)
    , m_readout(new QLabel)
    , m_blackOut(makeOutputRow(tr("Output black"), "levelsBlackOut", &Levels::blackOut))
    , m_whiteOut(makeOutputRow(tr("Output white"), "levelsWhiteOut", &Levels::whiteOut))
{
    m_readout->setAlignment(Qt::AlignCenter);
    Theme::makeSecondary(*m_readout);

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(4);
    grid->setColumnStretch(1, 1);
    grid->addWidget(m_plot, 0, 0, 1, 2);
    grid->addWidget(m_readout, 1, 0, 1, 2);
    grid->addWidget(rowLabel(tr("Output")), 2, 0);
    grid->addWidget(m_blackOut, 2, 1);
    grid->addWidget(m_whiteOut, 3, 1);

    connect(m_plot, &LevelsPlot::editingChanged, this, &LevelsView::editingChanged);
    connect(m_plot, &LevelsPlot::edited, this, [this](const QString& key, double value) {
        m_levels = m_plot->levels();
        showLevels();
        Q_EMIT levelEdited(key, value);
    });
    showLevels();
}

SliderRow* LevelsView::makeOutputRow(const QString& name, const char* key, double Levels::*field)
{
    auto* row =
        new SliderRow(name, {.minimum = 0, .maximum = 255, .rest = Levels().*field, .step = 1});
    row->hideLabel();
    connect(row, &SliderRow::editingChanged, this, &LevelsView::editingChanged);
    connect(row, &SliderRow::valueChanged, this, [this, key, field](double value) {
        m_levels.*field = value;
        m_plot->setLevels(m_levels);
        Q_EMIT levelEdited(key, value);
    });
    return row;
}

void LevelsView::setLevels(const Levels& levels)
{
    m_levels = levels;
    m_plot->setLevels(levels);
    showLevels();
}

void LevelsView::setHistogram(const Histogram& histogram)
{
    m_plot->setHistogram(histogram);
}

QString LevelsView::readout() const
{
    return m_readout->text();
}

void LevelsView::showLevels()
{
    m_readout->setText(tr("Black %1   Gamma %2   White %3")
                           .arg(std::lround(m_levels.blackIn))
                           .arg(m_levels.gamma / 100, 0, 'f', 2)
                           .arg(std::lround(m_levels.whiteIn)));
    m_blackOut->setValue(m_levels.blackOut);
    m_whiteOut->setValue(m_levels.whiteOut);
}

} // namespace orvane
