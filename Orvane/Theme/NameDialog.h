#pragma once

#include <QCoreApplication>
#include <QDialog>

#include <functional>

class QLineEdit;
class QPushButton;

namespace orvane {

/// Asks for a name: a title, a message (which may be empty), one field, two buttons. A blank name
/// cannot be accepted. Shown by open(), it holds the window below until it is answered, and deletes
/// itself after that.
class NameDialog final : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(orvane::NameDialog)

public:
    NameDialog(const QString& title, const QString& message, const QString& acceptText,
               const QString& initial, QWidget* parent);

    /// What is called with the accepted name, as it was typed.
    void onAccept(std::function<void(const QString&)> take);
    QString name() const;

private:
    QLineEdit* m_field;
    QPushButton* m_accept;
};

} // namespace orvane
