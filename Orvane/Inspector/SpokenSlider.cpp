#include "SpokenSlider.h"

#include "DoubleClickSlider.h"

#include <QAccessibleWidget>

#include <cmath>

namespace orvane::SpokenSlider {

namespace {

class Interface final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit Interface(DoubleClickSlider* slider)
        : QAccessibleWidget(slider, QAccessible::Slider)
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text which) const override
    {
        if (which == QAccessible::Value)
            return QString::number(std::lround(slider().number()));
        return QAccessibleWidget::text(which);
    }

    QVariant currentValue() const override { return slider().number(); }
    void setCurrentValue(const QVariant& value) override { slider().moveTo(value.toDouble()); }
    QVariant minimumValue() const override { return slider().range().minimum; }
    QVariant maximumValue() const override { return slider().range().maximum; }
    QVariant minimumStepSize() const override
    {
        return (slider().range().maximum - slider().range().minimum) / 100;
    }

    QStringList actionNames() const override
    {
        return QStringList{increaseAction(), decreaseAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& action) override
    {
        const double step = minimumStepSize().toDouble();
        if (action == increaseAction())
            slider().moveTo(slider().number() + step);
        else if (action == decreaseAction())
            slider().moveTo(slider().number() - step);
        else
            QAccessibleWidget::doAction(action);
    }

private:
    DoubleClickSlider& slider() const { return *static_cast<DoubleClickSlider*>(widget()); }
};

QAccessibleInterface* make(const QString&, QObject* object)
{
    auto* slider = qobject_cast<DoubleClickSlider*>(object);
    return slider ? new Interface(slider) : nullptr;
}

} // namespace

void install()
{
    [[maybe_unused]] static const bool isInstalled = (QAccessible::installFactory(make), true);
}

void tellChange(DoubleClickSlider& slider)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleValueChangeEvent event(&slider, slider.number());
    QAccessible::updateAccessibility(&event);
}

} // namespace orvane::SpokenSlider
