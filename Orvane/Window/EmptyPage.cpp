#include "EmptyPage.h"

#include "IconView.h"
#include "Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace orvane {

namespace {

constexpr int signSize = 64;
constexpr int titlePixels = 18;

} // namespace

EmptyPage::EmptyPage(QWidget* parent)
    : QWidget(parent)
    , m_sign(new IconView("images", signSize, Theme::disabledText))
{
    auto* title = new QLabel(tr("No image open"));
    QFont large = font();
    large.setPixelSize(titlePixels);
    large.setWeight(QFont::Medium);
    title->setFont(large);
    auto* description = new QLabel(tr("Drop an image here, or open one."));
    QPalette colors = description->palette();
    colors.setColor(QPalette::WindowText, Theme::secondaryText);
    description->setPalette(colors);
    auto* column = new QVBoxLayout(this);
    column->setSpacing(0);
    column->addStretch(4);
    column->addWidget(m_sign, 0, Qt::AlignHCenter);
    column->addSpacing(18);
    column->addWidget(title, 0, Qt::AlignHCenter);
    column->addSpacing(6);
    column->addWidget(description, 0, Qt::AlignHCenter);
    column->addSpacing(22);
    column->addWidget(makeButtons(), 0, Qt::AlignHCenter);
    column->addStretch(5);
}

QWidget* EmptyPage::makeButtons()
{
    auto* buttons = new QWidget;
    auto* row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(10);
    auto* open = new QPushButton(tr("Open Image…"));
    auto* import = new QPushButton(tr("Import from Photos…"));
    connect(open, &QPushButton::clicked, this, &EmptyPage::openAsked);
    connect(import, &QPushButton::clicked, this, &EmptyPage::importAsked);
    for (QPushButton* button : {open, import}) {
        button->setAutoDefault(true); // Enter presses the one with the focus
        row->addWidget(button);
    }
    m_open = open;
    return buttons;
}

void EmptyPage::setDropTargeted(bool isTargeted)
{
    m_sign->setColor(isTargeted ? Theme::accent : Theme::disabledText);
}

void EmptyPage::takeFocus()
{
    m_open->setFocus();
}

void EmptyPage::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), Theme::surround);
}

} // namespace orvane
