#pragma once

#include <QString>

namespace kelva {

/// Reads the tokens of a clause from left to right. Positions are indices into the clause.
class ClauseScanner
{
public:
    /// Where a quoted text stands, which decides what may come behind it.
    enum class Place { LeftOperand, RightOperand, List, WordQuery };

    explicit ClauseScanner(const QString &clause) : m_clause(clause) {}

    int position() const { return m_position; }
    /// Skips blanks.
    bool atEnd();
    /// What comes next, in few words, for a refusal. Skips blanks.
    QString met();

    /// Each of these skips blanks and takes what it names, or leaves all else as it is and returns false.
    bool takeSymbol(QLatin1String symbol);
    bool takeKeyword(QLatin1String keyword);
    bool takeName(QString *name); ///< no reserved word
    bool takeNumber(QString *number);
    bool isQuote();

    /// A quoted text; the scanner stands on its opening quote. A quote inside it ends it only when what comes
    /// behind can follow a value there, else it belongs to the value: nobody doubles the quotes of what users
    /// type. Returns false when nothing ends it. depth is the number of open parentheses.
    bool takeQuoted(Place place, int depth, QString *text);

private:
    static bool isDigit(QChar character)
    {
        return character >= QLatin1Char('0') && character <= QLatin1Char('9');
    }
    static bool isNameStart(QChar character) { return character.isLetter(); }
    static bool isNamePart(QChar character)
    {
        return character.isLetter() || isDigit(character) || character == QLatin1Char('_');
    }

    QChar at(int index) const { return index < m_clause.size() ? m_clause.at(index) : QChar(); }
    int blanksEnd(int from) const;
    int nameEnd(int from) const;
    int numberEnd(int from) const;
    int keywordEnd(int from, QLatin1String keyword) const;
    bool isReserved(int from, int end) const;
    bool wordIs(int from, int end, QLatin1String keyword) const;

    bool valueEndsBefore(int index, Place place, int depth) const;
    bool castFollows(int index) const;
    bool operatorFollows(int index) const;
    bool nextListEntryFollows(int index) const;
    bool restOfClauseFollows(int index, int depth) const;
    bool conditionFollows(int index) const;
    bool quotedOperandFollows(int index) const;

    const QString &m_clause;
    int m_position = 0;
};

} // namespace kelva
