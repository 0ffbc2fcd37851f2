#include "Programs.h"

#include "FileAddress.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QLocale>
#include <QProcess>
#include <QStandardPaths>

#include <optional>

// The forms of these files: "Desktop Entry Specification" 1.5 and "Association between MIME types
// and applications" 1.0.1, freedesktop.org.

namespace orvane {

namespace {

using Group = QHash<QString, QString>;

constexpr qint64 largestFile = 4 << 20;

/// The lines "key=value" of one group of a file; empty when it cannot be read.
Group groupOf(const QString& path, const QString& wanted)
{
    Group group;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > largestFile)
        return group;
    bool isWanted = false;
    for (const QString& line : QString::fromUtf8(file.readAll()).split('\n')) {
        const qsizetype equals = line.indexOf('=');
        if (line.startsWith('['))
            isWanted = line.trimmed() == "[" + wanted + "]";
        else if (isWanted && equals > 0 && !line.startsWith('#'))
            group.insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
    }
    return group;
}

QStringList applicationFolders()
{
    return QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, "applications",
                                     QStandardPaths::LocateDirectory);
}

/// The identities of entries, in the order of preference.
QStringList candidates(const QString& mimeType)
{
    QStringList found;
    const auto add = [&](const QString& path, const QString& group) {
        found += groupOf(path, group).value(mimeType).split(';', Qt::SkipEmptyParts);
    };
    const QString own =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/mimeapps.list";
    add(own, "Default Applications");
    add(own, "Added Associations");
    for (const QString& folder : applicationFolders())
        add(folder + "/mimeinfo.cache", "MIME Cache");
    const QStringList removed =
        groupOf(own, "Removed Associations").value(mimeType).split(';', Qt::SkipEmptyParts);
    found.removeDuplicates();
    found.removeIf([&](const QString& id) { return removed.contains(id); });
    return found;
}

bool isInstalled(const QString& program)
{
    return !program.isEmpty() && !QStandardPaths::findExecutable(program).isEmpty();
}

/// "Name[de_AT]", else "Name[de]", else "Name".
QString localName(const Group& entry)
{
    const QString locale = QLocale().name();
    const QString plain = entry.value("Name");
    const QString language = entry.value("Name[" + locale.section('_', 0, 0) + "]", plain);
    return entry.value("Name[" + locale + "]", language);
}

/// The entry of an identity, from the first folder that has it: that one hides all later ones.
std::optional<Program> programOf(const QString& id)
{
    for (const QString& folder : applicationFolders()) {
        const QString path = folder + "/" + id;
        if (id.contains('/') || !QFileInfo::exists(path))
            continue;
        const Group entry = groupOf(path, "Desktop Entry");
        for (const char* hiding : {"NoDisplay", "Hidden", "Terminal"}) {
            if (entry.value(hiding) == "true")
                return std::nullopt;
        }
        const QString command = entry.value("Exec");
        const QStringList words = QProcess::splitCommand(command);
        const QString name = localName(entry);
        if (words.isEmpty() || name.isEmpty() || !isInstalled(words.constFirst())
            || (entry.contains("TryExec") && !isInstalled(entry.value("TryExec"))))
            return std::nullopt;
        return Program{id, name, command};
    }
    return std::nullopt;
}

/// One word of the command with its codes replaced; nothing when it stood for nothing.
QString replaced(const QString& word, const Program& program, const std::filesystem::path& file)
{
    QString result;
    for (qsizetype i = 0; i < word.size(); ++i) {
        if (word[i] != '%' || i + 1 == word.size()) {
            result += word[i];
            continue;
        }
        switch (word[++i].unicode()) {
        case 'f':
        case 'F':
            result += QFile::decodeName(file.c_str());
            break;
        case 'u':
        case 'U':
            result += fileAddress(file);
            break;
        case 'c':
            result += program.name;
            break;
        case '%':
            result += '%';
            break;
        default: // an icon, or one that is no longer used
            break;
        }
    }
    return result;
}

} // namespace

std::vector<Program> programsFor(const QString& mimeType)
{
    std::vector<Program> programs;
    for (const QString& id : candidates(mimeType)) {
        if (const auto program = programOf(id))
            programs.push_back(*program);
    }
    return programs;
}

Result<void> openWith(const Program& program, const std::filesystem::path& file)
{
    QStringList arguments;
    for (const QString& word : QProcess::splitCommand(program.command)) {
        const QString whole = replaced(word, program, file);
        if (!whole.isEmpty())
            arguments << whole;
    }
    QProcess process;
    process.setProgram(arguments.isEmpty() ? QString() : arguments.takeFirst());
    process.setArguments(arguments);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (process.startDetached())
        return {};
    return Error{"The program “" + program.name.toStdString() + "” could not be started."};
}

} // namespace orvane
