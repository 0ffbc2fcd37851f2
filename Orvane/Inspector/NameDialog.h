#pragma once

#include <QDialog>

class QLineEdit;

namespace orvane {

/// Asks for the name of the grade that is about to be saved.
class NameDialog final : public QDialog {
    Q_OBJECT

public:
    explicit NameDialog(QWidget* parent);

Q_SIGNALS:
    /// Not blank.
    void named(const QString& name);

private:
    QLineEdit* m_name;
};

} // namespace orvane
