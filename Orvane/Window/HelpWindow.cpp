#include "HelpWindow.h"

#include "HelpText.h"
#include "Theme.h"

#include <QKeyEvent>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace orvane {

namespace {

constexpr QSize openingSize(460, 560);
constexpr int textMargin = 20;

QString translated(const char* text)
{
    return QCoreApplication::translate(HelpText::context, text);
}

QString look()
{
    return QString("QTextBrowser { background: %1; border: none; }"
                   "QScrollBar:vertical { background: transparent; width: 10px; margin: 2px 0; }"
                   "QScrollBar::handle:vertical { background: %2; min-height: 32px;"
                   " border-radius: 3px; margin: 0 3px 0 1px; }"
                   "QScrollBar::handle:vertical:hover { background: %3; }"
                   "QScrollBar::add-line, QScrollBar::sub-line { height: 0; }"
                   "QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }")
        .arg(Theme::panel.name(), Theme::hover.name(), Theme::disabledText.name());
}

QString keyCap(const QString& key)
{
    // Hard spaces hold the words of a key together and give its ground some room.
    const QString text = QString(key).toHtmlEscaped().replace(' ', "&nbsp;");
    return QString("<span style='background-color:%1; font-size:12px'>&nbsp;%2&nbsp;</span>")
        .arg(Theme::raised.name(), text);
}

/// All keys of an action; of two that share a row, the first of each.
QString keysOf(const HelpText::Row& row, const HelpWindow::Keys& keys)
{
    QStringList caps;
    if (!row.actionIds[1]) {
        for (const QString& key : keys(row.actionIds[0]))
            caps += keyCap(key);
        return caps.join(" ");
    }
    for (const char* id : row.actionIds)
        caps += keyCap(keys(id).value(0));
    return caps.join(" / ");
}

QString paragraph(const char* text, const HelpWindow::Keys& keys)
{
    QString html = translated(text).toHtmlEscaped();
    for (const char* id : {"save", "export"})
        html.replace(QString("{%1}").arg(id), keys(id).value(0).toHtmlEscaped());
    static const QRegularExpression bold("\\*\\*(.+?)\\*\\*");
    html.replace(bold, "<b>\\1</b>");
    return QString("<p style='line-height:135%; margin-top:0; margin-bottom:10px'>%1</p>")
        .arg(html);
}

QString table(const HelpText::Group& group, const HelpWindow::Keys& keys)
{
    QString html =
        QString("<p style='margin-top:18px; margin-bottom:8px; color:%1'>%2</p>"
                "<table width='100%' cellspacing='0' cellpadding='4' style='margin-left:-4px'>")
            .arg(Theme::secondaryText.name(), translated(group.title).toHtmlEscaped());
    for (const HelpText::Row& row : group.rows)
        html += QString("<tr><td width='37%'>%1</td><td>%2</td></tr>")
                    .arg(keysOf(row, keys), translated(row.description).toHtmlEscaped());
    return html + "</table>";
}

QString page(const HelpWindow::Keys& keys)
{
    QString html =
        QString(
            "<p style='font-size:15px; font-weight:500; margin-top:0; margin-bottom:10px'>%1</p>")
            .arg(translated(HelpText::title));
    for (const char* text : HelpText::paragraphs)
        html += paragraph(text, keys);
    for (const HelpText::Group& group : HelpText::groups)
        html += table(group, keys);
    return html;
}

} // namespace

HelpWindow::HelpWindow(const Keys& keys, QWidget* parent)
    : QWidget(parent, Qt::Window)
{
    setWindowTitle(tr("Orvane Help"));
    resize(openingSize);
    auto* text = new QTextBrowser;
    text->setAccessibleName(windowTitle());
    text->setFrameShape(QFrame::NoFrame);
    text->setTabChangesFocus(true);
    // Without a caret, so that the arrow keys scroll.
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    text->setStyleSheet(look());
    text->document()->setDocumentMargin(textMargin);
    text->setHtml(page(keys));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(text);
    setFocusProxy(text);
}

void HelpWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace orvane
