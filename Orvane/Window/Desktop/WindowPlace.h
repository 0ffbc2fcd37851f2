#pragma once

#include <QList>
#include <QMargins>
#include <QRect>
#include <QString>

#include <optional>

namespace orvane {

/// Where a window stood.
struct WindowPlace {
    QRect geometry; ///< without its frame; that of the plain state while it is maximised
    QMargins frame; ///< what the desktop draws round it
    bool isMaximized = false;

    bool operator==(const WindowPlace&) const = default;
};

/// "x y width height left top right bottom", of the geometry and the frame, and " maximized".
QString textOfPlace(const WindowPlace& place);
/// Absent for every other text, and for a size that no window has.
std::optional<WindowPlace> placeOfText(const QString& text);

/// The geometry moved, and made smaller where it must be, so that all of it and its frame lie on
/// one screen: the one that it covers most of, or the first.
QRect inSight(const WindowPlace& place, const QList<QRect>& screens);

} // namespace orvane
