#include "NameDialog.h"

#include "Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace orvane {

namespace {

constexpr int textWidth = 380;
constexpr int buttonHeight = 28;

QLabel* textLine(const QString& text)
{
    auto* line = new QLabel(text);
    line->setTextFormat(Qt::PlainText);
    line->setWordWrap(true);
    line->setFixedWidth(textWidth);
    // A wrapped label of a fixed width still asks for the height of a narrower one.
    line->setMinimumHeight(line->heightForWidth(textWidth));
    return line;
}

QLabel* heading(const QString& title)
{
    QLabel* const line = textLine(title);
    QFont font = line->font();
    font.setPixelSize(15);
    font.setWeight(QFont::Medium);
    line->setFont(font);
    return line;
}

} // namespace

NameDialog::NameDialog(const QString& title, const QString& message, const QString& acceptText,
                       const QString& initial, QWidget* parent)
    : QDialog(parent)
    , m_field(new QLineEdit(initial))
    , m_accept(new QPushButton(acceptText))
{
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    m_field->setAccessibleName(tr("Name"));
    m_field->setPlaceholderText(tr("Name"));
    m_field->setFixedHeight(buttonHeight);
    m_field->selectAll();
    auto* cancel = new QPushButton(tr("Cancel"));
    cancel->setAutoDefault(false);
    m_accept->setDefault(true);
    for (QPushButton* button : {cancel, m_accept}) {
        button->setFixedHeight(buttonHeight);
        button->setMinimumWidth(84);
    }

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch(1);
    buttons->addWidget(cancel);
    buttons->addWidget(m_accept);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(20, 18, 20, 18);
    column->setSpacing(12);
    column->addWidget(heading(title));
    if (!message.isEmpty()) {
        QLabel* const line = textLine(message);
        QPalette colors = line->palette();
        colors.setColor(QPalette::WindowText, Theme::secondaryText);
        line->setPalette(colors);
        column->addWidget(line);
    }
    column->addWidget(m_field);
    column->addSpacing(4);
    column->addLayout(buttons);
    column->setSizeConstraint(QLayout::SetFixedSize);
    m_field->setFocus();

    const auto follow = [this] { m_accept->setEnabled(!m_field->text().trimmed().isEmpty()); };
    connect(m_field, &QLineEdit::textChanged, this, follow);
    connect(m_accept, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    follow();
}

void NameDialog::onAccept(std::function<void(const QString&)> take)
{
    connect(this, &QDialog::accepted, this, [this, take = std::move(take)] { take(name()); });
}

QString NameDialog::name() const
{
    return m_field->text();
}

} // namespace orvane
