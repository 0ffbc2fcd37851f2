#pragma once

#include "Result.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// One entry of the list that a JSON text is parsed into: a value, or the key before one, in the
/// order of the text. 16 bytes and no allocation of its own, whatever it holds.
struct JSONToken {
    /// Of a string, in the text, without its quotes.
    struct Span {
        uint32_t start;
        uint32_t length;
    };
    enum class Kind : uint8_t { Null, False, True, Number, String, EscapedString, Array, Object };

    Kind kind = Kind::Null;
    uint32_t next = 0; ///< index of the token after this value and all that is inside it
    union {
        double number = 0;
        Span text;
        uint32_t count; ///< of elements or members
    };
};

/// A parsed value, borrowed from the tokens and the text of a JSONDocument.
class JSONView {
public:
    JSONView(const JSONToken* tokens, uint32_t index, const char* text)
        : m_tokens(tokens)
        , m_index(index)
        , m_text(text)
    {
    }

    JSONToken::Kind kind() const { return token().kind; }
    bool isNull() const { return kind() == JSONToken::Kind::Null; }
    bool isArray() const { return kind() == JSONToken::Kind::Array; }
    bool isObject() const { return kind() == JSONToken::Kind::Object; }

    /// The content; absent when the value is of another kind.
    std::optional<bool> boolean() const;
    std::optional<double> number() const;
    std::optional<std::string> string() const;

    /// Of elements or members.
    size_t count() const { return token().count; }
    /// The first of an array's elements, or of an object's keys; only when there is one.
    JSONView first() const { return {m_tokens, m_index + 1, m_text}; }
    /// What comes after this value or key.
    JSONView next() const { return {m_tokens, token().next, m_text}; }
    /// The member of an object; absent when it has none of that name.
    std::optional<JSONView> member(std::string_view key) const;

private:
    const JSONToken& token() const { return m_tokens[m_index]; }
    bool isText(std::string_view text) const;

    const JSONToken* m_tokens;
    uint32_t m_index;
    const char* m_text;
};

/// Parses JSON texts (RFC 8259, UTF-8) and keeps the tokens of the last value. Refused besides: a
/// key that an object holds twice, numbers beyond a double's range, nesting deeper than
/// maximumDepth, texts of 4 GB. The text is borrowed.
class JSONDocument {
public:
    /// Deeper nesting than this is refused, on reading and on writing.
    static constexpr int maximumDepth = 200;

    /// The whole text as one value, and nothing after it. The error says what is wrong and at which
    /// byte.
    Result<JSONView> parse(std::string_view text);

    // Piece by piece, for an object that is not to be held as a whole: start(), then openObject(),
    // then member() until it answers false, then finish(). False means failed() too.
    void start(std::string_view text);
    bool openObject();
    struct Member {
        std::string key;
        size_t start = 0; ///< of the value, in the text
        size_t length = 0;
    };
    /// The next member, whose value() stands until the next call.
    bool member(Member& member);
    JSONView value() const { return {m_tokens.data(), 0, m_text.data()}; }
    /// Whether nothing but white space is left.
    bool finish();
    bool failed() const { return m_error.has_value(); }
    Error error() const { return *m_error; }

private:
    using Kind = JSONToken::Kind;
    bool fail(const char* what) { return fail(what, m_at); }
    bool fail(const char* what, size_t at);
    void skipSpace();
    bool take(char c);
    bool parseValue(int depth);
    bool parseWord(std::string_view word, Kind kind);
    bool parseNumber();
    bool skipDigits();
    bool parseString();
    bool skipEscape();
    bool parseArray(int depth);
    bool parseObject(int depth);
    bool checkKeys(uint32_t object);
    uint32_t add(Kind kind);

    std::string_view m_text;
    size_t m_at = 0;
    std::vector<JSONToken> m_tokens;
    std::optional<Error> m_error;
    bool m_isFirst = false; ///< in the piecewise reading: no member was read yet
};

} // namespace orvane
