#pragma once

#include <QString>
#include <QStringList>

#include <initializer_list>
#include <span>

namespace orvane {

class Shell;

/// A command of the window: everything about it in one row.
struct Command {
    const char* id;
    const char* menu; ///< of the menu bar, "|" behind it where a new group begins
    const char* text; ///< when `title` is absent
    std::initializer_list<const char*> keys;
    bool (*isEnabled)(const Shell&);
    void (*run)(Shell&);
    const char* icon = "";
    const char* (*title)(const Shell&) = nullptr; ///< a text that changes with the state
    bool (*isOn)(const Shell&) = nullptr; ///< whether a command that switches something is on
};

/// All commands in the order of their menus. Menus, toolbar, keys, help and tests read this table.
std::span<const Command> commandTable();

/// The keys of a command as this desktop writes them, the first being the one that its menu shows.
QStringList keysOf(const char* id);

} // namespace orvane
