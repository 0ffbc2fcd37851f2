#pragma once

#include <QLineEdit>

namespace orvane {

/// A number at rest, shown whole and with its unit, that a click or a typed key turns into a field.
/// Enter and leaving take what is typed, Escape gives it up.
class ValueField final : public QLineEdit {
    Q_OBJECT

public:
    explicit ValueField(const QString& unit, QWidget* parent = nullptr);

    /// While something is being typed it stays as it is.
    void setNumber(double number);
    bool isEditing() const { return m_isEditing; }
    /// The number of a text with white space around it, in the C locale, a comma for a point;
    /// absent when it is none.
    static std::optional<double> parsed(const QString& text);

Q_SIGNALS:
    /// Not yet held to any range.
    void numberTyped(double number);

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void begin();
    void commit();
    void end();
    void show();

    QString m_unit;
    double m_number = 0;
    bool m_isEditing = false;
    bool m_isFirstPress = false; ///< the one that gave the focus: all is selected, not placed
};

} // namespace orvane
