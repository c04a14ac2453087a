#pragma once

#include <QChar>
#include <QString>
#include <QStringList>

/// What the one-line search above the document table stands on.
struct OneLineSearch
{
    enum class Editor { Line, NumericLine, CheckBox, Calendar, Other };

    QString column; ///< key of the field
    QString value;
    Editor editor = Editor::Other;
    bool offline = false;
    QChar decimalPoint = '.';
};

/// The where clause of a column search. The value goes in as it is; the service takes it apart safely.
QString oneLineClause(const OneLineSearch &search);

/// "OPT:SELECTION;" with the ids of a full-text answer, whose entries hold the id to use online and the one
/// to use offline. No hit gives "-1", so that nothing is found instead of everything.
QString fullTextSelection(const QStringList &hits, bool offline);

/// "OPT:FULLTEXT" with the words for the service's own search.
QString fullTextOption(const QString &words);

constexpr int fullTextMinimumLength = 3;
