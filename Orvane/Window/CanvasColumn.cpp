#include "CanvasColumn.h"

#include "AppModel.h"
#include "CIPreviewView.h"
#include "CollectionBar.h"
#include "CommandActions.h"
#include "DropFrame.h"
#include "DroppedItems.h"
#include "EmptyPage.h"
#include "ExportOverlay.h"
#include "HistogramOverlay.h"
#include "Toolbar.h"

#include <QAction>
#include <QBuffer>
#include <QDragEnterEvent>
#include <QImage>
#include <QMimeData>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace orvane {

namespace {

constexpr QSize smallest(560, 440);

/// A dragged picture that no file holds: as it came, if in one of our formats, else as the toolkit
/// reads it.
std::optional<PastedPicture> draggedPicture(const QMimeData& data)
{
    using Kind = PastedPicture::Kind;
    for (const auto& [format, kind] :
         {std::pair{"image/png", Kind::Png}, std::pair{"image/tiff", Kind::Tiff}}) {
        const QByteArray bytes = data.data(format);
        if (!bytes.isEmpty())
            return PastedPicture{kind, {bytes.begin(), bytes.end()}};
    }
    const auto image = data.hasImage() ? data.imageData().value<QImage>() : QImage();
    if (image.isNull())
        return std::nullopt;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return PastedPicture{Kind::Png, {bytes.begin(), bytes.end()}};
}

bool canBeOpened(const QMimeData& data)
{
    return data.hasUrls() || data.hasImage() || data.hasFormat(photosMimeType)
        || data.hasFormat("image/tiff");
}

/// Never a move, even if one is proposed: the other program would delete the file.
void acceptCopy(QDropEvent& event)
{
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

} // namespace

CanvasColumn::CanvasColumn(AppModel& model, const CommandActions& commands, PictureOpener& opener,
                           QThreadPool& pool, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_opener(opener)
    , m_canvas(new CIPreviewView(model, pool))
    , m_empty(new EmptyPage)
    , m_stack(new QStackedWidget)
    , m_toolbar(new Toolbar(model, commands, *m_canvas))
    , m_watch([this] { refresh(); })
{
    setMinimumSize(smallest);
    setAcceptDrops(true);
    m_stack->addWidget(m_empty);
    m_stack->addWidget(m_canvas);
    new ExportOverlay(model, m_canvas);
    new HistogramOverlay(model, m_canvas);
    m_dropFrame = new DropFrame(m_stack);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_toolbar);
    column->addWidget(m_stack, 1);
    column->addWidget(new CollectionBar(model, [this](const auto& files) { add(files); }));

    connect(m_empty, &EmptyPage::openAsked, commands.action("open"), &QAction::trigger);
    connect(m_empty, &EmptyPage::importAsked, commands.action("importFromPhotos"),
            &QAction::trigger);
    connect(&opener, &PictureOpener::changed, this, &CanvasColumn::refresh);
    m_watch.watch(model.sourceImage, model.session);
    refresh();
}

void CanvasColumn::refresh()
{
    const bool isEmpty = !m_model.sourceImage.value();
    const QString note = m_opener.isOpening()
        ? tr("Opening “%1”…").arg(QString::fromStdString(m_opener.nameInHand()))
        : QString();
    m_canvas->setMessage(note);
    m_toolbar->setNote(isEmpty ? QString() : note);
    showPage(isEmpty && !m_opener.isOpening() ? static_cast<QWidget*>(m_empty) : m_canvas);
}

/// The keys go with it from the page before, which would leave them to whatever comes first.
void CanvasColumn::showPage(QWidget* page)
{
    const QWidget* focused = window()->focusWidget();
    const bool hasFocus = !focused || m_stack->isAncestorOf(focused);
    m_stack->setCurrentWidget(page);
    if (hasFocus)
        takeFocus();
}

void CanvasColumn::takeFocus()
{
    if (m_stack->currentWidget() == m_empty)
        m_empty->takeFocus();
    else
        m_canvas->setFocus();
}

void CanvasColumn::add(const PictureOpener::Files& files)
{
    const bool isEmpty = m_model.session.value().empty() && !m_opener.isOpening();
    m_opener.open(files, isEmpty ? PictureOpener::How::Replace : PictureOpener::How::Append);
}

void CanvasColumn::setDropTargeted(bool isTargeted)
{
    m_empty->setDropTargeted(isTargeted);
    m_dropFrame->setDropTargeted(isTargeted);
}

void CanvasColumn::dragEnterEvent(QDragEnterEvent* event)
{
    if (!canBeOpened(*event->mimeData()))
        return;
    acceptCopy(*event);
    setDropTargeted(true);
}

void CanvasColumn::dragLeaveEvent(QDragLeaveEvent*)
{
    setDropTargeted(false);
}

/// What comes of it is done after the drop is over: the program that it came from waits for it.
void CanvasColumn::dropEvent(QDropEvent* event)
{
    setDropTargeted(false);
    const QMimeData& dropped = *event->mimeData();
    acceptCopy(*event);
    if (const auto photos = draggedPhotos(dropped); !photos.empty()) {
        QTimer::singleShot(0, this, [this, photos] { m_model.addPhotos(photos); });
        return;
    }
    if (const auto files = draggedFiles(dropped); !files.empty()) {
        QTimer::singleShot(0, this, [this, files] { add(files); });
        return;
    }
    QTimer::singleShot(0, this, [this, picture = draggedPicture(dropped)] {
        if (!picture || !m_model.adoptLoosePicture(*picture))
            m_model.report("Couldn't open that file",
                           Error{"What was dropped is no image on this computer. Save it first, "
                                 "then drop the saved file."});
    });
}

} // namespace orvane
