// The LUT of the edit, and the library that it is kept in.

#include "AppModel.h"

#include "AtomicFile.h"
#include "SourceKey.h"
#include "Wording.h"

#include <algorithm>

namespace orvane {

namespace {

/// A cube of 64 with long numbers takes some 20 MB.
constexpr size_t largestCubeFile = size_t(256) << 20;

} // namespace

void AppModel::importLut()
{
    const auto chosen = m_desktop.choose({.choosing = OpenPanel::Choosing::FilesOfExtension,
                                          .message = "Choose a .cube LUT.",
                                          .prompt = "Load",
                                          .extensions = {"cube"}});
    if (chosen.empty())
        return;
    const std::filesystem::path& file = chosen.front();
    Result<std::string> text = readTextFile(file, largestCubeFile);
    if (text && !isUTF8(*text))
        text = Error{"The file isn't a text in UTF-8."};
    if (!text) {
        report("Couldn't read " + inQuotes(SourceKey::readableName(file)), text.error());
        return;
    }
    const auto table = LUT::fromCube(*text);
    if (!table) {
        m_desktop.ask({.message = "That LUT couldn't be read",
                       .informative = "Orvane reads 3D .cube LUTs (LUT_3D_SIZE 2–64). A 1D LUT or "
                                      "a damaged file won't load."});
        return;
    }
    const std::string name = SourceKey::readableName(file.stem());
    const auto entry = LutStore::Entry::of(newID("lut_"), name, *table);
    if (const Result<void> kept = m_lutStore.save(entry); !kept) {
        report("Couldn't keep " + inQuotes(name), kept.error());
        return;
    }
    lutID = entry.id;
    lutAmount = 100;
    ensureLut(entry.id);
    commitHistory();
}

void AppModel::removeLut()
{
    lutID = std::string();
    ensureLut({});
    commitHistory();
}

void AppModel::ensureLut(const std::string& id)
{
    const auto loaded = id.empty() ? std::nullopt : m_lutStore.load(id);
    using SessionRules::LutState;
    const LutState state = SessionRules::lutState(id, loaded.has_value());
    ciLUT = state == LutState::Loaded ? std::optional(loaded->table) : std::nullopt;
    lutName = state == LutState::Loaded ? loaded->name : std::string();
    lutMissing = state == LutState::Missing;
}

bool AppModel::sessionHasMissingLut() const
{
    const auto& open = session.value();
    return std::any_of(open.begin(), open.end(), [&](const EditImage& image) {
        const std::string id = sessionItem(image).current.lutID;
        return !id.empty() && !m_lutStore.load(id);
    });
}

} // namespace orvane
