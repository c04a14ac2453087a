#include "search/clausecases.h"

namespace {

using Value = SearchRow::Value;
using Rows = QList<SearchRow>;

SearchRow row(const QString &field, const QString &op, const QString &value, Value kind = Value::Other)
{
    return {"The " + field, field, op, value, QString(), kind};
}

SearchRow choice(const QString &field, const QString &op, const QString &key)
{
    return {"The " + field, field, op, "some name", key, Value::Other};
}

SearchRow words(const QString &value)
{
    return {"full text", "full text", "search for", value, QString(), Value::Other};
}

/// Of one row.
ClauseCase one(const char *name, const SearchRow &row, const QString &clause, const char *found)
{
    return {name, {row}, clause + " AND  1 = 1 ", found, QString()};
}

ClauseCase many(const char *name, const Rows &rows, const QString &clause, const char *found)
{
    return {name, rows, clause + " AND  1 = 1 ", found, QString()};
}

ClauseCase offline(ClauseCase test)
{
    test.offline = true;
    return test;
}

SearchRow amount(const QString &op, const QString &value)
{
    return row("attr1", op, value, Value::Number);
}

SearchRow paid(const QString &value)
{
    return row("attr2", "is", value, Value::CheckBox);
}

SearchRow status(const QString &op, const QString &key)
{
    return choice("status", op, key);
}

SearchRow description(const QString &op, const QString &value)
{
    return row("bemerkung", op, value);
}

const char everything[] = "1 2 3 4 5 6";

QVector<ClauseCase> plainCases()
{
    const Rows notFilledIn{{"not assigned", "Unknown", "is", "x", "", Value::Other},
                           {"Gone", "Unknown", "is", "x", "", Value::Other},
                           description("", "x"),
                           description("not assigned", "x")};
    return {
        {"no rows", {}, " 1 = 1 ", everything, ""},
        {"rows that are not filled in", notFilledIn, " 1 = 1 ", everything, ""},
        {"words of files", {words("one"), words("two")}, " 1 = 1 ", everything, "one two "},
        one("text contains", description("contains", "miete"), "bemerkung::varchar ilike '%miete%'::varchar",
            "1"),
        offline(one("text contains, offline", description("contains", "Miete"),
                    "bemerkung::varchar like '%Miete%'::varchar", "1")),
        one("text does not contain", description("not contains", "rechnung"),
            "bemerkung::varchar not ilike '%rechnung%'::varchar", "1 4 5 6"),
        one("number is a word", row("docart", "is", "three"), "docart::varchar = 'three'::varchar", ""),
        one("the stored value goes before the text", choice("folder", "is", "1.1"), "folder = '1.1'", "1 2"),
        one("a folder further down is no number", choice("folder", "is not", "1.2.1"),
            "folder::varchar != '1.2.1'::varchar", "1 2 4 5 6"),
        many("a span of dates",
             {row("cdate", "greater/equal then", "2024-01-01"), row("cdate", "smaller then", "2024-08-11")},
             "cdate::varchar >= '2024-01-01'::varchar AND cdate::varchar < '2024-08-11'::varchar", "1 4"),
        many("a date that moves along",
             {row("defdate", "smaller/equal then", "[HEUTE+7]"), status("is", "2")},
             "defdate::varchar <= '[HEUTE+7]'::varchar AND status = '2'", "1 5"),
    };
}

QVector<ClauseCase> kindCases()
{
    ClauseCase otherLocale =
        one("number of another locale", amount("is", "12,5"), "attr1::varchar = '12,5'::varchar", "");
    otherLocale.decimalPoint = '.';
    return {
        one("number of the locale", amount("is", "12,5"), "attr1 = '12.5'", "1"),
        otherLocale,
        one("a comma in a text", row("attr3", "is", "1,5"), "attr3::varchar = '1,5'::varchar", "1"),
        one("number greater", amount("greater then", "0"), "attr1 > '0'", "1 2"),
        one("no number", amount("is", ""), "attr1::varchar = '' or attr1 IS NULL", "3 6"),
        one("contains no number", amount("contains", ""), "attr1::varchar ilike '' or attr1 IS NULL", "3 6"),
        one("does not contain no number", amount("not contains", ""),
            "attr1::varchar not ilike '' or attr1 IS NOT NULL", "1 2 4 5"),
        one("greater than no number", amount("greater then", ""), "attr1::varchar > ''::varchar", "1 2 4 5"),
        one("box ticked", paid("2"), "(attr2::varchar = '2'::varchar)", "1 4"),
        one("box not ticked", paid("0"),
            "(attr2::varchar = '0'::varchar OR attr2 != 2::varchar OR attr2 IS NULL)", "2 3 5 6"),
    };
}

QVector<ClauseCase> groupCases()
{
    return {
        many("one value or another", {status("is", "2"), status("or is", "3")},
             "(status = '2' OR status = '3')", "1 4 5"),
        many("the prefix of another language", {status("is", "2"), status("oder is", "3")},
             "(status = '2' OR status = '3')", "1 4 5"),
        many("groups beside each other",
             {status("is", "2"), status("or is", "3"), status("or is", "1"), row("docart", "is", "3"),
              description("contains", "januar"), description("or contains", "bezahlt")},
             "(status = '2' OR status = '3' OR status = '1') AND docart = '3' AND (bemerkung::varchar ilike "
             "'%januar%'::varchar OR bemerkung::varchar ilike '%bezahlt%'::varchar)",
             "1 2"),
        one("every status", status("is", "0"), "not status = -1", everything),
        one("no status", status("is not", "0"), "not status != -1", ""),
        many("one status or every", {status("is", "3"), status("or is", "0")}, "not status = -1)", "refused"),
        one("begins with or", status("or is", "3"), "( OR status = '3')", "refused"),
        many("operator that no list has", {description("begins with", "x"), row("docart", "is", "3")},
             "bemerkung::varchar docart = '3'", "refused"),
    };
}

/// Values as users type them. They go out as they are.
QVector<ClauseCase> valueCases()
{
    const auto longText = [](int length) { return QString(length, 'x'); };
    const auto contains = [](const char *name, const QString &value, const char *found) {
        return one(name, description("contains", value),
                   "bemerkung::varchar ilike '%" + value + "%'::varchar", found);
    };
    return {
        contains("quote", "O'Brien", "3"),
        contains("underscore, which is any character", "a_b", "4"),
        contains("nearly a macro", "[MORGEN+1]", "6"),
        contains("nearly a place holder, % being anything", "%1", "2 6"),
        contains("a macro out of time", "[JAHR+99999]", "refused"),
        contains("a statement", "'; DROP TABLE classification; --", ""),
        contains("as long as a description gets", longText(254), "5"),
        contains("10,000 characters", longText(10'000), ""),
        one("quote in an exact value", row("attr3", "is", "O'Brien"), "attr3::varchar = 'O'Brien'::varchar",
            "2"),
        one("a word that counts as a number", row("attr3", "is", "nan"), "attr3 = 'nan'", "4"),
    };
}

} // namespace

const QVector<ClauseCase> &clauseCases()
{
    static const QVector<ClauseCase> cases = plainCases() + kindCases() + groupCases() + valueCases();
    return cases;
}
