#include "CommandActions.h"

#include "AppModel.h"
#include "Commands.h"
#include "HeldMouse.h"
#include "Icon.h"
#include "Shell.h"

#include <QAction>
#include <QCoreApplication>
#include <QEvent>
#include <QMenu>
#include <QMenuBar>
#include <QStyleOptionMenuItem>

#include <string_view>

namespace orvane {

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("Commands", text);
}

QString titleOf(const Command& command, const Shell& shell)
{
    // The one title that the model words itself: it tells what is saved where.
    if (std::string_view(command.id) == "save")
        return QString::fromStdString(shell.model.saveTitle());
    return translated(command.title ? command.title(shell) : command.text);
}

/// Marks only what is on and does not say so itself: "Hide Inspector" needs no check.
class CommandMenu final : public QMenu {
public:
    using QMenu::QMenu;

protected:
    void initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const override
    {
        QMenu::initStyleOption(option, action);
        if (!action->isChecked() || action->data().toBool())
            option->checkType = QStyleOptionMenuItem::NotCheckable;
    }
};

} // namespace

CommandActions::CommandActions(Shell& shell, QWidget& window)
    : QObject(&window)
    , m_shell(shell)
    , m_watch([this] { refresh(); })
{
    for (const Command& command : commandTable()) {
        auto* action = new QAction(translated(command.text), &window);
        action->setObjectName(command.id);
        QList<QKeySequence> keys;
        for (const char* key : command.keys)
            keys << QKeySequence(key);
        action->setShortcuts(keys);
        if (*command.icon)
            action->setIcon(icon(command.icon));
        action->setIconVisibleInMenu(false);
        action->setCheckable(command.isOn != nullptr);
        action->setData(command.title != nullptr);
        // A held key would switch to and fro.
        action->setAutoRepeat(!command.isOn);
        connect(action, &QAction::triggered, this, [this, &command] {
            command.run(m_shell);
            m_watch.schedule();
        });
        action->installEventFilter(this);
        window.addAction(action);
        m_entries.push_back({&command, action});
    }
    AppModel& m = shell.model;
    m_watch.watch(m.session, m.activeImageID, m.sourceImage, m.history, m.adjust, m.curve, m.lights,
                  m.ciHealSpots, m.crop, m.rotation, m.flipH, m.flipV, m.aspectId, m.lookStrength,
                  m.lutID, m.lutAmount, m.canvasAspect, m.canvasFill, m.canvasColor, m.texts,
                  m.collections, m.currentCollectionName, m.savedImageSources, m.comparing,
                  m.cropMode, m.relightMode, m.healing, m.pickingWhite, m.histogramOn,
                  m.isExporting, m.exportFolder);
}

bool CommandActions::eventFilter(QObject* action, QEvent* event)
{
    if (event->type() == QEvent::Shortcut && isMouseHeld())
        return true;
    return QObject::eventFilter(action, event);
}

void CommandActions::fill(QMenuBar& menus) const
{
    QMenu* menu = nullptr;
    for (const Entry& entry : m_entries) {
        QString title = QString::fromUtf8(entry.command->menu);
        const bool beginsGroup = title.endsWith('|');
        title.remove('|');
        if (!menu || menu->objectName() != title) {
            menu = new CommandMenu('&' + translated(title.toUtf8().constData()), &menus);
            menus.addMenu(menu);
            menu->setObjectName(title);
            menu->setToolTipsVisible(false);
        }
        if (beginsGroup)
            menu->addSeparator();
        menu->addAction(entry.action);
    }
}

QAction* CommandActions::action(const char* id) const
{
    for (const Entry& entry : m_entries) {
        if (std::string_view(entry.command->id) == id)
            return entry.action;
    }
    return nullptr;
}

void CommandActions::refresh()
{
    for (const Entry& entry : m_entries) {
        const Command& command = *entry.command;
        entry.action->setText(titleOf(command, m_shell));
        entry.action->setEnabled(command.isEnabled(m_shell));
        if (command.isOn)
            entry.action->setChecked(command.isOn(m_shell));
    }
}

} // namespace orvane
