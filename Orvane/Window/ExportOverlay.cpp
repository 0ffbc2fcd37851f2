#include "ExportOverlay.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace orvane {

ExportOverlay::ExportOverlay(QWidget* canvas)
    : QWidget(canvas)
    , m_label(new QLabel(tr("Preparing export…")))
    , m_cancel(new QPushButton(tr("Cancel")))
{
    setCursor(Qt::ArrowCursor);
    auto* progress = new QProgressBar;
    progress->setRange(0, 0);
    progress->setTextVisible(false);
    progress->setFixedSize(180, 6);
    auto* column = new QVBoxLayout(this);
    column->setSpacing(12);
    column->addStretch(1);
    column->addWidget(m_label, 0, Qt::AlignHCenter);
    column->addWidget(progress, 0, Qt::AlignHCenter);
    column->addWidget(m_cancel, 0, Qt::AlignHCenter);
    column->addStretch(1);
    hide();
    canvas->installEventFilter(this);

    connect(m_cancel, &QPushButton::clicked, this, [this] {
        m_cancel->setEnabled(false);
        m_label->setText(tr("Stopping…"));
        Q_EMIT cancelled();
    });
}

void ExportOverlay::begin()
{
    m_label->setText(tr("Preparing export…"));
    m_cancel->setEnabled(true);
    setGeometry(parentWidget()->rect());
    show();
    raise();
    m_cancel->setFocus();
}

bool ExportOverlay::eventFilter(QObject* canvas, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(canvas, event);
}

void ExportOverlay::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), QColor(0x1b, 0x1b, 0x1b, 200));
}

} // namespace orvane
