#include "Theme.h"

#include "PackagedResources.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>
#include <QStyleFactory>
#include <QWidget>

namespace orvane::Theme {

namespace {

QPalette palette()
{
    const QColor field(0x21, 0x21, 0x21);
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

} // namespace

void apply(QApplication& application)
{
    application.setStyle(QStyleFactory::create("Fusion"));
    application.setPalette(palette());
    const auto fonts = packagedResources() / "Fonts";
    for (const char* file : {"Inter-Regular.otf", "Inter-Medium.otf"})
        QFontDatabase::addApplicationFont(QString::fromStdString((fonts / file).string()));
    QFont font("Inter");
    font.setPixelSize(13);
    application.setFont(font);
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
