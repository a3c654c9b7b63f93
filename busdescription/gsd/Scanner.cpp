// SPDX-License-Identifier: MIT
#include "busdescription/gsd/Scanner.h"

#include <algorithm>
#include <array>

namespace BusDescription::Gsd {

static constexpr std::size_t LONGEST_SHOWN = 60;
static constexpr std::size_t LONGEST_TEXT = 1000;              // files may name one many times
static constexpr std::int64_t LARGEST = std::int64_t{1} << 40; // larger than any that may stand anywhere

static char Small(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

/// Carriage returns are blanks too, wherever they stand; so is what ends a text file of old.
static constexpr std::string_view BLANKS = " \t\r\v\f\x1A";
static constexpr std::string_view WORD_ENDS = " \t\r\v\f\x1A\n=(),;@\"\\";

/// For each byte whether it is one of `characters`.
static constexpr std::array<bool, 256> TableOf(std::string_view characters) {
    std::array<bool, 256> table{};
    for (const char character : characters)
        table[static_cast<unsigned char>(character)] = true;
    return table;
}

static bool IsBlank(char character) {
    static constexpr auto TABLE = TableOf(BLANKS);
    return TABLE[static_cast<unsigned char>(character)];
}

static bool EndsWord(char character) {
    static constexpr auto TABLE = TableOf(WORD_ENDS);
    return TABLE[static_cast<unsigned char>(character)];
}

static bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

static int DigitValue(char character) {
    const char small = Small(character);
    return IsDigit(character) ? character - '0' : small >= 'a' && small <= 'f' ? small - 'a' + 10 : 16;
}

static std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && (IsBlank(text.front()) || text.front() == '\n'))
        text.remove_prefix(1);
    while (!text.empty() && (IsBlank(text.back()) || text.back() == '\n'))
        text.remove_suffix(1);
    return text;
}

bool SameWord(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Small(x) == Small(y); });
}

std::string LowerWord(std::string_view word) {
    std::string lower(word);
    std::transform(lower.begin(), lower.end(), lower.begin(), Small);
    return lower;
}

Scanner::Scanner(std::string_view content) : _content(content), _encoding(TakeEncoding(_content)) {}

std::string Scanner::Shown(std::string_view piece) const {
    return piece.size() <= LONGEST_SHOWN ? ToUtf8(piece, _encoding)
                                         : ToUtf8(piece.substr(0, LONGEST_SHOWN), _encoding) + "…";
}

void Scanner::Fail(const std::string& text) {
    throw SyntaxError{_line, static_cast<unsigned int>(_at - _lineStart + 1), text};
}

// ---- from statement to statement

void Scanner::NewLine() {
    ++_at;
    ++_line;
    _lineStart = _at;
}

bool Scanner::GoBehind(std::string_view mark, unsigned int& skipped) {
    skipped = 0;
    while (_at < _content.size()) {
        const std::size_t end = std::min(_content.find('\n', _at), _content.size());
        std::string_view line = Trimmed(_content.substr(_at, end - _at));
        const bool found = SameWord(line.substr(0, mark.size()), mark);
        line.remove_prefix(found ? mark.size() : 0);
        const bool more = !line.empty() && line[0] != ';';
        if (!found && more && skipped == 0)
            skipped = _line;
        _at = end;
        if (_at < _content.size())
            NewLine();
        if (found && (!more || IsBlank(line[0])))
            return true;
    }
    return false;
}

bool Scanner::Next() {
    if (_again) {
        _again = false;
        return true;
    }
    if (_begun)
        PassRest();
    for (PassBlanks(); _at < _content.size() && AtLineEnd(); PassBlanks())
        NewLine();
    if (_at == _content.size() || _content[_at] == '#')
        return false;
    const std::size_t start = _at;
    while (!EndsWord(Peek()))
        ++_at;
    _keyword = _content.substr(start, _at - start);
    _keywordLine = _line;
    _begun = true;
    return true;
}

void Scanner::PassRest() {
    bool inText = false;
    for (PassBlanks(); !AtLineEnd();) {
        inText = (_content[_at] == '"') != inText;
        ++_at;
        if (!inText)
            PassBlanks();
        else
            while (PassContinuation(true)) {
            }
    }
}

/// Each line only once, however many backslashes it has.
void Scanner::LookAtLine() {
    if (_lookedAt == _line)
        return;
    _lookedAt = _line;
    _lineEnd = std::min(_content.find('\n', _at), _content.size());
    const std::size_t quote = _content.substr(_lineStart, _lineEnd - _lineStart).rfind('"');
    _quotesEnd = quote == std::string_view::npos ? 0 : _lineStart + quote + 1;
}

