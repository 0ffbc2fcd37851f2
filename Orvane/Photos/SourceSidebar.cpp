#include "SourceSidebar.h"

#include "IconView.h"
#include "Theme.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace orvane {

namespace {

constexpr int usualWidth = 240;
constexpr int smallestWidth = 220; ///< the button stays whole
constexpr int signSize = 40;

QLabel* centred(const QString& text)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignHCenter);
    label->setWordWrap(true);
    return label;
}

QFont medium(const QWidget& widget)
{
    QFont font = widget.font();
    font.setWeight(QFont::Medium);
    return font;
}

} // namespace

SourceSidebar::SourceSidebar(QWidget* parent)
    : QWidget(parent)
{
    setMinimumWidth(smallestWidth);
    setAccessibleName(tr("Photos"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeTitle());
    column->addWidget(makeInvitation(), 1);
}

QSize SourceSidebar::sizeHint() const
{
    return {usualWidth, QWidget::sizeHint().height()};
}

QWidget* SourceSidebar::makeTitle()
{
    auto* title = new QLabel(tr("Photos"));
    title->setFont(medium(*this));
    title->setFixedHeight(40);
    title->setContentsMargins(16, 0, 16, 0);
    return title;
}

/// A little above the middle, where an empty column is looked at first.
QWidget* SourceSidebar::makeInvitation()
{
    auto* invitation = new QWidget;
    auto* column = new QVBoxLayout(invitation);
    column->setContentsMargins(20, 0, 20, 0);
    column->setSpacing(0);
    auto* heading = centred(tr("Browse your photo library"));
    heading->setFont(medium(*this));
    auto* explanation =
        centred(tr("Connect your library to pick photos from the sidebar. You can also use "
                   "File ▸ Import from Photos, which needs no access at all."));
    Theme::makeSecondary(*explanation);
    explanation->setContentsMargins(8, 0, 8, 0);
    auto* connecting = new QPushButton(tr("Connect Photos Library"));
    connecting->setAutoDefault(false);
    connect(connecting, &QPushButton::clicked, this, &SourceSidebar::connectAsked);
    column->addStretch(2);
    column->addWidget(new IconView("images", signSize, Theme::disabledText), 0, Qt::AlignHCenter);
    column->addSpacing(14);
    column->addWidget(heading);
    column->addSpacing(8);
    column->addWidget(explanation);
    column->addSpacing(18);
    column->addWidget(connecting, 0, Qt::AlignHCenter);
    column->addStretch(3);
    return invitation;
}

} // namespace orvane
