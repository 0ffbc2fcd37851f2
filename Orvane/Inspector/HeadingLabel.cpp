#include "HeadingLabel.h"

#include <QAccessibleWidget>

namespace orvane {

namespace {

QAccessibleInterface* spokenHeading(const QString&, QObject* object)
{
    auto* heading = qobject_cast<HeadingLabel*>(object);
    return heading ? new QAccessibleWidget(heading, QAccessible::Heading, heading->text())
                   : nullptr;
}

} // namespace

HeadingLabel::HeadingLabel(const QString& title, QWidget* parent)
    : QLabel(title, parent)
{
    [[maybe_unused]] static const bool isInstalled =
        (QAccessible::installFactory(spokenHeading), true);
    QFont semibold = font();
    semibold.setWeight(QFont::DemiBold);
    setFont(semibold);
}

} // namespace orvane
