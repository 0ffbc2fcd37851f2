#include "JSONDocument.h"

#include "JSONScalars.h"
#include "UTF8.h"

#include <algorithm>
#include <limits>

namespace orvane {

std::optional<bool> JSONView::boolean() const
{
    if (kind() != JSONToken::Kind::True && kind() != JSONToken::Kind::False)
        return std::nullopt;
    return kind() == JSONToken::Kind::True;
}

std::optional<double> JSONView::number() const
{
    return kind() == JSONToken::Kind::Number ? std::optional(token().number) : std::nullopt;
}

std::optional<std::string> JSONView::string() const
{
    if (kind() != JSONToken::Kind::String && kind() != JSONToken::Kind::EscapedString)
        return std::nullopt;
    const std::string_view raw(m_text + token().text.start, token().text.length);
    return kind() == JSONToken::Kind::String ? std::string(raw) : unescaped(raw);
}

bool JSONView::isText(std::string_view text) const
{
    const std::string_view raw(m_text + token().text.start, token().text.length);
    return kind() == JSONToken::Kind::String ? raw == text : unescaped(raw) == text;
}

// One after the other: a record has a dozen or two, and a table of them would cost more to make.
std::optional<JSONView> JSONView::member(std::string_view key) const
{
    JSONView name = first();
    for (size_t i = 0; i < count(); ++i) {
        const JSONView value = name.next();
        if (name.isText(key))
            return value;
        name = value.next();
    }
    return std::nullopt;
}

Result<JSONView> JSONDocument::parse(std::string_view text)
{
    start(text);
    if (!parseValue(0) || !finish())
        return *m_error;
    return value();
}

void JSONDocument::start(std::string_view text)
{
    m_text = text;
    m_at = 0;
    m_tokens.clear();
    m_error.reset();
    m_isFirst = true;
    // Tokens hold places in the text in 32 bits.
    if (text.size() > std::numeric_limits<uint32_t>::max())
        fail("the text is too long");
}

bool JSONDocument::openObject()
{
    skipSpace();
    return !failed() && (take('{') || fail("expected an object"));
}

bool JSONDocument::member(Member& member)
{
    skipSpace();
    if (take('}'))
        return false;
    if (!m_isFirst && !take(','))
        return fail("expected “,” or “}”");
    m_isFirst = false;
    // The list holds the key alone, then the value alone, so that value() is always the first
    // token.
    m_tokens.clear();
    skipSpace();
    if (!parseString())
        return false;
    member.key = *value().string();
    m_tokens.clear();
    skipSpace();
    if (!take(':'))
        return fail("expected “:”");
    skipSpace();
    member.start = m_at;
    // The object around it is a level too.
    if (!parseValue(1))
        return false;
    member.length = m_at - member.start;
    return true;
}

bool JSONDocument::finish()
{
    skipSpace();
    return !failed() && (m_at == m_text.size() || fail("expected the end of the text"));
}

bool JSONDocument::fail(const char* what, size_t at)
{
    // The first complaint is the cause; those of the callers on the way out follow from it.
    if (!m_error)
        m_error = Error{"not valid JSON at byte " + std::to_string(at + 1) + ": " + what};
    return false;
}

void JSONDocument::skipSpace()
{
    while (m_at < m_text.size()
           && (m_text[m_at] == ' ' || m_text[m_at] == '\n' || m_text[m_at] == '\r'
               || m_text[m_at] == '\t'))
        ++m_at;
}

bool JSONDocument::take(char c)
{
    if (m_at == m_text.size() || m_text[m_at] != c)
        return false;
    ++m_at;
    return true;
}

/// Answers an index, as a pointer would not outlive the next token. What holds others sets its own
/// `next` when they are all there.
uint32_t JSONDocument::add(Kind kind)
{
    JSONToken& token = m_tokens.emplace_back();
    token.kind = kind;
    token.next = uint32_t(m_tokens.size());
    return token.next - 1;
}

bool JSONDocument::parseValue(int depth)
{
    if (failed())
        return false;
    skipSpace();
    if (m_at == m_text.size())
        return fail("the text ends too early");
    switch (m_text[m_at]) {
    case '{':
        return parseObject(depth + 1);
    case '[':
        return parseArray(depth + 1);
    case '"':
        return parseString();
    case 't':
        return parseWord("true", Kind::True);
    case 'f':
        return parseWord("false", Kind::False);
    case 'n':
        return parseWord("null", Kind::Null);
    default:
        return parseNumber();
    }
}

bool JSONDocument::parseWord(std::string_view word, Kind kind)
{
    if (m_text.substr(m_at, word.size()) != word)
        return fail("expected a value");
    m_at += word.size();
    add(kind);
    return true;
}

bool JSONDocument::skipDigits()
{
    const size_t start = m_at;
    while (m_at < m_text.size() && isDigit(m_text[m_at]))
        ++m_at;
    return m_at > start || fail("expected a digit");
}

/// A number is checked here, for from_chars() takes what JSON does not: leading zeros, ".5", "inf".
bool JSONDocument::parseNumber()
{
    const size_t start = m_at;
    if (!take('-') && !isDigit(m_text[m_at]))
        return fail("expected a value");
    if (!take('0') && !skipDigits())
        return false;
    if (take('.') && !skipDigits())
        return false;
    if (take('e') || take('E')) {
        if (!take('+'))
            take('-');
        if (!skipDigits())
            return false;
    }
    const std::optional<double> number = numberValue(m_text.substr(start, m_at - start));
    if (!number)
        return fail("the number is too large", start);
    const uint32_t index = add(Kind::Number);
    m_tokens[index].number = *number;
    return true;
}

/// Leaves the text where it is: most are short and compared only, and few have escapes.
bool JSONDocument::parseString()
{
    if (!take('"'))
        return fail("expected a text in quotes");
    const size_t start = m_at;
    Kind kind = Kind::String;
    while (m_at < m_text.size() && m_text[m_at] != '"') {
        const auto byte = static_cast<unsigned char>(m_text[m_at]);
        if (byte == '\\') {
            kind = Kind::EscapedString;
            if (!skipEscape())
                return false;
        } else if (byte < 0x20) {
            return fail("a control character inside a text");
        } else if (byte < 0x80) {
            ++m_at;
        } else {
            const size_t length = utf8Length(m_text, m_at);
            if (length == 0)
                return fail("the text is not UTF-8");
            m_at += length;
        }
    }
    const size_t length = m_at - start;
    if (!take('"'))
        return fail("a text without an end");
    const uint32_t index = add(kind);
    m_tokens[index].text = {uint32_t(start), uint32_t(length)};
    return true;
}

/// From the backslash on. A character past U+FFFF is written as two escapes, a high surrogate and a
/// low one; either alone is no character, and no UTF-8 can stand for it.
bool JSONDocument::skipEscape()
{
    constexpr std::string_view single = "\"\\/bfnrt";
    const auto codeAt = [&](size_t at) {
        const std::string_view digits = m_text.substr(std::min(at, m_text.size()), 4);
        const bool right =
            digits.size() == 4 && digits.find_first_not_of("0123456789abcdefABCDEF") == digits.npos;
        return right ? int(hexValue(digits.data())) : -1;
    };
    const char name = m_at + 1 < m_text.size() ? m_text[m_at + 1] : '\0';
    if (name != '\0' && single.find(name) != single.npos) {
        m_at += 2;
        return true;
    }
    const int code = name == 'u' ? codeAt(m_at + 2) : -1;
    if (code < 0)
        return fail("an unknown escape inside a text");
    size_t length = 6;
    if (code >= 0xd800 && code < 0xe000) {
        const int low = m_text.substr(m_at + 6, 2) == "\\u" ? codeAt(m_at + 8) : -1;
        if (code >= 0xdc00 || low < 0xdc00 || low >= 0xe000)
            return fail("half a character inside a text");
        length = 12;
    }
    m_at += length;
    return true;
}

bool JSONDocument::parseArray(int depth)
{
    if (depth > maximumDepth)
        return fail("nested more than 200 levels deep");
    ++m_at;
    const uint32_t array = add(Kind::Array);
    uint32_t count = 0;
    skipSpace();
    if (!take(']')) {
        do {
            if (!parseValue(depth))
                return false;
            ++count;
            skipSpace();
        } while (take(','));
        if (!take(']'))
            return fail("expected “,” or “]”");
    }
    m_tokens[array].count = count;
    m_tokens[array].next = uint32_t(m_tokens.size());
    return true;
}

bool JSONDocument::parseObject(int depth)
{
    if (depth > maximumDepth)
        return fail("nested more than 200 levels deep");
    ++m_at;
    const uint32_t object = add(Kind::Object);
    uint32_t count = 0;
    skipSpace();
    if (!take('}')) {
        do {
            skipSpace();
            if (!parseString())
                return false;
            skipSpace();
            if (!take(':'))
                return fail("expected “:”");
            if (!parseValue(depth))
                return false;
            ++count;
            skipSpace();
        } while (take(','));
        if (!take('}'))
            return fail("expected “,” or “}”");
    }
    m_tokens[object].count = count;
    m_tokens[object].next = uint32_t(m_tokens.size());
    return checkKeys(object);
}

/// No key twice. Keys in ascending order, as they are written here, need no sorting.
bool JSONDocument::checkKeys(uint32_t object)
{
    const uint32_t end = m_tokens[object].next;
    std::string_view last;
    bool ascending = true;
    for (uint32_t key = object + 1; key < end && ascending; key = m_tokens[key + 1].next) {
        const JSONToken& token = m_tokens[key];
        const std::string_view name = m_text.substr(token.text.start, token.text.length);
        ascending = token.kind == Kind::String && (key == object + 1 || last < name);
        last = name;
    }
    if (ascending)
        return true;

    // Without their escapes: "a" and "\u0061" are one key.
    std::vector<std::string> names;
    for (uint32_t key = object + 1; key < end; key = m_tokens[key + 1].next)
        names.push_back(*JSONView(m_tokens.data(), key, m_text.data()).string());
    std::sort(names.begin(), names.end());
    if (std::adjacent_find(names.begin(), names.end()) != names.end())
        return fail("a key stands twice in one object");
    return true;
}

} // namespace orvane
