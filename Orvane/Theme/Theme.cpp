#include "Theme.h"

#include "Icon.h"
#include "PackagedResources.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOption>
#include <QWidget>

#include <algorithm>

namespace orvane::Theme {

namespace {

constexpr int menuMargin = 4; ///< above the first row and below the last
constexpr int menuRow = 26;

QPalette palette()
{
    QPalette result(section, panel);
    for (const auto& [role, color] : {
             std::pair{QPalette::Window, panel},
             {QPalette::Base, field},
             {QPalette::AlternateBase, section},
             {QPalette::Button, raised},
             {QPalette::Mid, border},
             {QPalette::Dark, border},
             {QPalette::Shadow, border},
             {QPalette::WindowText, text},
             {QPalette::Text, text},
             {QPalette::ButtonText, text},
             {QPalette::BrightText, text},
             {QPalette::PlaceholderText, secondaryText},
             {QPalette::ToolTipBase, section},
             {QPalette::ToolTipText, text},
             {QPalette::Highlight, accent},
             {QPalette::HighlightedText, border},
             {QPalette::Link, accent},
         })
        result.setColor(role, color);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        result.setColor(QPalette::Disabled, role, disabledText);
    result.setColor(QPalette::Disabled, QPalette::Highlight, raised);
    return result;
}

/// Where Fusion draws gradients and its own radii: buttons and fields are flat here.
QString controls()
{
    return QString("QPushButton, QLineEdit { border: 1px solid %1; border-radius: %2px; }"
                   "QPushButton { background: %3; padding: 5px 14px; }"
                   "QPushButton:hover { background: %4; }"
                   "QPushButton:pressed { background: %5; }"
                   "QLineEdit { background: %7; padding: 1px 5px; }"
                   "QLineEdit:disabled { color: %6; }"
                   "QPushButton:default, QPushButton:focus, QLineEdit:focus { border-color: %8; }"
                   "QPushButton:disabled { color: %6; border-color: %1; }"
                   "QLabel#qt_msgbox_informativelabel { min-width: 340px; }"
                   "QDialogButtonBox { dialogbuttonbox-buttons-have-icons: 0; }")
        .arg(border.name())
        .arg(radius)
        .arg(raised.name(), hover.name(), section.name(), disabledText.name(), field.name(),
             accent.name());
}

/// Fusion with flat combo boxes, whose arrow a style sheet would lose, and with air in its menus.
class FlatStyle final : public QProxyStyle {
public:
    FlatStyle()
        : QProxyStyle("Fusion")
    {
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override
    {
        return metric == PM_MenuVMargin ? menuMargin
                                        : QProxyStyle::pixelMetric(metric, option, widget);
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override
    {
        QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (type == CT_MenuItem && item && item->menuItemType != QStyleOptionMenuItem::Separator)
            size.setHeight(std::max(size.height(), menuRow));
        return size;
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override
    {
        const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        if (control != CC_ComboBox || !box || box->editable) {
            QProxyStyle::drawComplexControl(control, option, painter, widget);
            return;
        }
        const bool isFocused = box->state & State_HasFocus;
        const bool isLit = box->state & State_Enabled && box->state & State_MouseOver;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(isFocused ? accent : border);
        painter->setBrush(isLit ? hover : raised);
        painter->drawRoundedRect(QRectF(box->rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
        const QRect arrow =
            subControlRect(CC_ComboBox, box, SC_ComboBoxArrow, widget).adjusted(2, 0, -2, 0);
        icon("chevron-down", secondaryText).paint(painter, arrow);
        painter->restore();
    }
};

} // namespace

void apply(QApplication& application)
{
    application.setStyle(new FlatStyle);
    application.setPalette(palette());
    const auto fonts = packagedResources() / "Fonts";
    for (const char* file : {"Inter-Regular.otf", "Inter-Medium.otf"})
        QFontDatabase::addApplicationFont(QString::fromStdString((fonts / file).string()));
    QFont font("Inter");
    font.setPixelSize(13);
    application.setFont(font);
    application.setStyleSheet(controls());
}

void makeSecondary(QWidget& widget)
{
    QFont font = widget.font();
    font.setPixelSize(11);
    widget.setFont(font);
    QPalette colors = widget.palette();
    colors.setColor(QPalette::WindowText, secondaryText);
    widget.setPalette(colors);
}

} // namespace orvane::Theme
