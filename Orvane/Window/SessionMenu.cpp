#include "SessionMenu.h"

#include "AppModel.h"
#include "IconButton.h"
#include "NameDialog.h"
#include "Theme.h"

#include <QMenu>
#include <QPainter>

namespace orvane {

namespace {

constexpr int longestName = 200; ///< on the button, in view points; a longer one is elided
constexpr int chevronRoom = 20;

/// Of a menu or button, where a single "&" would underline the next letter.
QString literal(QString text)
{
    return text.replace('&', "&&");
}

QString titleOf(const Collection& collection)
{
    const size_t count = collection.sources.size();
    const QString images =
        count == 1 ? SessionMenu::tr("1 image") : SessionMenu::tr("%1 images").arg(count);
    return QString("%1 · %2").arg(QString::fromStdString(collection.name), images);
}

} // namespace

SessionMenu::SessionMenu(AppModel& model, QWidget* parent)
    : QToolButton(parent)
    , m_model(model)
    , m_menu(new QMenu(this))
    , m_watch([this] { refresh(); })
{
    setObjectName("sessionMenu");
    setIcon(orvane::icon("square-stack"));
    setIconSize({16, 16});
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setPopupMode(InstantPopup);
    setMenu(m_menu);
    setFixedHeight(flatButtonHeight);
    setToolTip(tr("Save this set of images and edits as a named collection, or open one"));
    connect(m_menu, &QMenu::aboutToShow, this, &SessionMenu::fillMenu);
    m_watch.watch(model.currentCollectionName);
    refresh();
}

QSize SessionMenu::sizeHint() const
{
    // The style's own hint has no room for the chevron, nor air at the sides.
    return QToolButton::sizeHint() + QSize(chevronRoom - 4, 0);
}

void SessionMenu::paintEvent(QPaintEvent* event)
{
    QToolButton::paintEvent(event);
    QPainter painter(this);
    orvane::icon("chevron-down", Theme::secondaryText)
        .paint(&painter, QRect(width() - chevronRoom, (height() - 12) / 2, 12, 12));
}

void SessionMenu::refresh()
{
    const QString name = QString::fromStdString(m_model.currentCollectionName);
    const QString shown = name.isEmpty() ? tr("Collection") : name.simplified();
    // The space keeps the icon off the name.
    setText(' ' + literal(fontMetrics().elidedText(shown, Qt::ElideRight, longestName)));
    setAccessibleName(name.isEmpty() ? shown : tr("Collection: %1").arg(shown));
}

void SessionMenu::fillMenu()
{
    m_menu->clear();
    const QString open = QString::fromStdString(m_model.currentCollectionName);
    if (open.isEmpty()) {
        QAction* const save =
            m_menu->addAction(tr("Save Collection…"), this, &SessionMenu::askForName);
        save->setEnabled(!m_model.session.value().empty());
    } else {
        addOpenCollection(open);
    }
    if (!m_model.collections.value().empty())
        addStoredCollections();
}

void SessionMenu::addOpenCollection(const QString& name)
{
    QAction* const update = m_menu->addAction(literal(tr("Update “%1”").arg(name)), this, [this] {
        m_model.saveCollection(m_model.currentCollectionName);
    });
    update->setEnabled(m_model.isDirty());
    m_menu->addAction(tr("Save as New Collection…"), this, &SessionMenu::askForName);
    QAction* const rename = m_menu->addAction(literal(tr("Rename “%1”…").arg(name)), this, [this] {
        if (const Collection* const current = m_model.currentCollection())
            askForNewName(*current);
    });
    rename->setEnabled(m_model.currentCollection() != nullptr);
}

void SessionMenu::addStoredCollections()
{
    const std::vector<Collection> stored = m_model.collections;
    m_menu->addSeparator();
    m_menu->addSection(tr("Open"));
    for (const Collection& collection : stored) {
        m_menu->addAction(literal(titleOf(collection)), this, [this, collection] {
            if (m_model.confirmDiscardingWork())
                m_model.loadSources(collection);
        });
    }
    m_menu->addSeparator();
    m_menu->addSection(tr("Delete"));
    for (const Collection& collection : stored) {
        m_menu->addAction(literal(titleOf(collection)), this,
                          [this, collection] { m_model.deleteCollection(collection); });
    }
}

void SessionMenu::askForName()
{
    auto* dialog = new NameDialog(
        tr("Save collection as"),
        tr("A collection remembers your edits and where the images came from — never a copy of "
           "them. The same image can live in several collections with a different grade in each."),
        tr("Save"), {}, window());
    dialog->onAccept([this](const QString& name) { m_model.saveCollection(name.toStdString()); });
    dialog->open();
}

void SessionMenu::askForNewName(const Collection& collection)
{
    auto* dialog = new NameDialog(tr("Rename collection"), {}, tr("Rename"),
                                  QString::fromStdString(collection.name), window());
    dialog->onAccept([this, collection](const QString& name) {
        m_model.renameCollection(collection, name.toStdString());
    });
    dialog->open();
}

} // namespace orvane
