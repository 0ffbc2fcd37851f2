#include "SettingsWindow.h"

#include "AppModel.h"
#include "Icon.h"
#include "Theme.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

namespace orvane {

namespace {

constexpr int windowWidth = 400;
constexpr int rowHeight = 40;
constexpr int sideMargin = 14;

/// A row that opens an address: a text at the left, at the right the mark of what leads outside.
class LinkRow final : public QPushButton {
public:
    LinkRow(const QString& text, const QString& address)
        : QPushButton(text)
    {
        setFixedHeight(rowHeight);
        setCursor(Qt::PointingHandCursor);
        setToolTip(address);
        setAccessibleName(text);
        setAccessibleDescription(address);
    }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        QPushButton::paintEvent(event);
        QPainter painter(this);
        const QRect mark(width() - sideMargin - 14, (height() - 14) / 2, 14, 14);
        orvane::icon("external-link", Theme::secondaryText).paint(&painter, mark);
    }
};

QString look()
{
    return QString("QWidget#rows { background: %1; border-radius: 8px; }"
                   "QPushButton { background: transparent; text-align: left; padding: 0 %2px;"
                   " border: 1px solid transparent; border-radius: 8px; }"
                   "QPushButton:hover { background: %3; }"
                   "QPushButton:focus { border-color: %4; }"
                   "QFrame#divider { background: %5; border: none; }")
        .arg(Theme::section.name())
        .arg(sideMargin)
        .arg(Theme::raised.name(), Theme::accent.name(), Theme::border.name());
}

QFrame* divider()
{
    auto* line = new QFrame;
    line->setObjectName("divider");
    line->setFixedHeight(1);
    return line;
}

QLabel* secondary(const QString& text)
{
    auto* line = new QLabel(text);
    Theme::makeSecondary(*line);
    line->setWordWrap(true);
    return line;
}

} // namespace

SettingsWindow::SettingsWindow(AppModel&, Desktop& desktop, QWidget* parent)
    : QWidget(parent, Qt::Window)
{
    setWindowTitle(tr("Settings"));
    setStyleSheet(look());
    const QString website(
        QString::fromUtf8(AppModel::websiteURL.data(), qsizetype(AppModel::websiteURL.size())));
    const QString feedback(
        QString::fromUtf8(AppModel::feedbackURL.data(), qsizetype(AppModel::feedbackURL.size())));

    auto* rows = new QWidget;
    rows->setObjectName("rows");
    auto* list = new QVBoxLayout(rows);
    list->setContentsMargins(0, 0, 0, 0);
    list->setSpacing(0);
    const std::pair<QString, QString> links[] = {
        {tr("Orvane %1").arg(QString::fromStdString(AppModel::version)), website},
        {tr("Send feedback"), feedback},
        {tr("Website"), website},
    };
    for (const auto& [text, address] : links) {
        if (list->count() > 0)
            list->addWidget(divider());
        auto* row = new LinkRow(text, address);
        list->addWidget(row);
        connect(row, &QPushButton::clicked, this,
                [&desktop, target = address] { desktop.openAddress(target.toStdString()); });
    }

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(20, 18, 20, 18);
    column->setSpacing(8);
    column->addWidget(secondary(tr("About")));
    column->addWidget(rows);
    column->addSpacing(4);
    column->addWidget(secondary(tr("Made by the Orvane developers. Free software under the GNU "
                                   "General Public License, version 3 or later.")));
    setFixedSize(windowWidth, column->heightForWidth(windowWidth));
}

void SettingsWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace orvane
