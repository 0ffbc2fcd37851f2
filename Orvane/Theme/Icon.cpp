#include "Icon.h"

#include "PackagedResources.h"
#include "Theme.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <algorithm>
#include <optional>

namespace orvane {

namespace {

// Files of the packaged resources, "Icons/NAME.svg": outlines of 24 units in "currentColor".
constexpr std::string_view names[] = {
    "arrow-down",
    "arrow-left",
    "arrow-right",
    "arrow-up",
    "bandage",
    "brush",
    "check",
    "chevron-down",
    "chevron-left",
    "chevron-right",
    "circle",
    "circle-dot",
    "circle-x",
    "clipboard-paste",
    "clock",
    "contrast",
    "copy",
    "copy-plus",
    "crop",
    "download",
    "ellipsis",
    "eraser",
    "external-link",
    "eye",
    "folder",
    "folder-open",
    "folder-plus",
    "hard-drive",
    "folder-up",
    "heart",
    "history",
    "house",
    "image",
    "images",
    "info",
    "layers",
    "layout-grid",
    "list",
    "lock",
    "mail",
    "maximize",
    "minus",
    "move-horizontal",
    "move-vertical",
    "paintbrush",
    "panel-left",
    "panel-right",
    "pipette",
    "plus",
    "redo-2",
    "rotate-ccw",
    "save",
    "scan",
    "search",
    "settings",
    "share",
    "square-stack",
    "star",
    "sun",
    "trash-2",
    "triangle-alert",
    "type",
    "undo-2",
    "upload",
    "wand-sparkles",
    "x",
    "zoom-in",
    "zoom-out",
    "chart-area",
};

QByteArray outline(std::string_view name)
{
    const auto path = packagedResources() / "Icons" / (std::string(name) + ".svg");
    QFile file(QString::fromStdString(path.string()));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Where the marks lie within the outline: filled alike they would be lost.
bool hasInnerMarks(std::string_view name)
{
    return name == "circle-x" || name == "triangle-alert";
}

/// Every shape filled; inner marks, which follow the outline, in the colour of the ground.
QByteArray filled(QByteArray svg, std::string_view name)
{
    svg.replace("fill=\"none\"", "fill=\"currentColor\"");
    if (!hasInnerMarks(name))
        return svg;
    const qsizetype first = svg.indexOf("/>") + 2;
    return svg.left(first) + "<g stroke=\"" + Theme::panel.name().toLatin1() + "\">"
        + svg.mid(first).replace("</svg>", "</g></svg>");
}

class OutlineEngine final : public QIconEngine {
public:
    OutlineEngine(std::string_view name, IconForm form, std::optional<QColor> color)
        : m_name(name)
        , m_form(form)
        , m_color(color)
        , m_svg(form == IconForm::Filled ? filled(outline(name), name) : outline(name))
    {
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        const double scale = painter->device()->devicePixelRatioF();
        painter->drawPixmap(
            rect, scaledPixmap((QSizeF(rect.size()) * scale).toSize(), mode, state, scale));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1);
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, double scale) override
    {
        const QColor color = m_color.value_or(textColor(mode));
        const QString key = QString("icon %1 %2 %3 %4x%5@%6")
                                .arg(QLatin1StringView(m_name.data(), qsizetype(m_name.size())))
                                .arg(int(m_form))
                                .arg(color.name())
                                .arg(size.width())
                                .arg(size.height())
                                .arg(scale);
        QPixmap result;
        if (!QPixmapCache::find(key, &result)) {
            result = drawn(size, color);
            result.setDevicePixelRatio(scale);
            QPixmapCache::insert(key, result);
        }
        return result;
    }

    QIconEngine* clone() const override { return new OutlineEngine(*this); }

private:
    static QColor textColor(QIcon::Mode mode)
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        return QApplication::palette().color(group, QPalette::ButtonText);
    }

    QPixmap drawn(const QSize& size, const QColor& color) const
    {
        QPixmap result(size);
        result.fill(Qt::transparent);
        QSvgRenderer renderer(QByteArray(m_svg).replace("currentColor", color.name().toLatin1()));
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        QPainter painter(&result);
        renderer.render(&painter);
        return result;
    }

    std::string_view m_name;
    IconForm m_form;
    std::optional<QColor> m_color;
    QByteArray m_svg;
};

QIcon made(std::string_view name, IconForm form, std::optional<QColor> color)
{
    const auto* known = std::find(std::begin(names), std::end(names), name);
    Q_ASSERT(known != std::end(names));
    if (known == std::end(names))
        return {};
    return QIcon(new OutlineEngine(*known, form, color));
}

} // namespace

QIcon icon(std::string_view name, IconForm form)
{
    return made(name, form, {});
}

QIcon icon(std::string_view name, const QColor& color, IconForm form)
{
    return made(name, form, color);
}

std::span<const std::string_view> iconNames()
{
    return names;
}

} // namespace orvane
