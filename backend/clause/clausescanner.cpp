#include "clause/clausescanner.h"

#include <algorithm>

namespace kelva {

namespace {

const QLatin1Char quote('\'');
constexpr int longestMetText = 20;
constexpr int farthestQuotes = 4; ///< how many runs of quotes a look ahead goes beyond one

} // namespace

int ClauseScanner::blanksEnd(int from) const
{
    while (from < m_clause.size() && m_clause.at(from).isSpace())
        ++from;
    return from;
}

int ClauseScanner::nameEnd(int from) const
{
    if (!isNameStart(at(from)))
        return from;
    while (isNamePart(at(from)))
        ++from;
    return from;
}

int ClauseScanner::numberEnd(int from) const
{
    const auto digitsEnd = [this](int index) {
        while (isDigit(at(index)))
            ++index;
        return index;
    };
    const int first = at(from) == QLatin1Char('-') ? from + 1 : from;
    int end = digitsEnd(first);
    const bool hasDigits = end > first;
    // As people type it: a point may end a number or begin it.
    if (at(end) == QLatin1Char('.') && (hasDigits || isDigit(at(end + 1))))
        end = digitsEnd(end + 1);
    if (end == first)
        return from;
    if (at(end).toLower() == QLatin1Char('e')) {
        const bool isSigned = at(end + 1) == QLatin1Char('-') || at(end + 1) == QLatin1Char('+');
        const int exponent = end + (isSigned ? 2 : 1);
        if (isDigit(at(exponent)))
            end = digitsEnd(exponent);
    }
    // "12abc" is neither a number nor a name.
    return isNamePart(at(end)) || at(end) == QLatin1Char('.') ? from : end;
}

bool ClauseScanner::wordIs(int from, int end, QLatin1String keyword) const
{
    return QStringView(m_clause).mid(from, end - from).compare(keyword, Qt::CaseInsensitive) == 0;
}

bool ClauseScanner::isReserved(int from, int end) const
{
    for (const char *keyword : {"and", "or", "not", "like", "ilike", "in", "is"})
        if (wordIs(from, end, QLatin1String(keyword)))
            return true;
    return false;
}

int ClauseScanner::keywordEnd(int from, QLatin1String keyword) const
{
    const int end = nameEnd(from);
    return end > from && wordIs(from, end, keyword) ? end : -1;
}

bool ClauseScanner::atEnd()
{
    m_position = blanksEnd(m_position);
    return m_position == m_clause.size();
}

QString ClauseScanner::met()
{
    if (atEnd())
        return QStringLiteral("the end");
    int end = std::max(nameEnd(m_position), numberEnd(m_position));
    if (end == m_position)
        end = m_position + (at(m_position).isHighSurrogate() ? 2 : 1);
    const QString text = m_clause.mid(m_position, std::min(end - m_position, longestMetText));
    return QLatin1Char('"') + text +
           (end - m_position > longestMetText ? QStringLiteral("...\"") : QStringLiteral("\""));
}

bool ClauseScanner::takeSymbol(QLatin1String symbol)
{
    m_position = blanksEnd(m_position);
    if (!QStringView(m_clause).mid(m_position).startsWith(symbol))
        return false;
    m_position += symbol.size();
    return true;
}

bool ClauseScanner::takeKeyword(QLatin1String keyword)
{
    m_position = blanksEnd(m_position);
    const int end = keywordEnd(m_position, keyword);
    if (end < 0)
        return false;
    m_position = end;
    return true;
}

bool ClauseScanner::takeName(QString *name)
{
    m_position = blanksEnd(m_position);
    const int end = nameEnd(m_position);
    if (end == m_position || isReserved(m_position, end))
        return false;
    *name = m_clause.mid(m_position, end - m_position);
    m_position = end;
    return true;
}

bool ClauseScanner::takeNumber(QString *number)
{
    m_position = blanksEnd(m_position);
    const int end = numberEnd(m_position);
    if (end == m_position)
        return false;
    *number = m_clause.mid(m_position, end - m_position);
    m_position = end;
    return true;
}

bool ClauseScanner::isQuote()
{
    m_position = blanksEnd(m_position);
    return at(m_position) == quote;
}

bool ClauseScanner::takeQuoted(Place place, int depth, QString *text)
{
    text->clear();
    int from = m_position + 1;
    for (;;) {
        const int first = m_clause.indexOf(quote, from);
        if (first < 0)
            return false;
        int behind = first + 1;
        while (at(behind) == quote)
            ++behind;
        const int quotes = behind - first;
        const bool ends = valueEndsBefore(behind, place, depth);
        text->append(QStringView(m_clause).mid(from, first - from));
        // Two quotes stand for one, as far as they come in pairs.
        text->append(QString((ends ? quotes : quotes + 1) / 2, quote));
        if (ends) {
            m_position = behind;
            return true;
        }
        from = behind;
    }
}

// What the following functions look at ends a few runs of quotes further on at the latest, so that the look
// ahead of all quotes of a clause together takes time in proportion to its length.

bool ClauseScanner::valueEndsBefore(int index, Place place, int depth) const
{
    index = blanksEnd(index);
    if (index == m_clause.size())
        return true;
    switch (place) {
    case Place::LeftOperand:
        return castFollows(index) || operatorFollows(index);
    case Place::RightOperand:
        return castFollows(index) || restOfClauseFollows(index, depth);
    case Place::List:
        return nextListEntryFollows(index) ||
               (at(index) == QLatin1Char(')') && restOfClauseFollows(index + 1, depth));
    case Place::WordQuery:
        return at(index) == QLatin1Char(')') && restOfClauseFollows(index + 1, depth);
    }
    return false;
}

bool ClauseScanner::castFollows(int index) const
{
    return at(index) == QLatin1Char(':') && at(index + 1) == QLatin1Char(':') &&
           keywordEnd(blanksEnd(index + 2), QLatin1String("varchar")) > 0;
}

bool ClauseScanner::operatorFollows(int index) const
{
    const QChar character = at(index);
    if (character == QLatin1Char('=') || character == QLatin1Char('<') || character == QLatin1Char('>'))
        return true;
    if (character == QLatin1Char('!'))
        return at(index + 1) == QLatin1Char('=');
    for (const char *keyword : {"like", "ilike", "in", "is", "not"})
        if (keywordEnd(index, QLatin1String(keyword)) > 0)
            return true;
    return false;
}

bool ClauseScanner::nextListEntryFollows(int index) const
{
    if (at(index) != QLatin1Char(','))
        return false;
    index = blanksEnd(index + 1);
    if (at(index) == quote || numberEnd(index) > index)
        return true;
    for (const char *keyword : {"true", "false", "null"})
        if (keywordEnd(index, QLatin1String(keyword)) > 0)
            return true;
    return false;
}

bool ClauseScanner::restOfClauseFollows(int index, int depth) const
{
    for (;; ++index) {
        index = blanksEnd(index);
        if (index == m_clause.size())
            return true;
        if (at(index) != QLatin1Char(')'))
            break;
        if (depth-- == 0)
            return false;
    }
    const int end = nameEnd(index);
    return (wordIs(index, end, QLatin1String("and")) || wordIs(index, end, QLatin1String("or"))) &&
           conditionFollows(end);
}

/// Whether a condition could begin here, judged by the words up to the next sign: in "dogs' and cats'" none
/// does. A condition that is wrong in itself must count as one, or its fault would vanish in a value.
bool ClauseScanner::conditionFollows(int index) const
{
    QStringView word;
    QStringView wordBefore;
    const auto isOneOf = [](QStringView met, std::initializer_list<const char *> keywords) {
        return std::any_of(keywords.begin(), keywords.end(), [=](const char *keyword) {
            return met.compare(QLatin1String(keyword), Qt::CaseInsensitive) == 0;
        });
    };
    for (;;) {
        index = blanksEnd(index);
        const int end = std::max(nameEnd(index), numberEnd(index));
        if (end > index) {
            wordBefore = word;
            word = QStringView(m_clause).mid(index, end - index);
            index = end;
            if (isOneOf(wordBefore, {"like", "ilike"}) ||
                (isOneOf(word, {"null"}) && isOneOf(wordBefore, {"is", "not"})))
                return true;
            continue;
        }
        const bool begins = word.isEmpty() || isOneOf(word, {"not", "and", "or"});
        if (at(index) == QLatin1Char('(')) {
            if (isOneOf(word, {"in", "to_tsvector"}))
                return true;
            if (!begins)
                return false;
            ++index;
            continue;
        }
        if (at(index) == quote)
            return isOneOf(word, {"like", "ilike"}) || (begins && quotedOperandFollows(index));
        if (at(index) == QLatin1Char(':'))
            return at(index + 1) == QLatin1Char(':');
        return index == m_clause.size() || operatorFollows(index);
    }
}

/// Only doubled quotes are taken to be inside such an operand, as nothing that a user types stands there.
bool ClauseScanner::quotedOperandFollows(int index) const
{
    for (int run = 0; run < farthestQuotes; ++run) {
        const int first = m_clause.indexOf(quote, index + 1);
        if (first < 0)
            return false;
        for (index = first; at(index + 1) == quote;)
            ++index;
        if ((index - first) % 2 == 0)
            return blanksEnd(index + 1) < m_clause.size() &&
                   valueEndsBefore(index + 1, Place::LeftOperand, 0);
    }
    return false;
}

} // namespace kelva
