#include "ExportOverlay.h"

#include <QKeyEvent>
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
    setFocusPolicy(Qt::StrongFocus);
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

    connect(m_cancel, &QPushButton::clicked, this, &ExportOverlay::cancel);
}

void ExportOverlay::begin()
{
    m_label->setText(tr("Preparing export…"));
    m_cancel->setEnabled(true);
    setGeometry(parentWidget()->rect());
    show();
    raise();
    // Not the button: a Space meant for the picture would press it.
    setFocus();
}

void ExportOverlay::end()
{
    const QWidget* focused = window()->focusWidget();
    const bool hadFocus = focused == this || isAncestorOf(focused);
    hide();
    if (hadFocus)
        parentWidget()->setFocus();
}

void ExportOverlay::cancel()
{
    if (!m_cancel->isEnabled())
        return;
    setFocus();
    m_cancel->setEnabled(false);
    m_label->setText(tr("Stopping…"));
    Q_EMIT cancelled();
}

bool ExportOverlay::eventFilter(QObject* canvas, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(canvas, event);
}

void ExportOverlay::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        cancel();
    else
        QWidget::keyPressEvent(event);
}

void ExportOverlay::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), QColor(0x1b, 0x1b, 0x1b, 200));
}

} // namespace orvane
