#include "NameDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace orvane {

namespace {

constexpr int dialogWidth = 400;

} // namespace

NameDialog::NameDialog(QWidget* parent)
    : QDialog(parent)
    , m_name(new QLineEdit)
{
    setWindowTitle(tr("Name this look"));
    setModal(true);
    auto* title = new QLabel(windowTitle());
    QFont semibold = title->font();
    semibold.setWeight(QFont::DemiBold);
    title->setFont(semibold);
    auto* message = new QLabel(tr("It saves the whole grade — light, colour, curves, effects — but "
                                  "not the crop or the lights you placed on this photo."));
    message->setWordWrap(true);
    m_name->setPlaceholderText(tr("Name"));
    m_name->setAccessibleName(tr("Name"));
    m_name->setMinimumHeight(28);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    QPushButton* save = buttons->button(QDialogButtonBox::Save);
    save->setText(tr("Save"));
    save->setEnabled(false);
    buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(20, 20, 20, 16);
    column->setSpacing(12);
    column->addWidget(title);
    column->addWidget(message);
    column->addWidget(m_name);
    column->addWidget(buttons);
    setFixedWidth(dialogWidth);

    connect(m_name, &QLineEdit::textChanged, save,
            [save](const QString& text) { save->setEnabled(!text.trimmed().isEmpty()); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        Q_EMIT named(m_name->text());
        accept();
    });
}

} // namespace orvane
