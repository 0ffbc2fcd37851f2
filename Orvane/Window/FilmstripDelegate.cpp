#include "FilmstripDelegate.h"

#include "DevicePixels.h"
#include "FilmstripModel.h"
#include "Icon.h"
#include "Theme.h"

#include <QPainter>

namespace orvane {

namespace {

constexpr double least = 36; ///< width of the narrowest cell
constexpr double most = 124;
constexpr double sideRoom = 4; ///< on either side of a picture
constexpr double topRoom = 8;

/// The thumbnail's own pixels, which must outlive it.
QImage borrowed(const Thumbnail& thumb)
{
    if (!thumb)
        return {};
    const auto format = thumb->format == PixelFormat::BGRX8 ? QImage::Format_RGB32
                                                            : QImage::Format_ARGB32_Premultiplied;
    return {thumb->pixels.data(), thumb->width, thumb->height, qsizetype(thumb->rowBytes), format};
}

double widthOf(const Thumbnail& thumb)
{
    if (!thumb || thumb->height < 1)
        return 84;
    const double width = FilmstripDelegate::cellHeight * double(thumb->width) / thumb->height;
    return std::clamp(std::round(width), least, most);
}

/// Fills the rounded rectangle, whose edges lie on the device's pixels.
void fillWith(QPainter& painter, const QImage& picture, const QRectF& rect)
{
    const double scale = painter.deviceTransform().m11();
    const QSize pixels = (rect.size() * scale).toSize();
    QImage scaled =
        picture.scaled(pixels, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    scaled = scaled.copy(QRect(
        QPoint((scaled.width() - pixels.width()) / 2, (scaled.height() - pixels.height()) / 2),
        pixels));
    QBrush brush(scaled);
    brush.setTransform(
        QTransform::fromTranslate(rect.left(), rect.top()).scale(1 / scale, 1 / scale));
    painter.setBrush(brush);
    painter.drawRoundedRect(rect, Theme::radius, Theme::radius);
}

void outline(QPainter& painter, const QRectF& rect, double width, const QColor& color)
{
    const double inset = width / 2;
    painter.setPen(QPen(color, width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), Theme::radius - inset,
                            Theme::radius - inset);
}

} // namespace

FilmstripDelegate::FilmstripDelegate(const FilmstripModel& model, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_model(model)
{
}

QSize FilmstripDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const
{
    return {int(widthOf(m_model.cell(index.row()).thumb) + 2 * sideRoom), rowHeight};
}

void FilmstripDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const
{
    const FilmstripCell& cell = m_model.cell(index.row());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    const QRectF place(option.rect.left() + sideRoom, option.rect.top() + topRoom,
                       option.rect.width() - 2 * sideRoom, cellHeight);
    const QRectF rect = DevicePixels::aligned(*painter, place);
    if (const QImage picture = borrowed(cell.thumb); !picture.isNull()) {
        fillWith(*painter, picture, rect);
    } else {
        painter->setBrush(Theme::section);
        painter->drawRoundedRect(rect, Theme::radius, Theme::radius);
        const QPoint middle = rect.center().toPoint();
        icon("image", Theme::secondaryText)
            .paint(painter, QRect(middle.x() - 8, middle.y() - 8, 16, 16));
    }

    if (cell.isActive) {
        // Its dark inner line parts it from a picture of any colour.
        outline(*painter, rect, 3, Theme::border);
        outline(*painter, rect, 2, Theme::accent);
    } else if (option.state & QStyle::State_MouseOver)
        outline(*painter, rect, 1, Theme::secondaryText);
    // Where the keys are: the frame of the active one is the accent too, so this one goes round it.
    if (option.state & QStyle::State_HasFocus)
        outline(*painter, rect.adjusted(-3, -3, 3, 3), 1.5, Theme::text);
    if (cell.isUnsaved) {
        painter->setPen(QPen(Theme::border, 1.5));
        painter->setBrush(Theme::text);
        painter->drawEllipse(rect.topRight() + QPointF(-8, 8), 3.5, 3.5);
    }
    painter->restore();
}

} // namespace orvane
