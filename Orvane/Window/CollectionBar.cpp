#include "CollectionBar.h"

#include "AppModel.h"
#include "DevicePixels.h"
#include "DropFrame.h"
#include "DroppedItems.h"
#include "ExportAllControl.h"
#include "Filmstrip.h"
#include "IconButton.h"
#include "SessionMenu.h"
#include "Theme.h"

#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QMimeData>
#include <QPainter>

namespace orvane {

namespace {

constexpr int sideMargin = 10;

} // namespace

// ┌───────────────────────────────────────────────────────┐
// │ Collection v   + ⧉ │ copy paste all        Export All │  38
// ├───────────────────────────────────────────────────────┤   1
// │ [ ] [ ] [ ] [ ] +                                     │  77, with more than one image
// └───────────────────────────────────────────────────────┘
CollectionBar::CollectionBar(AppModel& model, OpenFiles openFiles, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_openFiles(std::move(openFiles))
    , m_watch([this] { refresh(); })
{
    setAcceptDrops(true);
    setStyleSheet(flatButtons());
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(controls());
    column->addSpacing(fullHeight - rowHeight - Filmstrip::height);
    column->addWidget(strip());
    column->addStretch(1);
    m_dropFrame = new DropFrame(this);

    m_watch.watch(model.session, model.hasCopiedStyle);
    refresh();
}

QWidget* CollectionBar::controls()
{
    auto* add = iconButton("plus", tr("Add images"), tr("Add images"));
    auto* duplicate = iconButton("copy-plus", tr("Duplicate image"),
                                 tr("Duplicate — try another crop or grade on the same image"));
    auto* copy = iconButton("paintbrush", tr("Copy style"), tr("Copy this image's style"));
    auto* paste = iconButton("paintbrush", tr("Paste style"),
                             tr("Paste the copied style onto this image"), IconForm::Filled);
    auto* pasteToAll = iconButton("wand-sparkles", tr("Apply style to all"),
                                  tr("Apply the copied style to every image in this collection"));
    auto* exportAll = new ExportAllControl(m_model);
    m_withOne = {add, duplicate, copy, paste};
    m_withSeveral = {pasteToAll, exportAll};
    m_withStyle = {paste, pasteToAll};

    auto* controls = new QWidget;
    controls->setFixedHeight(rowHeight);
    auto* row = new QHBoxLayout(controls);
    row->setContentsMargins(sideMargin, 0, sideMargin, 0);
    row->setSpacing(2);
    row->addWidget(new SessionMenu(m_model));
    row->addSpacing(10);
    row->addWidget(add);
    row->addWidget(duplicate);
    row->addSpacing(10);
    row->addWidget(copy);
    row->addWidget(paste);
    row->addWidget(pasteToAll);
    row->addStretch(1);
    row->addWidget(exportAll);

    connect(add, &QToolButton::clicked, this, [this] { m_model.openImage(true); });
    connect(duplicate, &QToolButton::clicked, this, [this] { m_model.duplicateImage(); });
    connect(copy, &QToolButton::clicked, this, [this] { m_model.copyStyle(); });
    connect(paste, &QToolButton::clicked, this, [this] { m_model.applyStyle(); });
    connect(pasteToAll, &QToolButton::clicked, this, [this] { m_model.applyStyleToAll(); });
    return controls;
}

QWidget* CollectionBar::strip()
{
    auto* add = iconButton("plus", tr("Add images to this collection"),
                           tr("Add images to this collection"));
    connect(add, &QToolButton::clicked, this, [this] { m_model.openImage(true); });
    auto* strip = new QWidget;
    auto* row = new QHBoxLayout(strip);
    row->setContentsMargins(0, 0, sideMargin, 0);
    row->setSpacing(6);
    row->addWidget(new Filmstrip(m_model));
    row->addWidget(add);
    row->addStretch(1);
    m_withSeveral.push_back(strip);
    return strip;
}

void CollectionBar::refresh()
{
    const size_t count = m_model.session.value().size();
    for (QWidget* each : m_withOne)
        each->setVisible(count > 0);
    for (QWidget* each : m_withSeveral)
        each->setVisible(count > 1);
    for (QWidget* each : m_withStyle)
        each->setEnabled(m_model.hasCopiedStyle);
    setFixedHeight(count > 1 ? fullHeight : rowHeight);
}

void CollectionBar::dragEnterEvent(QDragEnterEvent* event)
{
    const QMimeData& dragged = *event->mimeData();
    if (draggedPhotos(dragged).empty() && draggedFiles(dragged).empty())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    m_dropFrame->setDropTargeted(true);
}

void CollectionBar::dragLeaveEvent(QDragLeaveEvent*)
{
    m_dropFrame->setDropTargeted(false);
}

void CollectionBar::dropEvent(QDropEvent* event)
{
    m_dropFrame->setDropTargeted(false);
    const auto photos = draggedPhotos(*event->mimeData());
    const auto files = draggedFiles(*event->mimeData());
    if (photos.empty() && files.empty())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (!photos.empty())
        m_model.addPhotos(photos);
    else
        m_openFiles(files);
}

void CollectionBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Theme::panel);
    DevicePixels::horizontalLine(painter, 0.5, 0, width(), Theme::border);
    if (height() > rowHeight)
        DevicePixels::horizontalLine(painter, rowHeight + 0.5, 0, width(), Theme::border);
}

} // namespace orvane
