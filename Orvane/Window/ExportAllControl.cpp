#include "ExportAllControl.h"

#include "AppModel.h"
#include "IconButton.h"
#include "ProgressLine.h"

#include <QHBoxLayout>

namespace orvane {

ExportAllControl::ExportAllControl(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_export(new QToolButton)
    , m_progress(new ProgressLine(tr("Progress of the export")))
    , m_cancel(iconButton("x", tr("Cancel"), tr("Cancel")))
    , m_watch([this] { refresh(); })
{
    m_export->setIcon(icon("folder-up"));
    m_export->setIconSize({16, 16});
    m_export->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_export->setFixedHeight(flatButtonHeight);
    m_export->setToolTip(tr("Export every image in this collection to one folder"));

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    row->addWidget(m_export);
    row->addWidget(m_progress, 0, Qt::AlignVCenter);
    row->addWidget(m_cancel);

    connect(m_export, &QToolButton::clicked, this, [this] { m_model.exportAll(); });
    connect(m_cancel, &QToolButton::clicked, this, [this] { m_model.cancelExportAll(); });
    m_watch.watch(model.exportFolder, model.batchProgress);
    refresh();
}

void ExportAllControl::refresh()
{
    const bool runs = m_model.isExportingAll();
    const BatchProgress& progress = m_model.batchProgress.value();
    const int count = std::max(progress.count, 1);
    const QString text = runs
        ? tr("Exporting %1 of %2").arg(std::min(progress.index + 1, count)).arg(count)
        : tr("Export All");
    m_export->setText(' ' + text); // the space keeps the icon off it
    m_export->setAccessibleName(text);
    m_export->setEnabled(!runs);
    m_progress->setFraction((progress.index + progress.fraction) / count);
    m_progress->setVisible(runs);
    m_cancel->setVisible(runs);
}

} // namespace orvane
