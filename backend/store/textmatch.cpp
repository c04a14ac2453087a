#include "store/textmatch.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace kelva {

namespace {

constexpr uint anyCharacter = 0xffffffff;
constexpr int trigramLength = 3;
constexpr int longestTrigramRun = 64;

/// The full-text tables go by Unicode 6.1: what came later is no upper case to them and counts as a letter.
bool isKnownToTables(uint codePoint)
{
    const QChar::UnicodeVersion version = QChar::unicodeVersion(codePoint);
    return version != QChar::Unicode_Unassigned && version <= QChar::Unicode_6_1 &&
           QChar::category(codePoint) != QChar::Other_NotAssigned;
}

bool isWordStart(uint codePoint)
{
    if (codePoint >= 0x80 && !isKnownToTables(codePoint))
        return true;
    switch (QChar::category(codePoint)) {
    case QChar::Letter_Uppercase:
    case QChar::Letter_Lowercase:
    case QChar::Letter_Titlecase:
    case QChar::Letter_Modifier:
    case QChar::Letter_Other:
    case QChar::Number_DecimalDigit:
    case QChar::Number_Letter:
    case QChar::Number_Other:
    case QChar::Other_PrivateUse:
        return true;
    default:
        return false;
    }
}

/// Accents that stand behind their letter, as far as they do not split a word.
bool isWordAccent(uint codePoint)
{
    constexpr uint first = 0x300;
    constexpr uint last = 0x331;
    constexpr quint64 accents = 0x361f808029fdf;
    return codePoint >= first && codePoint <= last && (accents >> (codePoint - first) & 1) != 0;
}

QString toText(const CodePoints &text, int from, int length)
{
    return QString::fromUcs4(text.constData() + from, length);
}

} // namespace

CodePoints codePoints(const QString &text)
{
    CodePoints result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        if (character.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            result.append(QChar::surrogateToUcs4(character, text.at(++i)));
        else
            result.append(character.unicode());
    }
    return result;
}

CodePoints codePointsOfUtf8(const char *bytes, int size)
{
    CodePoints result;
    result.reserve(size);
    const auto *at = reinterpret_cast<const uchar *>(bytes);
    const uchar *const end = at + size;
    while (at < end) {
        const uint first = *at++;
        const int following = first < 0x80 ? 0 : first >= 0xf0 && first < 0xf8 ? 3 : first >= 0xe0 ? 2 : 1;
        uint codePoint = following == 0 ? first : first & (0x3fu >> following);
        bool wellFormed = following == 0 || (first >= 0xc2 && first < 0xf8 && end - at >= following);
        for (int i = 0; wellFormed && i < following; ++i) {
            wellFormed = (at[i] & 0xc0) == 0x80;
            codePoint = codePoint << 6 | (at[i] & 0x3fu);
        }
        if (wellFormed)
            at += following;
        result.append(wellFormed ? codePoint : uint(QChar::ReplacementCharacter));
    }
    return result;
}

uint foldedCase(uint codePoint)
{
    if (codePoint < 0x80)
        return codePoint >= 'A' && codePoint <= 'Z' ? codePoint + ('a' - 'A') : codePoint;
    return isKnownToTables(codePoint) ? QChar::toCaseFolded(codePoint) : codePoint;
}

LikePattern::LikePattern(const QString &pattern, Qt::CaseSensitivity sensitivity)
    : m_folds(sensitivity == Qt::CaseInsensitive)
{
    m_segments.emplace_back();
    for (const uint codePoint : codePoints(pattern)) {
        if (codePoint == '%') {
            m_segments.emplace_back();
        } else {
            ++m_leastLength;
            m_segments.back().push_back(codePoint == '_' ? anyCharacter
                                        : m_folds        ? foldedCase(codePoint)
                                                         : codePoint);
        }
    }
}

bool LikePattern::matchesAt(const Segment &segment, const uint *text)
{
    return std::equal(segment.begin(), segment.end(), text,
                      [](uint wanted, uint met) { return wanted == anyCharacter || wanted == met; });
}

