#include "ColorPopover.h"

#include "Theme.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

namespace orvane {

namespace {

constexpr int fieldWidth = 236;
constexpr int fieldHeight = 156;

class Swatch final : public QWidget {
public:
    explicit Swatch(const HsvColor& color)
        : m_color(color)
    {
        setFixedSize(36, 24);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Theme::border, 1));
        painter.setBrush(m_color.color());
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    }

private:
    const HsvColor& m_color;
};

} // namespace

ColorPopover::ColorPopover(const QString& name, const QColor& color, QWidget* parent)
    : Popover(name, parent)
    , m_shades(new ShadeField)
    , m_hues(new HueBar)
    , m_swatch(new Swatch(m_color))
    , m_hex(new QLineEdit)
{
    m_shades->setFixedSize(fieldWidth, fieldHeight);
    m_hex->setAccessibleName(tr("Hex"));
    m_hex->setFixedHeight(24);
    m_hex->setValidator(
        new QRegularExpressionValidator(QRegularExpression("#?[0-9A-Fa-f]{6}"), m_hex));

    auto* bottom = new QHBoxLayout;
    bottom->setContentsMargins(7, 2, 7, 5);
    bottom->setSpacing(8);
    bottom->addWidget(m_swatch);
    bottom->addWidget(m_hex, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(5, 5, 5, 5);
    column->setSpacing(3);
    column->addWidget(m_shades);
    column->addWidget(m_hues);
    column->addLayout(bottom);
    setColor(color);

    connect(m_shades, &ShadeField::moved, this, [this](double saturation, double brightness) {
        m_color.saturation = saturation;
        m_color.brightness = brightness;
        pick();
    });
    connect(m_hues, &QAbstractSlider::valueChanged, this, [this](int degree) {
        m_color.hue = degree / 360.0;
        if (!m_isShowing)
            pick();
    });
    connect(m_shades, &ShadeField::released, this, &ColorPopover::pickEnded);
    connect(m_hues, &QAbstractSlider::sliderReleased, this, &ColorPopover::pickEnded);
    connect(m_hex, &QLineEdit::editingFinished, this, &ColorPopover::takeTyped);
}

void ColorPopover::setColor(const QColor& color)
{
    m_color.take(color);
    showColor();
}

void ColorPopover::showColor()
{
    const double hue = m_color.hue;
    m_isShowing = true;
    m_hues->setValue(qRound(hue * 360) % 360);
    m_isShowing = false;
    m_color.hue = hue;
    m_shades->show(m_color);
    m_swatch->update();
    if (!m_hex->hasFocus() || !m_hex->isModified())
        m_hex->setText(m_color.color().name());
}

void ColorPopover::pick()
{
    showColor();
    Q_EMIT colorPicked(m_color.color());
}

void ColorPopover::takeTyped()
{
    if (!m_hex->isModified())
        return;
    m_hex->setModified(false);
    QString digits = m_hex->text();
    m_color.take(QColor(digits.startsWith('#') ? digits : digits.prepend('#')));
    pick();
    Q_EMIT pickEnded();
}

void ColorPopover::openBeside(const QWidget& anchor)
{
    Popover::openBeside(anchor, *m_shades);
}

void ColorPopover::keyPressEvent(QKeyEvent* event)
{
    // In the hex field Return has taken the number before it comes here.
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape || isReturn)
        close();
    else
        Popover::keyPressEvent(event);
}

void ColorPopover::closeEvent(QCloseEvent* event)
{
    Q_EMIT pickEnded();
    Popover::closeEvent(event);
}

} // namespace orvane
