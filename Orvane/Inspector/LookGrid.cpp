#include "LookGrid.h"

#include "DevicePixels.h"
#include "Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr int gap = 8;
constexpr int narrowestTile = 80;
constexpr double staleOpacity = 0.35;

/// The bytes as they are; valid as long as the picture.
QImage view(const CGImage& drawn)
{
    const auto format = drawn.format == PixelFormat::BGRX8 ? QImage::Format_RGB32
                                                           : QImage::Format_ARGB32_Premultiplied;
    return {drawn.pixels.data(), drawn.width, drawn.height, qsizetype(drawn.rowBytes), format};
}

/// Fills the size, what is too much cut off evenly, with rounded corners.
QImage roundedCover(const QImage& picture, const QSize& size, double radius)
{
    const QImage scaled =
        picture.scaled(size, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    QImage result(size, QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setRenderHint(QPainter::Antialiasing);
    QBrush brush(scaled);
    const QSize beyond = size - scaled.size();
    const QPoint corner(beyond.width() / 2, beyond.height() / 2);
    brush.setTransform(QTransform::fromTranslate(corner.x(), corner.y()));
    painter.setBrush(brush);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRectF(QPointF(), QSizeF(size)), radius, radius);
    return result;
}

} // namespace

LookTile::LookTile(QWidget* parent)
    : QAbstractButton(parent)
{
    setCheckable(true);
    setFocusPolicy(Qt::ClickFocus);
    setAttribute(Qt::WA_Hover);
}

void LookTile::show(const Shown& shown)
{
    setChecked(shown.isInUse);
    if (shown == m_shown)
        return;
    if (shown.picture != m_shown.picture)
        m_fitted = {};
    m_shown = shown;
    setText(shown.name);
    setAccessibleName(shown.name);
    setAccessibleDescription(shown.reason);
    setToolTip(shown.reason);
    update();
}

void LookTile::paintPicture(QPainter& painter)
{
    const QRectF area = DevicePixels::aligned(painter, QRectF(0, 0, width(), pictureHeight));
    const double scale = painter.deviceTransform().m11();
    const QSize size = (area.size() * scale).toSize();
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::raised);
    if (!m_shown.picture || m_shown.isStale)
        painter.drawRoundedRect(area, Theme::radius, Theme::radius);
    if (m_shown.picture) {
        if (m_fitted.size() != size)
            m_fitted = roundedCover(view(*m_shown.picture), size, Theme::radius * scale);
        painter.setOpacity(m_shown.isStale ? staleOpacity : 1);
        painter.drawImage(area, m_fitted);
        painter.setOpacity(1);
    }
    painter.setBrush(Qt::NoBrush);
    if (isDown() || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(255, 255, 255, isDown() ? 14 : 30));
        painter.drawRoundedRect(area, Theme::radius, Theme::radius);
        painter.setBrush(Qt::NoBrush);
    }
    // Two rings, so that use and focus can be told apart on any picture.
    if (m_shown.isInUse || hasFocus()) {
        painter.setPen(QPen(QColor(0x16, 0x16, 0x16), 4));
        painter.drawRoundedRect(area.adjusted(2, 2, -2, -2), Theme::radius - 1, Theme::radius - 1);
        painter.setPen(QPen(hasFocus() ? Theme::accent : QColor(0xe0, 0xe0, 0xe0), 2));
        painter.drawRoundedRect(area.adjusted(1, 1, -1, -1), Theme::radius, Theme::radius);
    }
}

void LookTile::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintPicture(painter);

    QFont small = font();
    small.setPixelSize(11);
    if (m_shown.isInUse)
        small.setWeight(QFont::Medium);
    painter.setFont(small);
    painter.setPen(m_shown.isInUse || underMouse() ? Theme::text : Theme::secondaryText);
    const QRect line(0, pictureHeight + 2, width(), tileHeight - pictureHeight - 2);
    painter.drawText(line, Qt::AlignCenter,
                     painter.fontMetrics().elidedText(text(), Qt::ElideRight, width()));
}

void LookTile::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

// ---- The grid ----

LookGrid::LookGrid(QWidget* parent)
    : QWidget(parent)
{
    setAccessibleName(tr("Looks"));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void LookGrid::show(const std::vector<LookTile::Shown>& looks)
{
    const bool changesCount = looks.size() != m_tiles.size();
    while (m_tiles.size() < looks.size())
        addTile();
    while (m_tiles.size() > looks.size()) {
        delete m_tiles.back();
        m_tiles.pop_back();
    }
    for (size_t i = 0; i < looks.size(); ++i)
        m_tiles[i]->show(looks[i]);
    if (changesCount)
        arrange();
}

void LookGrid::addTile()
{
    auto* tile = new LookTile(this);
    if (m_tiles.empty())
        tile->setFocusPolicy(Qt::StrongFocus);
    else
        setTabOrder(m_tiles.back(), tile);
    tile->installEventFilter(this);
    connect(tile, &QAbstractButton::clicked, this, [this, tile] {
        tile->setChecked(tile->shown().isInUse); // the model says which one is in use
        Q_EMIT picked(tile->shown().id);
    });
    tile->setVisible(true);
    m_tiles.push_back(tile);
}

int LookGrid::columns() const
{
    return std::max(1, (width() + gap) / (narrowestTile + gap));
}

void LookGrid::arrange()
{
    const int across = columns();
    const int count = int(m_tiles.size());
    for (int i = 0; i < count; ++i) {
        // Their edges are rounded one by one, so that the last ends where the grid does.
        const double step = double(width() + gap) / across;
        const int left = int(std::lround(i % across * step));
        const int right = int(std::lround((i % across + 1) * step)) - gap;
        m_tiles[size_t(i)]->setGeometry(left, i / across * (LookTile::tileHeight + gap),
                                        right - left, LookTile::tileHeight);
    }
    const int rows = (count + across - 1) / across;
    setFixedHeight(std::max(0, rows * (LookTile::tileHeight + gap) - gap));
}

void LookGrid::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    arrange();
}

int LookGrid::steppedBy(int index, int key) const
{
    switch (key) {
    case Qt::Key_Left:
        return index - 1;
    case Qt::Key_Right:
        return index + 1;
    case Qt::Key_Up:
        return index - columns();
    case Qt::Key_Down:
        return index + columns();
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return int(m_tiles.size()) - 1;
    default:
        return -1;
    }
}

void LookGrid::makeCurrent(int index)
{
    for (int i = 0; i < int(m_tiles.size()); ++i)
        m_tiles[size_t(i)]->setFocusPolicy(i == index ? Qt::StrongFocus : Qt::ClickFocus);
}

bool LookGrid::eventFilter(QObject* watched, QEvent* event)
{
    const auto tile = std::find(m_tiles.begin(), m_tiles.end(), watched);
    if (tile == m_tiles.end())
        return QWidget::eventFilter(watched, event);
    const int index = int(tile - m_tiles.begin());
    if (event->type() == QEvent::FocusIn)
        makeCurrent(index);
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const bool isArrow = key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up
            || key == Qt::Key_Down || key == Qt::Key_Home || key == Qt::Key_End;
        const int next = steppedBy(index, key);
        if (next >= 0 && next < int(m_tiles.size()))
            m_tiles[size_t(next)]->setFocus(Qt::TabFocusReason);
        // Not to the button: it would move the focus out of the grid.
        if (isArrow)
            return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace orvane
