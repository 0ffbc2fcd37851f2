#include "ToneSections.h"

#include "CurveEditor.h"
#include "LevelsView.h"

#include <QVBoxLayout>

namespace orvane {

namespace {

template <class View> View* filling(QWidget* section, View* view)
{
    auto* column = new QVBoxLayout(section);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(view);
    return view;
}

template <class View> void keepOneStep(View* view, OneStep& step)
{
    QObject::connect(view, &View::editingChanged, view,
                     [&step](bool isEditing) { isEditing ? step.begin() : step.end(); });
}

} // namespace

CurvesSection::CurvesSection(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_editor(filling(this, new CurveEditor))
    , m_step(model)
    , m_watch([this, &model] { m_editor->setCurve(model.curve); })
{
    keepOneStep(m_editor, m_step);
    connect(m_editor, &CurveEditor::curveEdited, this,
            [this, &model](const QString& channel, const CurveEditing::Points& points) {
                m_step.take([&] { model.setCurve(channel.toStdString(), points); });
            });
    m_watch.watch(model.curve);
    m_watch.refresh();
}

bool CurvesSection::isEdited(const AppModel& model)
{
    return CurveEditing::isBent(model.curve);
}

LevelsSection::LevelsSection(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_view(filling(this, new LevelsView))
    , m_step(model)
    , m_watch([this] { m_view->setLevels(m_model.levels()); })
    , m_histogramWatch([this] { m_view->setHistogram(m_model.histogram); })
{
    keepOneStep(m_view, m_step);
    connect(m_view, &LevelsView::levelEdited, this, [this](const QString& key, double value) {
        m_step.take([&] { m_model.setLevels(key.toStdString(), value); });
    });
    m_watch.watch(model.adjust);
    m_watch.refresh();
    m_histogramWatch.watch(model.histogram);
    m_histogramWatch.refresh();
}

LevelsSection::~LevelsSection()
{
    m_model.setHistogramWanted(false);
}

void LevelsSection::showEvent(QShowEvent*)
{
    m_model.setHistogramWanted(true);
}

void LevelsSection::hideEvent(QHideEvent*)
{
    m_model.setHistogramWanted(false);
}

} // namespace orvane