bool LikePattern::matches(CodePoints text) const
{
    const Segment &first = m_segments.front();
    const Segment &last = m_segments.back();
    if (text.size() < m_leastLength || (m_segments.size() == 1 && text.size() != m_leastLength))
        return false;
    if (m_folds)
        std::transform(text.begin(), text.end(), text.begin(), foldedCase);
    const uint *at = text.constData();
    const uint *const end = at + text.size() - (m_segments.size() == 1 ? 0 : last.size());
    if (!matchesAt(first, at) || (m_segments.size() > 1 && !matchesAt(last, end)))
        return false;
    at += first.size();
    // The first place where a middle segment fits is as good as any later one, so nothing is tried twice.
    for (size_t i = 1; i + 1 < m_segments.size(); ++i) {
        const Segment &segment = m_segments[i];
        while (end - at >= std::ptrdiff_t(segment.size()) && !matchesAt(segment, at))
            ++at;
        if (end - at < std::ptrdiff_t(segment.size()))
            return false;
        at += segment.size();
    }
    return true;
}

QString trigramRun(const QString &pattern)
{
    const CodePoints characters = codePoints(pattern);
    int bestFrom = 0;
    int bestLength = 0;
    int from = 0;
    for (int i = 0; i <= characters.size(); ++i) {
        if (i < characters.size() && characters[i] != '%' && characters[i] != '_')
            continue;
        if (i - from > bestLength) {
            bestFrom = from;
            bestLength = i - from;
        }
        from = i + 1;
    }
    if (bestLength < trigramLength)
        return {};
    return toText(characters, bestFrom, std::min(bestLength, longestTrigramRun));
}

QStringList wordsOf(const QString &text)
{
    QStringList words;
    CodePoints word;
    const auto finishWord = [&] {
        if (!word.isEmpty())
            words << toText(word, 0, word.size());
        word.clear();
    };
    for (const uint codePoint : codePoints(text)) {
        if (isWordStart(codePoint) || (!word.isEmpty() && isWordAccent(codePoint)))
            word.append(foldedCase(codePoint));
        else
            finishWord();
    }
    finishWord();
    return words;
}

Result<WordQuery> WordQuery::parse(const QString &query)
{
    WordQuery result;
    bool missing = false;
    int count = 0;
    for (const QString &side : query.split(QLatin1Char('&'))) {
        const QStringList parts = side.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        missing = missing || parts.isEmpty();
        for (const QString &part : parts) {
            const bool prefix = part.endsWith(QLatin1String(":*"));
            TextTerm term{wordsOf(prefix ? part.chopped(2) : part), prefix};
            count += term.words.size();
            result.m_anyEnding = result.m_anyEnding || part == QLatin1String(":*");
            if (!term.words.isEmpty())
                result.m_terms.push_back(std::move(term));
        }
    }
    if (missing && result.matchesNothing())
        return Error{ErrorCode::BadInput,
                     QStringLiteral("a word is missing beside \"&\" or the query is empty")};
    if (count > mostWords)
        return Error{ErrorCode::BadInput, QStringLiteral("there are more than %1 words").arg(mostWords)};
    return result;
}

bool WordQuery::occurs(const TextTerm &term, const QStringList &words)
{
    const auto fits = [&](const QString &met, const QString &wanted) {
        return term.prefix && &wanted == &term.words.back() ? met.startsWith(wanted) : met == wanted;
    };
    return std::search(words.begin(), words.end(), term.words.begin(), term.words.end(), fits) != words.end();
}

bool WordQuery::matches(const QString &text) const
{
    if (matchesAnyText())
        return !text.isEmpty();
    const QStringList words = wordsOf(text);
    return !m_terms.empty() && std::all_of(m_terms.begin(), m_terms.end(),
                                           [&](const TextTerm &term) { return occurs(term, words); });
}

QString numberText(double number)
{
    if (number == 0)
        return QStringLiteral("0");
    return QString::number(number, 'f', QLocale::FloatingPointShortest);
}

} // namespace kelva
