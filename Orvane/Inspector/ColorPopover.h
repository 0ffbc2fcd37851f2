#pragma once

#include "ColorFields.h"
#include "Popover.h"

class QLineEdit;

namespace orvane {

/// A small window in which a colour is picked: shades of a hue, the hues, and the colour as a hex
/// number. Escape or Return closes it; what was picked stands.
///
///   ┌──────────────┐
///   │    shades    │
///   │              │
///   └──────────────┘
///   ─────●──────────   hue
///   [■]  [#rrggbb  ]
class ColorPopover final : public Popover {
    Q_OBJECT

public:
    ColorPopover(const QString& name, const QColor& color, QWidget* parent);

    /// Without a signal.
    void setColor(const QColor& color);
    /// With the focus on the shades.
    void openBeside(const QWidget& anchor);

Q_SIGNALS:
    void colorPicked(const QColor& color);
    /// A drag is done, a number was typed, or the picker closes.
    void pickEnded();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void showColor();
    void takeTyped();
    void pick();

    HsvColor m_color;
    ShadeField* m_shades;
    HueBar* m_hues;
    QWidget* m_swatch;
    QLineEdit* m_hex;
    bool m_isShowing = false; ///< the fields are being set, not moved by the user
};

} // namespace orvane
