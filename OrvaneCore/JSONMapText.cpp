#include "JSONMapText.h"

#include <utility>

namespace orvane {

Result<JSONMapText> JSONMapText::parsed(std::string text, Check check)
{
    JSONMapText map;
    map.m_text = std::move(text);
    JSONDocument document;
    document.start(map.m_text);
    JSONDocument::Member member;
    if (!document.openObject())
        return document.error();
    while (document.member(member)) {
        JSONReader reader;
        const bool isGood = reader.at(std::string_view(member.key),
                                      [&] { return check(reader, document.value()); });
        if (!isGood)
            return reader.error();
        // With the end as a hint: keys mostly come sorted, as this class writes them, and an
        // insertion then needs no search.
        const size_t before = map.m_values.size();
        map.m_values.try_emplace(map.m_values.end(), member.key, Span{member.start, member.length});
        if (map.m_values.size() == before)
            return Error{"the key “" + member.key + "” stands twice"};
    }
    if (!document.finish())
        return document.error();
    return map;
}

std::optional<std::string_view> JSONMapText::find(const std::string& key) const
{
    const auto value = m_values.find(key);
    if (value == m_values.end())
        return std::nullopt;
    return std::string_view(m_text).substr(value->second.start, value->second.length);
}

Result<JSONMapText> JSONMapText::updated(const std::map<std::string, std::string>& values) const
{
    JSONMapText map;
    // A large store is tens of megabytes; growing by steps would copy it several times. 8: quotes,
    // colon, comma, and some escapes.
    size_t size = m_text.size();
    for (const auto& [key, value] : values)
        size += key.size() + value.size() + 8;
    map.m_text.reserve(size);
    map.m_text.assign(1, '{');

    // A merge of two sorted lists, so that each key goes to the end of the new text and map. Where
    // both have the key, the changed value is taken and the kept one is skipped.
    auto changed = values.begin();
    auto kept = m_values.begin();
    while (changed != values.end() || kept != m_values.end()) {
        const bool takesKept =
            changed == values.end() || (kept != m_values.end() && kept->first < changed->first);
        const std::string& key = takesKept ? kept->first : changed->first;
        const Result<void> added = map.append(key, takesKept ? *find(key) : changed->second);
        if (!added)
            return added.error();
        if (kept != m_values.end() && kept->first == key)
            ++kept;
        if (!takesKept)
            ++changed;
    }
    map.m_text += '}';
    return map;
}

Result<void> JSONMapText::append(const std::string& key, std::string_view value)
{
    const Result<std::string> name = JSON(key).serialized();
    if (!name)
        return name.error();
    if (!m_values.empty())
        m_text += ',';
    (m_text += *name) += ':';
    // Places, not views: the text may move as it grows.
    m_values.try_emplace(m_values.end(), key, Span{m_text.size(), value.size()});
    m_text += value;
    return {};
}

} // namespace orvane
