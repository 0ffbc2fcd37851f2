#pragma once

#include "AppModel.h"
#include "FieldWatch.h"
#include "HistoryLabels.h"

#include <QListView>

class QStringListModel;

namespace orvane {

/// The steps of the edit, newest first, as high as they are many. A click or Enter goes to one.
class HistorySection final : public QListView {
    Q_OBJECT

public:
    HistorySection(AppModel& model, QWidget* parent);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    /// The row that stands for the edit as it is.
    int currentRow() const;

protected:
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    void refresh();
    void jumpTo(const QModelIndex& row);

    AppModel& m_model;
    QStringListModel* m_steps;
    HistoryLabels m_labels;
    FieldWatch m_watch;
};

} // namespace orvane
