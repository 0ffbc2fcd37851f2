#pragma once

#include "AppModel.h"
#include "FieldWatch.h"

#include <QWidget>

class QLayout;
class QPushButton;

namespace orvane {

class ModelSlider;
class SegmentedPicker;

/// The way into the crop tool, its ratio and guide; straightening and mirroring.
class CropSection final : public QWidget {
    Q_OBJECT

public:
    CropSection(AppModel& model, QWidget* parent);

private:
    QLayout* makeFlipRow();
    QPushButton* makeFlip(const char* icon, const QString& text, const QString& help,
                          const char* axis);
    void refresh();

    AppModel& m_model;
    QPushButton* m_edit;
    SegmentedPicker* m_aspect;
    QWidget* m_guideLabel;
    SegmentedPicker* m_guide; ///< shown while the tool is open
    ModelSlider* m_straighten;
    QPushButton* m_flipH = nullptr;
    QPushButton* m_flipV = nullptr;
    FieldWatch m_watch;
};

} // namespace orvane
