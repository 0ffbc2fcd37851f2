#include "JSONDocument.h"

#include "UTF8.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>

namespace orvane {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

unsigned hexValue(const char* digits)
{
    unsigned value = 0;
    std::from_chars(digits, digits + 4, value, 16);
    return value;
}

void appendUTF8(std::string& text, unsigned code)
{
    const auto tail = [&](int shift) { text += char(0x80 | ((code >> shift) & 0x3f)); };
    if (code < 0x80) {
        text += char(code);
    } else if (code < 0x800) {
        text += char(0xc0 | (code >> 6));
        tail(0);
    } else if (code < 0x10000) {
        text += char(0xe0 | (code >> 12));
        tail(6);
        tail(0);
    } else {
        text += char(0xf0 | (code >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

/// Of a string that the parser found right.
std::string unescaped(std::string_view text)
{
    constexpr std::string_view names = "\"\\/bfnrt";
    constexpr std::string_view characters = "\"\\/\b\f\n\r\t";
    std::string plain;
    plain.reserve(text.size());
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            plain += text[at];
            continue;
        }
        if (text[++at] != 'u') {
            plain += characters[names.find(text[at])];
            continue;
        }
        unsigned code = hexValue(&text[at + 1]);
        at += 4;
        if (code >= 0xd800 && code < 0xdc00) {
            code = 0x10000 + ((code - 0xd800) << 10) + (hexValue(&text[at + 3]) - 0xdc00);
            at += 6;
        }
        appendUTF8(plain, code);
    }
    return plain;
}

/// Whether the digits of a number that no double can hold name one that is too large; the others
/// are too small and stand for 0. From the place of the first digit that is not 0.
bool isTooLarge(std::string_view digits)
{
    const size_t e = digits.find_first_of("eE");
    const std::string_view mantissa = digits.substr(0, e);
    long exponent = 0;
    if (e != digits.npos) {
        const size_t sign = digits[e + 1] == '+' ? 1 : 0;
        const auto end =
            std::from_chars(&digits[e + 1 + sign], digits.data() + digits.size(), exponent);
        if (end.ec == std::errc::result_out_of_range)
            exponent = digits[e + 1] == '-' ? -1'000'000'000 : 1'000'000'000;
    }
    const size_t point = std::min(mantissa.find('.'), mantissa.size());
    const size_t leading = mantissa.find_first_of("123456789");
    return leading != mantissa.npos && long(point) - long(leading) + exponent > 0;
}

/// The value of plain digits, which most numbers are: a whole number below 2^53 divided by a power
/// of ten that is a double itself is rounded once, so it is the double nearest to the digits.
std::optional<double> plainNumber(std::string_view digits)
{
    constexpr double powers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    if (digits.size() > 17)
        return std::nullopt;
    const bool isNegative = digits[0] == '-';
    uint64_t whole = 0;
    size_t decimals = 0;
    bool isAfterPoint = false;
    for (const char c : digits.substr(isNegative ? 1 : 0)) {
        if (c == '.') {
            isAfterPoint = true;
        } else if (isDigit(c)) {
            whole = whole * 10 + uint64_t(c - '0');
            decimals += isAfterPoint ? 1 : 0;
        } else {
            return std::nullopt;
        }
    }
    if (whole >= uint64_t(1) << 53 || decimals >= std::size(powers))
        return std::nullopt;
    const double number = double(whole) / powers[decimals];
    return isNegative ? -number : number;
}

} // namespace

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
    const std::string_view digits = m_text.substr(start, m_at - start);
    double number = 0;
    if (const std::optional<double> plain = plainNumber(digits)) {
        number = *plain;
    } else {
        const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (end.ec == std::errc::result_out_of_range) {
            if (isTooLarge(digits))
                return fail("the number is too large", start);
            number = digits[0] == '-' ? -0.0 : 0.0;
        }
    }
    const uint32_t index = add(Kind::Number);
    m_tokens[index].number = number;
    return true;
}

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

/// From the backslash on; both halves of a pair of surrogates.
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

    std::vector<std::string> names;
    for (uint32_t key = object + 1; key < end; key = m_tokens[key + 1].next)
        names.push_back(*JSONView(m_tokens.data(), key, m_text.data()).string());
    std::sort(names.begin(), names.end());
    if (std::adjacent_find(names.begin(), names.end()) != names.end())
        return fail("a key stands twice in one object");
    return true;
}

} // namespace orvane
