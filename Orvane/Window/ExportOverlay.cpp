#include "ExportOverlay.h"

#include "AppModel.h"
#include "ProgressLine.h"
#include "Theme.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace orvane {

namespace {

constexpr int dimming = 150; ///< of 255
constexpr int cardWidth = 240;

QString look()
{
    return QString("QWidget#card { background: %1; border: 1px solid %2; border-radius: 8px; }")
        .arg(Theme::section.name(), Theme::border.name());
}

} // namespace

ExportOverlay::ExportOverlay(AppModel& model, QWidget* canvas)
    : QWidget(canvas)
    , m_model(model)
    , m_progress(new ProgressLine(tr("Progress of the export")))
    , m_watch([this] { refresh(); })
{
    setCursor(Qt::ArrowCursor);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Preparing export…"));
    setStyleSheet(look());
    auto* cancel = new QPushButton(tr("Cancel"));
    cancel->setFixedHeight(28);
    auto* card = new QWidget;
    card->setObjectName("card");
    card->setFixedWidth(cardWidth);
    auto* column = new QVBoxLayout(card);
    column->setContentsMargins(20, 18, 20, 18);
    column->setSpacing(14);
    column->addWidget(new QLabel(tr("Preparing export…")), 0, Qt::AlignHCenter);
    column->addWidget(m_progress);
    column->addWidget(cancel, 0, Qt::AlignHCenter);
    auto* middle = new QVBoxLayout(this);
    middle->addWidget(card, 0, Qt::AlignCenter);
    hide();
    canvas->installEventFilter(this);

    connect(cancel, &QPushButton::clicked, this, [this] { m_model.cancelExport(); });
    m_watch.watch(model.isExporting, model.exportProgress);
    refresh();
}

void ExportOverlay::refresh()
{
    m_progress->setFraction(m_model.exportProgress);
    if (m_model.isExporting && isHidden())
        begin();
    else if (!m_model.isExporting && !isHidden())
        end();
}

void ExportOverlay::begin()
{
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

bool ExportOverlay::eventFilter(QObject* canvas, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(canvas, event);
}

void ExportOverlay::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        m_model.cancelExport();
    else
        QWidget::keyPressEvent(event);
}

void ExportOverlay::paintEvent(QPaintEvent*)
{
    QColor dark = Theme::border;
    dark.setAlpha(dimming);
    QPainter(this).fillRect(rect(), dark);
}

} // namespace orvane
