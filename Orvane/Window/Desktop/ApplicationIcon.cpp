#include "ApplicationIcon.h"

#include "PackagedResources.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace orvane {

QIcon applicationIcon()
{
    QSvgRenderer drawing(QString::fromStdString((packagedResources() / "orvane.svg").string()));
    QIcon icon;
    // What task bars and switchers ask for, up to twice the usual scale.
    for (const int side : {16, 24, 32, 48, 64, 128}) {
        QPixmap picture(side, side);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        drawing.render(&painter);
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace orvane
