#include "Toolbar.h"

#include "AppModel.h"
#include "CIPreviewView.h"
#include "CommandActions.h"
#include "Commands.h"
#include "Theme.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

#include <cmath>

namespace orvane {

namespace {

QString buttonStyle()
{
    return QString(
               "QToolButton { border: 1px solid transparent; border-radius: %1px; padding: 4px; }"
               "QToolButton:hover { background: %2; }"
               "QToolButton:pressed, QToolButton:checked { background: %3; }"
               "QToolButton:focus { border-color: %4; }"
               "QToolButton:disabled { color: %5; }")
        .arg(Theme::radius)
        .arg(Theme::raised.name(), Theme::hover.name(), Theme::accent.name(),
             Theme::disabledText.name());
}

constexpr int leastInfo = 90; ///< what a shortened name needs to be one

/// A thin line between two groups of buttons.
QWidget* divider()
{
    auto* line = new QWidget;
    line->setFixedSize(1, 18);
    line->setStyleSheet(QString("background: %1").arg(Theme::hover.name()));
    return line;
}

} // namespace

//  sidebar open | undo redo |   name, size   | tools | compare histogram zoom | export inspector
Toolbar::Toolbar(AppModel& model, const CommandActions& commands, const CIPreviewView& canvas,
                 QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_commands(commands)
    , m_canvas(canvas)
    , m_info(new QLabel)
    , m_zoom(new QToolButton)
    , m_watch([this] { refresh(); })
{
    setFixedHeight(barHeight);
    setStyleSheet(buttonStyle());
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(8, 0, 8, 1);
    row->setSpacing(2);
    addButtons(*row, {"sidebar", "open", "", "undo", "redo", ""});
    Theme::makeSecondary(*m_info);
    m_info->setAlignment(Qt::AlignCenter);
    m_info->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    row->addWidget(m_info, 1);
    addButtons(
        *row,
        {"", "makeItPop", "crop", "whiteBalance", "heal", "relight", "", "compare", "histogram"});
    m_zoom->setFixedSize(58, 28);
    m_zoom->setFocusPolicy(Qt::StrongFocus);
    m_zoom->setAccessibleName(tr("Zoom"));
    QFont small = m_zoom->font();
    small.setPixelSize(11);
    m_zoom->setFont(small);
    connect(m_zoom, &QToolButton::clicked, this, &Toolbar::zoomOrFit);
    row->addWidget(m_zoom);
    addButtons(*row, {"", "export", "inspector"});

    connect(&canvas, &CIPreviewView::scaleChanged, this, &Toolbar::showZoom);
    connect(&canvas, &CIPreviewView::picturePainted, this, &Toolbar::showZoom);
    m_watch.watch(model.session, model.activeImageID, model.sourceImage, model.comparing,
                  model.zoom);
    refresh();
}

void Toolbar::addButtons(QHBoxLayout& row, std::initializer_list<const char*> ids)
{
    for (const char* id : ids) {
        if (!*id) {
            row.addSpacing(4);
            row.addWidget(divider());
            row.addSpacing(4);
            continue;
        }
        QAction* action = m_commands.action(id);
        auto* button = new QToolButton;
        button->setDefaultAction(action);
        button->setToolButtonStyle(Qt::ToolButtonIconOnly);
        button->setIconSize({16, 16});
        button->setFixedSize(28, 28);
        button->setFocusPolicy(Qt::StrongFocus);
        const auto describe = [button, action, id] {
            const QString name = action->text().remove(QChar(u'…'));
            const QStringList keys = keysOf(id);
            button->setAccessibleName(name);
            button->setToolTip(keys.isEmpty() ? name : name + "  (" + keys.front() + ")");
        };
        connect(action, &QAction::changed, button, describe);
        describe();
        row.addWidget(button);
    }
}

void Toolbar::setNote(const QString& note)
{
    m_note = note;
    refresh();
}

void Toolbar::refresh()
{
    m_infoText = m_note;
    const auto& source = m_model.sourceImage.value();
    if (source && m_note.isEmpty()) {
        const CGSize size = source->extent().size;
        m_infoText = QString::fromStdString(m_model.activeName())
            + QString("   %1 × %2").arg(size.width).arg(size.height);
        for (const EditImage& image : m_model.session.value()) {
            if (image.id == m_model.activeImageID.value() && !image.pixels->note().empty())
                m_infoText += "   " + QString::fromStdString(image.pixels->note());
        }
        if (m_model.comparing)
            m_infoText += "   " + tr("Original");
    }
    showInfo();
    m_info->setToolTip(m_infoText);
    showZoom();
}

/// As much as there is room for: all of it, or the name alone, or nothing rather than a few
/// letters.
void Toolbar::showInfo()
{
    const QFontMetrics metrics = m_info->fontMetrics();
    const QString name = m_infoText.section("   ", 0, 0);
    const int room = m_info->width();
    if (metrics.horizontalAdvance(m_infoText) <= room)
        m_info->setText(m_infoText);
    else
        m_info->setText(room < leastInfo ? QString()
                                         : metrics.elidedText(name, Qt::ElideMiddle, room));
}

void Toolbar::showZoom()
{
    const auto& source = m_model.sourceImage.value();
    m_zoom->setEnabled(source.has_value());
    const bool isFitted = std::abs(m_model.zoom - 1) < 0.001;
    m_zoom->setToolTip(isFitted ? tr("Actual size (%1)").arg(keysOf("actualSize").front())
                                : tr("Fit to window (%1)").arg(keysOf("zoomToFit").front()));
    if (!source) {
        m_zoom->setText({});
        return;
    }
    const CanvasView& view = m_canvas.mapping();
    const double percent = 100 * fitScale(view.size, source->extent().size) * effectiveZoom(view);
    m_zoom->setText(isFitted ? tr("Fit %1%").arg(std::lround(percent))
                             : tr("%1%").arg(std::lround(percent)));
}

void Toolbar::zoomOrFit()
{
    if (std::abs(m_model.zoom - 1) < 0.001)
        m_model.actualSizeTick = m_model.actualSizeTick + 1;
    else
        m_model.zoom = 1;
}

void Toolbar::resizeEvent(QResizeEvent*)
{
    refresh();
}

void Toolbar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Theme::panel);
    painter.fillRect(0, height() - 1, width(), 1, Theme::border);
}

} // namespace orvane
