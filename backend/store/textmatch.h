#pragma once

#include "store/result.h"

#include <QStringList>
#include <QVarLengthArray>

#include <vector>

namespace kelva {

/// Unicode code points of a text; what one "_" of a pattern stands for is one of them.
using CodePoints = QVarLengthArray<uint, 256>;

CodePoints codePoints(const QString &text);

/// Malformed bytes become U+FFFD, one for each byte.
CodePoints codePointsOfUtf8(const char *bytes, int size);

/// Simple case folding: one code point for one, independent of any locale. Letters that came after
/// Unicode 6.1 are left alone, as the full-text tables do not fold them either.
uint foldedCase(uint codePoint);

/// A pattern of LIKE: "%" is any run of characters, "_" exactly one. There is no escape character.
/// The time of a match is bounded by the product of both lengths.
class LikePattern
{
public:
    LikePattern(const QString &pattern, Qt::CaseSensitivity sensitivity);

    bool matches(CodePoints text) const;
    bool matches(const QString &text) const { return matches(codePoints(text)); }

private:
    using Segment = std::vector<uint>;

    static bool matchesAt(const Segment &segment, const uint *text);

    std::vector<Segment> m_segments; ///< what stands between the percent signs
    int m_leastLength = 0;
    bool m_folds = false;
};

/// The longest run of characters without wildcards in a pattern that an index of trigrams can look up
/// whatever their case. Empty when it has fewer than three characters.
QString trigramRun(const QString &pattern);

/// The words of a text, case folded: runs of letters and digits, split as the full-text tables do.
QStringList wordsOf(const QString &text);

/// Words that stand one behind another; with prefix the last one may go on.
struct TextTerm
{
    QStringList words;
    bool prefix = false;
};
using TextTerms = std::vector<TextTerm>;

/// A query for words: words joined by "&", each with ":*" behind it when it is a prefix. A word that holds
/// punctuation becomes words in sequence; words with only blanks between them must all occur.
class WordQuery
{
public:
    /// More would be looked up one by one for no use to anybody.
    static constexpr int mostWords = 100;

    /// A side of an "&" that holds nothing is passed over as long as another one holds a word, as in
    /// "Smith & & Sons". Without any it is an error, and so are too many words.
    static Result<WordQuery> parse(const QString &query);

    /// Without a letter or digit in it, a query matches no text at all.
    bool matchesNothing() const { return m_terms.empty() && !m_anyEnding; }
    /// ":*" and no word beside it, whatever begins with nothing: every text that is not empty.
    bool matchesAnyText() const { return m_terms.empty() && m_anyEnding; }
    bool matches(const QString &text) const;

    /// All of them must occur. There are none when one of the above holds.
    const TextTerms &terms() const { return m_terms; }

private:
    static bool occurs(const TextTerm &term, const QStringList &words);

    TextTerms m_terms;
    bool m_anyEnding = false; ///< a part was ":*" alone
};

/// A number as text: no exponent, no zeros at the end of a fraction, no sign for zero.
QString numberText(double number);

} // namespace kelva
