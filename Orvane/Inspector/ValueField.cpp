#include "ValueField.h"

#include <QKeyEvent>

#include <cmath>

namespace orvane {

ValueField::ValueField(const QString& unit, QWidget* parent)
    : QLineEdit(parent)
    , m_unit(unit)
{
    setReadOnly(true);
    setAlignment(Qt::AlignRight);
    setContextMenuPolicy(Qt::NoContextMenu);
    show();
}

std::optional<double> ValueField::parsed(const QString& text)
{
    bool isNumber = false;
    const double number = text.trimmed().replace(',', '.').toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

void ValueField::setNumber(double number)
{
    if (number == m_number)
        return;
    m_number = number;
    if (!m_isEditing)
        show();
}

void ValueField::show()
{
    setText(QString::number(std::llround(m_number)) + m_unit);
}

void ValueField::begin()
{
    m_isEditing = true;
    setReadOnly(false);
    setText(QString::number(m_number, 'g', 6));
    setModified(false);
    selectAll();
}

void ValueField::end()
{
    m_isEditing = false;
    setReadOnly(true);
    deselect();
    show();
}

void ValueField::commit()
{
    const auto typed = isModified() ? parsed(text()) : std::nullopt;
    end();
    if (typed)
        Q_EMIT numberTyped(*typed);
}

bool ValueField::event(QEvent* event)
{
    // Escape is for the field alone while something is being typed, whatever the window does with
    // it otherwise.
    if (event->type() == QEvent::ShortcutOverride && m_isEditing
        && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void ValueField::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason)
        return;
    m_isFirstPress = event->reason() == Qt::MouseFocusReason;
    begin();
}

void ValueField::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    if (m_isEditing && event->reason() != Qt::PopupFocusReason)
        commit();
}

void ValueField::mousePressEvent(QMouseEvent* event)
{
    if (!m_isEditing) {
        begin();
        m_isFirstPress = true;
    }
    if (!m_isFirstPress)
        QLineEdit::mousePressEvent(event);
}

void ValueField::mouseReleaseEvent(QMouseEvent* event)
{
    if (!std::exchange(m_isFirstPress, false))
        QLineEdit::mouseReleaseEvent(event);
}

void ValueField::keyPressEvent(QKeyEvent* event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (m_isEditing && isEnter) {
        commit();
    } else if (m_isEditing && event->key() == Qt::Key_Escape) {
        end();
    } else if (!m_isEditing && isEnter) {
        begin();
    } else {
        const bool types = !event->text().isEmpty() && event->text()[0].isPrint();
        if (!m_isEditing && types)
            begin();
        QLineEdit::keyPressEvent(event);
    }
}

} // namespace orvane
