#pragma once

#include "Desktop.h"

#include <QDialog>

class QPushButton;

namespace orvane {

/// A question or message over the window:
///
///     (!)  Message
///          What there is to say of it.
///
///                [Cancel] [Discard] [Save]
///
/// The default button stands at the right and answers to Enter; Escape and closing count as the
/// last one. Texts are plain and stand as they are. Ctrl+C copies them.
class AlertDialog final : public QDialog {
    Q_OBJECT

public:
    AlertDialog(const Alert& alert, QWidget* parent);

    /// The index of the button, in the alert's order.
    size_t answer() const { return m_answer; }

    /// Shows it and waits, even if the window that it lies over goes away meanwhile: then it was
    /// closed.
    static size_t ask(const Alert& alert, QWidget* over);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QWidget* makeTexts(const Alert& alert);
    QWidget* makeButtons(const Alert& alert);

    size_t m_answer;
};

} // namespace orvane
