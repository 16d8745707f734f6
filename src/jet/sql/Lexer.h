// From a statement text of the dialect to its words, marks and constants.
#pragma once

#include <QDateTime>
#include <QString>
#include <QVariant>
#include <optional>
#include <vector>

namespace jet::sql {

enum class TokenKind {
    End,
    Bad,    ///< Text that begins no token, or one that is not closed; see badReason.
    Word,   ///< A bare name or a keyword; may close with "$" or "@" (a function).
    Name,   ///< A name in brackets.
    Text,   ///< Text between double or single quotes.
    Number, ///< 12, 1.5, .5, 1e3, &H1F.
    Date,   ///< #3/7/2026#, #2026-03-07 14:05:09#.
    Comma,
    Semicolon,
    Dot,
    Bang,
    Open,
    Close,
    Star,
    Slash,
    Backslash,
    Caret,
    Plus,
    Minus,
    Ampersand,
    Equal,
    NotEqual,
    Less,
    Greater,
    LessEqual,
    GreaterEqual,
};

/// The words that mean something to the grammar; every other word is a name.
enum class Keyword {
    None,
    All,
    And,
    As,
    Asc,
    Between,
    By,
    Delete,
    Desc,
    Distinct,
    DistinctRow,
    Eqv,
    Exists,
    False,
    From,
    Group,
    Having,
    Imp,
    In,
    Inner,
    Insert,
    Into,
    Is,
    Join,
    Left,
    Like,
    Mod,
    No,
    Not,
    Null,
    Off,
    On,
    Or,
    Order,
    Outer,
    Percent,
    Right,
    Select,
    Set,
    Top,
    True,
    Union,
    Update,
    Values,
    Where,
    Xor,
    Yes,
};

struct Token {
    TokenKind kind = TokenKind::End;
    Keyword keyword = Keyword::None;
    int place = 0; ///< Offset of the first character in the text.
    int length = 0;
};

/// Cuts a text into tokens, the last one an End. Blanks, tabs and line ends
/// separate tokens but are needed only between two words or numbers. Nothing
/// is thrown: what cannot be read becomes a Bad token, so that the parser can
/// tell in which clause it stands; nothing after it is read.
std::vector<Token> tokenize(QStringView text);

/// Why a Bad token cannot be read, in French, without a closing full stop.
QString badReason(QStringView token);

/// The name that a Word or Name token stands for: without brackets, without
/// the closing "$" or "@".
QString nameOf(QStringView token);
/// The text of a Text token, without quotes and with doubled quotes single.
QString textOf(QStringView token);
/// An int where the value is whole, written without point or exponent, and
/// fits 32 bits; else a double; invalid when the number is too large.
QVariant numberOf(QStringView token);
/// The moment that a Date token stands for, month before day or ISO; a time
/// alone belongs to 1899-12-30. Nothing when there is no such date.
std::optional<QDateTime> dateOf(QStringView token);

} // namespace jet::sql
