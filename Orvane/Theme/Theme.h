#pragma once

#include <QColor>

class QApplication;
class QWidget;

/// The looks of the window. Everything round the picture is neutral grey, since photographers judge
/// colour in it; the one blue marks focus and selection only.
namespace orvane::Theme {

inline constexpr QColor panel(0x26, 0x26, 0x26);
inline constexpr QColor section(0x2e, 0x2e, 0x2e);
inline constexpr QColor surround(0x30, 0x30, 0x30); ///< round the picture, as the canvas paints it
inline constexpr QColor raised(0x3a, 0x3a, 0x3a); ///< buttons
inline constexpr QColor hover(0x46, 0x46, 0x46); ///< a button under the pointer, lighter by a fifth
inline constexpr QColor field(0x21, 0x21, 0x21); ///< what is typed into
inline constexpr QColor text(0xd4, 0xd4, 0xd4);
inline constexpr QColor secondaryText(0xa0, 0xa0, 0xa0);
inline constexpr QColor disabledText(0x5e, 0x5e, 0x5e);
inline constexpr QColor border(0x1b, 0x1b, 0x1b);
inline constexpr QColor accent(0x6f, 0x94, 0xc4);
inline constexpr int radius = 5;

/// Style, palette and the packaged font, for the whole application.
void apply(QApplication& application);

/// 11 px, in the secondary colour.
void makeSecondary(QWidget& widget);

} // namespace orvane::Theme
