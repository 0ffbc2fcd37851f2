#pragma once

#include "AtomicFile.h"
#include "JSONCoding.h"
#include "Result.h"

#include <filesystem>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

/// The one way in which the small JSON files are read and written. What it promises: a store that
/// cannot be read is never replaced without a word, and a crash leaves the old store or the new
/// one, whole.
///
/// Beside a store "edits.json" there may be
///
///     edits.json.bak      its bytes before the last save
///     edits.json.corrupt  a file that could not be decoded, moved aside; the last such
///     edits.json.moved    empty; while a damaged store is aside and the save that replaces it has
///                         not come to its end
///
/// A store may be a symbolic link: the file that it points to is read, written and moved aside, and
/// the link stays. To show a store: load(), then value or empty. To change it: loadForUpdate()
/// first, and only if that did not fail, save().
///
/// A file that the system cannot read just now, for want of descriptors or memory, is Unreadable
/// too, but by a fault of the system: nothing is moved for that, and no older backup takes its
/// place. A later attempt finds it.
///
/// No state is kept here, and nothing guards two writers of one file.
namespace orvane::JSONStore {

/// What reading a store came to. Ok: the file decoded. Recovered: its backup did, the file did not.
/// Unreadable: it is there, and neither does. Missing: there is no such file.
enum class LoadKind { Ok, Recovered, Unreadable, Missing };

template <class T> struct Load {
    LoadKind kind = LoadKind::Missing;
    T value{}; ///< of Ok and Recovered
    Error error; ///< of Unreadable: what is wrong with the file itself, not with its backup
    ReadFault fault = ReadFault::File; ///< of Unreadable: the system's may be about the backup

    bool hasValue() const { return kind == LoadKind::Ok || kind == LoadKind::Recovered; }
};

/// The error of a save that would replace a file which nobody can read.
Error wouldOverwriteUnreadable(const std::filesystem::path& url);

/// What the work answers, or an error when there is not enough memory for it.
Error notEnoughMemory(const std::filesystem::path& url);
template <class Work>
auto withinMemory(const std::filesystem::path& url, Work work) -> decltype(work())
{
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return notEnoughMemory(url);
    }
}

// The same for texts; the templates below put values in their place. ------------------------------

/// The bytes of a store, Ok, Unreadable or Missing.
Load<std::string> readText(const std::filesystem::path& url);
/// Whether a damaged store was moved aside and the save that replaces it never came to its end.
bool isRecovering(const std::filesystem::path& url);
std::filesystem::path markOf(const std::filesystem::path& url);
std::filesystem::path backupOf(const std::filesystem::path& url);
/// Moves the store to ".corrupt" in the place of an earlier one. With `recovering`, load() finds
/// the backup until the next save.
enum class MoveReason { Recovering, Unreadable };
Result<void> moveAside(const std::filesystem::path& url, MoveReason reason);
/// Keeps the old bytes as the backup, then puts the text in the store's place.
Result<void> saveText(std::string_view text, const std::filesystem::path& url);

// -------------------------------------------------------------------------------------------------

/// How the text of a store becomes its value.
template <class T> using Reading = Result<T> (*)(std::string&& text);
template <class T> Result<T> decodedStore(std::string&& text)
{
    return decodedText<T>(text);
}

/// The file alone: Ok, Unreadable or Missing.
template <class T>
Load<T> decode(const std::filesystem::path& url, Reading<T> reading = decodedStore<T>)
{
    Load<std::string> text = readText(url);
    if (text.kind != LoadKind::Ok)
        return {text.kind, T{}, std::move(text.error), text.fault};
    try {
        Result<T> value = reading(std::move(text.value));
        if (!value)
            return {LoadKind::Unreadable, T{}, value.error()};
        return {LoadKind::Ok, std::move(*value), {}};
    } catch (const std::bad_alloc&) {
        return {LoadKind::Unreadable, T{}, notEnoughMemory(url), ReadFault::System};
    }
}

/// The file, or its backup when it is damaged. Never writes.
template <class T>
Load<T> load(const std::filesystem::path& url, Reading<T> reading = decodedStore<T>)
{
    Load<T> file = decode<T>(url, reading);
    // A file that is simply not there is missing, whatever backup there is.
    if (file.kind == LoadKind::Ok || (file.kind == LoadKind::Missing && !isRecovering(url)))
        return file;
    // The backup is a generation older: it is for a file that is lost, not for one out of reach.
    if (file.fault == ReadFault::System)
        return file;
    Load<T> backup = decode<T>(backupOf(url), reading);
    if (backup.fault == ReadFault::System)
        return backup;
    if (backup.kind != LoadKind::Ok)
        return file;
    backup.kind = LoadKind::Recovered;
    return backup;
}

/// The value to build a save on. A file that cannot be decoded is moved aside; when its backup
/// cannot be decoded either, the error is wouldOverwriteUnreadable(), and the next attempt starts
/// from `empty`. By a fault of the system nothing is moved, and the error is its own.
template <class T>
Result<T> loadForUpdate(const std::filesystem::path& url, T empty,
                        Reading<T> reading = decodedStore<T>)
{
    Load<T> loaded = load<T>(url, reading);
    switch (loaded.kind) {
    case LoadKind::Ok:
        return std::move(loaded.value);
    case LoadKind::Missing:
        return empty;
    case LoadKind::Recovered:
        if (Result<void> moved = moveAside(url, MoveReason::Recovering); !moved)
            return moved.error();
        return std::move(loaded.value);
    case LoadKind::Unreadable:
        break;
    }
    if (loaded.fault == ReadFault::System)
        return loaded.error;
    // Whether this works or not, the answer is the same; where it does not, the file stays.
    (void)moveAside(url, MoveReason::Unreadable);
    return wouldOverwriteUnreadable(url);
}

/// Fails, with no file touched, on a value that cannot be encoded; and as files fail.
template <class T> Result<void> save(const T& value, const std::filesystem::path& url)
{
    return withinMemory(url, [&]() -> Result<void> {
        const Result<std::string> text = encoded(value);
        if (!text)
            return text.error();
        return saveText(*text, url);
    });
}

} // namespace orvane::JSONStore
