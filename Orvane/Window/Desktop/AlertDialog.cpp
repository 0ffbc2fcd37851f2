#include "AlertDialog.h"

#include "IconView.h"
#include "Theme.h"
#include "WrappedLabel.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>

#include <algorithm>

namespace orvane {

namespace {

constexpr int textWidth = 380;
constexpr int tallestInformative = 240; ///< beyond it the text scrolls
constexpr int narrowestButton = 84;
/// 4.9 to 1 on a button.
constexpr const char* destructiveColor = "#dd988f";

QString shown(const std::string& text)
{
    return QString::fromStdString(text);
}

/// As the text of a control, where "&" would mark a key.
QString literal(const std::string& text)
{
    return shown(text).replace('&', "&&");
}

size_t lastButton(const Alert& alert)
{
    return alert.buttons.empty() ? 0 : alert.buttons.size() - 1;
}

QWidget* informativeText(const std::string& text)
{
    auto* label = new WrappedLabel(shown(text));
    QPalette colors = label->palette();
    colors.setColor(QPalette::WindowText, Theme::secondaryText);
    label->setPalette(colors);
    const int height = label->heightForWidth(textWidth);
    label->setFixedSize(textWidth, height);
    if (height <= tallestInformative)
        return label;
    auto* scroll = new QScrollArea;
    scroll->setWidget(label);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFixedSize(textWidth + 20, tallestInformative);
    scroll->setAccessibleName(label->text());
    return scroll;
}

} // namespace

AlertDialog::AlertDialog(const Alert& alert, QWidget* parent)
    : QDialog(parent)
    , m_answer(lastButton(alert))
{
    setWindowTitle("Orvane");
    setModal(true);
    setAccessibleName(shown(alert.message));
    setAccessibleDescription(shown(alert.informative));
    auto* upper = new QHBoxLayout;
    upper->setSpacing(14);
    if (alert.style == Alert::Style::Warning) {
        auto* sign = new IconView("triangle-alert", 24, Theme::text);
        sign->setAccessibleName(tr("Warning"));
        upper->addWidget(sign, 0, Qt::AlignTop);
    }
    upper->addWidget(makeTexts(alert));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(22, 20, 22, 18);
    column->setSpacing(20);
    column->addLayout(upper);
    column->addWidget(makeButtons(alert));
    column->setSizeConstraint(QLayout::SetFixedSize);
}

QWidget* AlertDialog::makeTexts(const Alert& alert)
{
    auto* texts = new QWidget;
    auto* column = new QVBoxLayout(texts);
    column->setContentsMargins(0, 2, 0, 0);
    column->setSpacing(8);
    auto* message = new WrappedLabel(shown(alert.message));
    QFont medium = font();
    medium.setWeight(QFont::Medium);
    message->setFont(medium);
    message->setFixedSize(textWidth, message->heightForWidth(textWidth));
    column->addWidget(message);
    if (!alert.informative.empty())
        column->addWidget(informativeText(alert.informative));
    return texts;
}

/// From the right: the default, then the others in their order. Tab goes in the order of reading.
QWidget* AlertDialog::makeButtons(const Alert& alert)
{
    const std::vector<std::string> names =
        alert.buttons.empty() ? std::vector<std::string>{tr("OK").toStdString()} : alert.buttons;
    auto* buttons = new QWidget;
    auto* row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->setDirection(QBoxLayout::RightToLeft);
    for (size_t i = 0; i < names.size(); ++i) {
        auto* button = new QPushButton(literal(names[i]), buttons);
        button->setMinimumWidth(std::max(narrowestButton, button->sizeHint().width()));
        connect(button, &QPushButton::clicked, this, [this, i] {
            m_answer = i;
            accept();
        });
        if (i == 0) {
            button->setDefault(true);
            button->setFocus();
            if (alert.isFirstDestructive)
                button->setStyleSheet(QString("color: %1;").arg(destructiveColor));
        }
        row->addWidget(button);
    }
    row->addStretch(1);
    return buttons;
}

void AlertDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy))
        QApplication::clipboard()->setText(accessibleName() + "\n" + accessibleDescription());
    else
        QDialog::keyPressEvent(event);
}

size_t AlertDialog::ask(const Alert& alert, QWidget* over)
{
    // On the heap: the window that goes takes its dialogs along.
    const QPointer<AlertDialog> dialog = new AlertDialog(alert, over);
    dialog->exec();
    const size_t answer = dialog ? dialog->answer() : lastButton(alert);
    delete dialog;
    return answer;
}

} // namespace orvane
