#include "service/documentfilter.h"

#include "contract/recordformat.h"
#include "service/documentcolumns.h"
#include "service/session.h"
#include "store/schema.h"
#include "store/textindex.h"

#include <algorithm>

namespace kelva {
namespace {

Error badToken(const QString &token)
{
    return {ErrorCode::BadInput, QStringLiteral("The filter \"%1\" is not understood.").arg(token.left(80))};
}

bool isTrivial(const QString &clause)
{
    QString bare = clause;
    return bare.remove(QLatin1Char(' ')) == QLatin1String("1=1");
}

/// "OPT:NAME;argument" or "OPT:NAME"
bool splitToken(const QString &token, QLatin1String name, QString *argument)
{
    if (!token.startsWith(name))
        return false;
    const QString rest = token.mid(name.size());
    if (!rest.startsWith(QLatin1Char(';')))
        return false;
    *argument = rest.mid(1);
    return true;
}

Result<QVector<qint64>> parseNumbers(const QString &token, const QString &list)
{
    QVector<qint64> numbers;
    for (const QString &part : list.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool isNumber = false;
        const qint64 number = part.trimmed().toLongLong(&isNumber);
        if (!isNumber)
            return badToken(token);
        numbers.append(number);
    }
    return numbers;
}

Result<void> parseToken(const QString &token, DocumentFilter *filter)
{
    const QString fullText = QStringLiteral("OPT:FULLTEXT") + recordformat::fieldSeparator;
    QString argument;
    if (token == QLatin1String("OPT:MINE")) {
        filter->mine = true;
    } else if (token == QLatin1String("OPT:TRASH")) {
        filter->trash = true;
    } else if (token == QLatin1String("OPT:IGNORERIGHTS")) {
        filter->ignoreRights = true;
    } else if (token == QLatin1String("OPT:DEFDATE;2")) {
        filter->resubmissionDue = true;
    } else if (token.startsWith(fullText)) {
        filter->fullText = token.mid(fullText.size());
    } else if (splitToken(token, QLatin1String("OPT:SELECTION"), &argument)) {
        const Result<QVector<qint64>> numbers = parseNumbers(token, argument);
        if (!numbers)
            return numbers.error();
        filter->hasSelection = true;
        filter->selection += numbers.value();
    } else if (splitToken(token, QLatin1String("OPT:LIMIT"), &argument)) {
        bool isNumber = false;
        constexpr qint64 most = 100'000'000;
        filter->limit = std::min(argument.toLongLong(&isNumber), most);
        if (!isNumber || filter->limit < 0)
            return badToken(token);
    } else {
        return badToken(token);
    }
    return {};
}

void add(SqlCondition *whole, const SqlCondition &part)
{
    whole->sql += QStringLiteral(" AND ") + part.sql;
    whole->values += part.values;
    whole->usesTextIndex = whole->usesTextIndex || part.usesTextIndex;
}

Result<void> addSelection(SqlCondition *whole, const DocumentFilter &filter)
{
    QStringList either;
    SqlCondition all;
    const auto addRows = [&](const char *select, const SqlCondition &rows) {
        either << QLatin1String(select) + rows.sql;
        all.values += rows.values;
        all.usesTextIndex = all.usesTextIndex || rows.usesTextIndex;
    };
    const char *const entries = "SELECT id FROM classification WHERE ";
    const QString document = QStringLiteral("document");
    if (filter.hasSelection)
        addRows(entries, sql::inList(document, filter.selection));
    const Result<TextTerms> terms = fullTextTerms(filter.fullText);
    if (!terms)
        return terms.error();
    if (!terms.value().empty()) {
        addRows(entries, textindex::fileWords(document, terms.value()));
        addRows("", textindex::rowsWithWords(schema::wordTable(QStringLiteral("bemerkung")), terms.value()));
    }
    // One set of records: an OR between them would be tried on every record.
    all.sql = QStringLiteral("c.id IN (%1)").arg(either.join(QStringLiteral(" UNION ALL ")));
    if (!either.isEmpty())
        add(whole, all);
    else if (!filter.fullText.isEmpty())
        add(whole, {sql::never, {}});
    return {};
}

} // namespace

Result<DocumentFilter> DocumentFilter::parse(const QStringList &filters)
{
    DocumentFilter filter;
    for (const QString &entry : filters) {
        if (!entry.startsWith(QLatin1String("OPT:"))) {
            if (!isTrivial(entry))
                filter.clauses << entry;
        } else if (const Result<void> parsed = parseToken(entry, &filter); !parsed) {
            return parsed.error();
        }
    }
    return filter;
}

Result<DocumentCondition> conditionFor(Session &session, const DocumentFilter &filter,
                                       const DocumentColumns &columns)
{
    const Access &access = session.access();
    DocumentCondition condition;
    SqlCondition &wanted = condition.wanted;
    // Written out, not bound: the planner must see it to use the index of the trash.
    wanted.sql = filter.trash ? QStringLiteral("c.trashed = 1") : QStringLiteral("c.trashed = 0");
    if (session.subArchive() > 0)
        add(&wanted, {QStringLiteral("c.subarchive = ?"), {session.subArchive()}});
    const ClauseFields fields = columns.clauseFields(filter.resubmissionDue ? session.today() : QDate());
    for (const QString &clause : filter.clauses) {
        const Result<SqlCondition> part = translateClause(clause, fields, session.today());
        if (!part)
            return part.error();
        add(&wanted, part.value());
    }
    if (filter.mine)
        add(&wanted, {QStringLiteral("c.account = ?"), {session.account()}});
    if (const Result<void> added = addSelection(&wanted, filter); !added)
        return added.error();
    condition.inTrash = filter.trash;
    condition.asksForEverything =
        !filter.mine && filter.clauses.isEmpty() && !filter.hasSelection && filter.fullText.isEmpty();
    condition.needsRights = !access.seesEverything() && !(filter.ignoreRights && access.isAdmin());
    return condition;
}

qint64 longestSearchMs(Database &database)
{
    constexpr qint64 atLeast = 1500;
    constexpr qint64 recordsPerMs = 65;
    return qMax(atLeast, database.value(QStringLiteral("SELECT max(id) FROM classification")).toLongLong() /
                             recordsPerMs);
}

Result<TextTerms> fullTextTerms(const QString &text)
{
    int words = 0;
    TextTerms terms;
    QString word;
    bool quoted = false;
    QStringList phrase;
    const auto endWord = [&](bool prefix) {
        if (word.isEmpty())
            return;
        ++words;
        if (quoted)
            phrase << word;
        else
            terms.push_back({{word}, prefix});
        word.clear();
    };
    const auto endPhrase = [&] {
        endWord(false);
        if (!phrase.isEmpty())
            terms.push_back({phrase, false});
        phrase.clear();
    };
    for (const QChar c : text) {
        if (c.isLetterOrNumber() || c.isSurrogate() || c.isMark()) {
            word += c;
        } else if (c == QLatin1Char('"')) {
            endPhrase();
            quoted = !quoted;
        } else {
            endWord(c == QLatin1Char('*'));
        }
    }
    endPhrase();
    if (words > WordQuery::mostWords)
        return Error{ErrorCode::BadInput,
                     QStringLiteral("The search has more than %1 words. Please leave some out.")
                         .arg(WordQuery::mostWords)};
    return terms;
}

} // namespace kelva
