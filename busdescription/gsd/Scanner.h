// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/gsd/Encoding.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace BusDescription::Gsd {

/// What a statement has to have at a place and has not.
struct SyntaxError {
    unsigned int line;
    unsigned int column;
    std::string text;
};

/// Goes through a device description file, statement by statement and in each of them from word to word. A
/// statement is a line with the lines that continue it, and begins with a keyword:
///
///     MaxTsdr_9.6 = 60        ; comment
///     User_Prm_Data = 0x00, 1, \   ; goes on
///                     2
///     Text(3) = "slow"
///     Unsigned8 0 0-255
///
/// Blanks, comments and the ends of continued lines between the words are passed over. The content has to
/// outlive it.
class Scanner {
public:
    explicit Scanner(std::string_view content);

    /// Goes to the line behind the one that begins with `mark`, in upper or lower case. False at the end of
    /// the content. `skipped` gets the first line before it that is more than a comment, or 0.
    bool GoBehind(std::string_view mark, unsigned int& skipped);

    /// Goes to the next statement. False where there is none, or a line that begins with "#".
    bool Next();

    /// Lets the next call of Next find the statement again that it has found last.
    void Again() { _again = true; }

    /// The word that the statement begins with; in `line`. Empty where it is no word.
    std::string_view Keyword() const { return _keyword; }

    unsigned int Line() const { return _keywordLine; }

    /// Whether the statement has nothing more.
    bool AtEnd();
    /// Whether the next thing is `character`, which then is passed.
    bool Accept(char character);
    void Expect(char character);
    /// Whether a number comes next.
    bool AtNumber();
    /// Passes a number, decimal or hexadecimal, from `least` to `most`; `what` is what has it in a message.
    std::int64_t Number(std::string_view what, std::int64_t least, std::int64_t most);
    /// Whether what comes next, immediately or after blanks, is the "-" of a range and not a sign.
    bool AtRangeSign();
    /// Passes a text in quotes; it comes without blanks at its ends.
    std::string Text();
    void ExpectEnd();

    /// A piece of the content for people, as UTF-8 and not too long.
    std::string Shown(std::string_view piece) const;
    [[noreturn]] void Fail(const std::string& text);

private:
    [[noreturn]] void FailAtWord(const std::string& before, const std::string& behind);

    bool AtLineEnd() const { return _at == _content.size() || _content[_at] == '\n'; }

    char Peek() const { return _at < _content.size() ? _content[_at] : '\n'; }

    void NewLine();
    void LookAtLine();
    bool PassContinuation(bool inText);
    void PassBlanks();
    void PassRest();

    std::string_view _content;
    Encoding _encoding;
    std::size_t _at = 0;
    std::size_t _lineStart = 0;
    unsigned int _line = 1;
    std::string_view _keyword;
    unsigned int _keywordLine = 0;
    bool _again = false;
    bool _begun = false;        // a statement is under way
    unsigned int _lookedAt = 0; // the line that the following are of
    std::size_t _lineEnd = 0;   // where it ends
    std::size_t _quotesEnd = 0; // behind its last quote
};

/// Whether both are the same but for upper and lower case.
bool SameWord(std::string_view a, std::string_view b);
/// In lower case.
std::string LowerWord(std::string_view word);

} // namespace BusDescription::Gsd
