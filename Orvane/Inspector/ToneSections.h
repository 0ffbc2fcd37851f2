#pragma once

#include "AppModel.h"
#include "FieldWatch.h"
#include "OneStep.h"

#include <QWidget>

namespace orvane {

class CurveEditor;
class LevelsView;

/// The tone curves of the model.
class CurvesSection final : public QWidget {
    Q_OBJECT

public:
    CurvesSection(AppModel& model, QWidget* parent);
    static bool isEdited(const AppModel& model);

private:
    CurveEditor* m_editor;
    OneStep m_step;
    FieldWatch m_watch;
};

/// The levels of the model. While it can be seen, the model counts the picture for it.
class LevelsSection final : public QWidget {
    Q_OBJECT

public:
    LevelsSection(AppModel& model, QWidget* parent);
    ~LevelsSection() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    AppModel& m_model;
    LevelsView* m_view;
    OneStep m_step;
    FieldWatch m_watch;
    FieldWatch m_histogramWatch;
};

} // namespace orvane