/// Passes the end of a line that is continued: a backslash, blanks, perhaps a comment. In a text a backslash
/// before a semicolon may as well be part of the text; it is if the text ends in the same line.
bool Scanner::PassContinuation(bool inText) {
    if (Peek() != '\\')
        return false;
    std::size_t end = _at + 1;
    while (end < _content.size() && IsBlank(_content[end]))
        ++end;
    if (end < _content.size() && _content[end] == ';') {
        LookAtLine();
        if (inText && _quotesEnd > end)
            return false;
        end = _lineEnd;
    }
    if (end < _content.size() && _content[end] != '\n')
        return false;
    _at = end;
    if (_at < _content.size())
        NewLine();
    return true;
}

void Scanner::PassBlanks() {
    while (true) {
        while (IsBlank(Peek()))
            ++_at;
        if (Peek() == ';')
            _at = std::min(_content.find('\n', _at), _content.size());
        if (!PassContinuation(false))
            return;
    }
}

// ---- from word to word

bool Scanner::AtEnd() {
    PassBlanks();
    return AtLineEnd();
}

bool Scanner::Accept(char character) {
    PassBlanks();
    const bool there = Peek() == character;
    if (there)
        ++_at;
    return there;
}

void Scanner::Expect(char character) {
    if (!Accept(character))
        Fail(std::string("\"") + character + "\" expected" + (AtLineEnd() ? ", but the line ends" : ""));
}

void Scanner::ExpectEnd() {
    if (AtEnd())
        return;
    const std::size_t end = std::min(_content.find('\n', _at), _content.size());
    Fail("nothing more expected, but " + Shown(Trimmed(_content.substr(_at, end - _at))) + " follows");
}

bool Scanner::AtNumber() {
    PassBlanks();
    return IsDigit(Peek()) || (Peek() == '-' && _at + 1 < _content.size() && IsDigit(_content[_at + 1]));
}

std::int64_t Scanner::Number(std::string_view what, std::int64_t least, std::int64_t most) {
    PassBlanks();
    const bool negative = Peek() == '-';
    std::size_t at = _at + (negative ? 1 : 0);
    const bool hexadecimal = SameWord(_content.substr(at, 2), "0x");
    at += hexadecimal ? 2 : 0;
    const std::size_t digits = at;
    std::int64_t value = 0;
    for (const int base = hexadecimal ? 16 : 10; at < _content.size() && DigitValue(_content[at]) < base;
         ++at)
        value = std::min(value * base + DigitValue(_content[at]), LARGEST);
    value = negative ? -value : value;
    const bool ends = at == _content.size() || EndsWord(_content[at]) || _content[at] == '-';
    if (at == digits || !ends || value < least || value > most)
        FailAtWord(Shown(what) + " is ",
                   ", expected a number from " + std::to_string(least) + " to " + std::to_string(most));
    _at = at;
    return value;
}

/// With the word that comes next between `before` and `behind`.
void Scanner::FailAtWord(const std::string& before, const std::string& behind) {
    std::size_t end = _at;
    while (end < _content.size() && !EndsWord(_content[end]))
        ++end;
    Fail(before + (end == _at ? "nothing" : Shown(_content.substr(_at, end - _at))) + behind);
}

bool Scanner::AtRangeSign() {
    const bool adjacent = !IsBlank(Peek());
    PassBlanks();
    return Peek() == '-' && (adjacent || !AtNumber());
}

std::string Scanner::Text() {
    if (!Accept('"'))
        Fail("a text in double quotes expected");
    const std::size_t start = _at;
    std::size_t piece = _at;
    std::string joined;
    while (Peek() != '"') {
        const std::size_t end = _at;
        if (PassContinuation(true)) {
            joined += _content.substr(piece, end - piece);
            piece = _at;
        } else if (AtLineEnd()) {
            Fail("the text \"" + Shown(Trimmed(_content.substr(start, _at - start))) +
                 " has no quote at its end");
        } else {
            ++_at;
        }
    }
    joined += _content.substr(piece, _at - piece);
    ++_at;
    if (joined.size() > LONGEST_TEXT)
        Fail("a text of " + std::to_string(joined.size()) + " bytes is too long, expected at most " +
             std::to_string(LONGEST_TEXT));
    return ToUtf8(Trimmed(joined), _encoding);
}

} // namespace BusDescription::Gsd
