#include "search/clausecases.h"

namespace {

using Value = SearchRow::Value;

SearchRow row(const QString &field, const QString &op, const QString &value, Value kind = Value::Other)
{
    return {"The " + field, field, op, value, QString(), kind};
}

SearchRow choice(const QString &field, const QString &op, const QString &text, const QString &key)
{
    return {"The " + field, field, op, text, key, Value::Other};
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
    return choice("status", op, "some name", key);
}

SearchRow description(const QString &op, const QString &value)
{
    return row("bemerkung", op, value);
}

QVector<ClauseCase> plainCases()
{
    const QString all = "1 2 3 4 5 6";
    return {
        {"no rows", {}, " 1 = 1 ", all, ""},
        {"rows that are not filled in",
         {{"not assigned", "Unknown", "is", "x", "", Value::Other},
          {"Gone", "Unknown", "is", "x", "", Value::Other},
          description("", "x"),
          description("not assigned", "x")},
         " 1 = 1 ",
         all,
         ""},
        {"text contains",
         {description("contains", "miete")},
         "bemerkung::varchar ilike '%miete%'::varchar AND  1 = 1 ",
         "1",
         ""},
        {"text contains, offline",
         {description("contains", "Miete")},
         "bemerkung::varchar like '%Miete%'::varchar AND  1 = 1 ",
         "1",
         "",
         true},
        {"text does not contain",
         {description("not contains", "rechnung")},
         "bemerkung::varchar not ilike '%rechnung%'::varchar AND  1 = 1 ",
         "1 4 5 6",
         ""},
        {"number is", {row("docart", "is", "3")}, "docart = '3' AND  1 = 1 ", "1 2", ""},
        {"number contains a digit",
         {row("docart", "contains", "2")},
         "docart::varchar ilike '%2%' AND  1 = 1 ",
         "3",
         ""},
        {"number is a word",
         {row("docart", "is", "three")},
         "docart::varchar = 'three'::varchar AND  1 = 1 ",
         "",
         ""},
        {"the stored value goes before the text",
         {choice("folder", "is", "Invoices", "1.1")},
         "folder = '1.1' AND  1 = 1 ",
         "1 2",
         ""},
        {"a folder further down is no number",
         {choice("folder", "is not", "Old", "1.2.1")},
         "folder::varchar != '1.2.1'::varchar AND  1 = 1 ",
         "1 2 4 5 6",
         ""},
        {"two rows, a span of dates",
         {row("cdate", "greater/equal then", "2024-01-01"), row("cdate", "smaller then", "2024-08-11")},
         "cdate::varchar >= '2024-01-01'::varchar AND cdate::varchar < '2024-08-11'::varchar AND  1 = 1 ",
         "1 4",
         ""},
        {"a date that moves along",
         {row("defdate", "smaller/equal then", "[HEUTE+7]"), status("is", "2")},
         "defdate::varchar <= '[HEUTE+7]'::varchar AND status = '2' AND  1 = 1 ",
         "1 5",
         ""},
        {"a time is text even when it is a number",
         {row("ctimestamp", "contains", "2024")},
         "ctimestamp::varchar ilike '%2024%'::varchar AND  1 = 1 ",
         "1 2",
         ""},
        {"words of files stand beside the clause",
         {{"full text", "full text", "search for", "one", "", Value::Other},
          row("docart", "is", "3"),
          {"full text", "full text", "search for", "two", "", Value::Other}},
         "docart = '3' AND  1 = 1 ",
         "1 2",
         "one two "},
    };
}

QVector<ClauseCase> kindCases()
{
    return {
        {"number of the locale", {amount("is", "12,5")}, "attr1 = '12.5' AND  1 = 1 ", "1", ""},
        {"number of another locale",
         {amount("is", "12,5")},
         "attr1::varchar = '12,5'::varchar AND  1 = 1 ",
         "",
         "",
         false,
         '.'},
        {"a comma in a text is no point",
         {row("attr3", "is", "1,5")},
         "attr3::varchar = '1,5'::varchar AND  1 = 1 ",
         "1",
         ""},
        {"number greater", {amount("greater then", "0")}, "attr1 > '0' AND  1 = 1 ", "1 2", ""},
        {"no number", {amount("is", "")}, "attr1::varchar = '' or attr1 IS NULL AND  1 = 1 ", "3 6", ""},
        {"contains no number",
         {amount("contains", "")},
         "attr1::varchar ilike '' or attr1 IS NULL AND  1 = 1 ",
         "3 6",
         ""},
        {"any number",
         {amount("is not", "")},
         "attr1::varchar != '' or attr1 IS NOT NULL AND  1 = 1 ",
         "1 2 4 5",
         ""},
        {"does not contain no number",
         {amount("not contains", "")},
         "attr1::varchar not ilike '' or attr1 IS NOT NULL AND  1 = 1 ",
         "1 2 4 5",
         ""},
        {"greater than no number",
         {amount("greater then", "")},
         "attr1::varchar > ''::varchar AND  1 = 1 ",
         "1 2 4 5",
         ""},
        {"contains no number, offline",
         {amount("contains", "")},
         "attr1::varchar like ''::varchar AND  1 = 1 ",
         "",
         "",
         true},
        {"box ticked", {paid("2")}, "(attr2::varchar = '2'::varchar) AND  1 = 1 ", "1 4", ""},
        {"box not ticked",
         {paid("0")},
         "(attr2::varchar = '0'::varchar OR attr2 != 2::varchar OR attr2 IS NULL) AND  1 = 1 ",
         "2 3 5 6",
         ""},
        {"box not touched",
         {paid("")},
         "(attr2::varchar = ''::varchar OR attr2 != 2::varchar OR attr2 IS NULL) AND  1 = 1 ",
         "2 3 5 6",
         ""},
    };
}

QVector<ClauseCase> groupCases()
{
    return {
        {"one value or another",
         {status("is", "2"), status("or is", "3")},
         "(status = '2' OR status = '3') AND  1 = 1 ",
         "1 4 5",
         ""},
        {"the prefix of another language",
         {status("is", "2"), status("oder is", "3")},
         "(status = '2' OR status = '3') AND  1 = 1 ",
         "1 4 5",
         ""},
        {"groups beside each other",
         {status("is", "2"), status("or is", "3"), status("or is", "1"), row("docart", "is", "3"),
          description("contains", "januar"), description("or contains", "bezahlt")},
         "(status = '2' OR status = '3' OR status = '1') AND docart = '3' AND (bemerkung::varchar ilike "
         "'%januar%'::varchar OR bemerkung::varchar ilike '%bezahlt%'::varchar) AND  1 = 1 ",
         "1 2",
         ""},
        {"every status", {status("is", "0")}, "not status = -1 AND  1 = 1 ", "1 2 3 4 5 6", ""},
        {"no status", {status("is not", "0")}, "not status != -1 AND  1 = 1 ", "", ""},
        {"every status or one",
         {status("is", "0"), status("or is", "3")},
         "(not status = -1 OR status = '3') AND  1 = 1 ",
         "1 2 3 4 5 6",
         ""},
        {"one status or every",
         {status("is", "3"), status("or is", "0")},
         "not status = -1) AND  1 = 1 ",
         "refused",
         ""},
        {"begins with or", {status("or is", "3")}, "( OR status = '3') AND  1 = 1 ", "refused", ""},
        {"operator that no list has",
         {description("begins with", "x"), row("docart", "is", "3")},
         "bemerkung::varchar docart = '3' AND  1 = 1 ",
         "refused",
         ""},
    };
}

/// Values as users type them. They go out as they are.
QVector<ClauseCase> valueCases()
{
    const QString tail = "::varchar AND  1 = 1 ";
    const auto longText = [](int length) { return QString(length, 'x'); };
    const auto contains = [&](const char *name, const QString &value, const char *found) {
        return ClauseCase{name,
                          {description("contains", value)},
                          "bemerkung::varchar ilike '%" + value + "%'" + tail,
                          found,
                          ""};
    };
    return {
        contains("quote", "O'Brien", "3"),
        contains("two quotes", "brien's rech", "3"),
        contains("percent sign", "100% be", "2"),
        contains("underscore, which is any character", "a_b", "4"),
        contains("backslash", "a\\b", "4"),
        contains("bracket", "[x]", "4"),
        contains("nearly a macro", "[MORGEN+1]", "6"),
        contains("nearly a place holder, % being anything", "%1", "2 6"),
        contains("a macro out of time", "[JAHR+99999]", "refused"),
        contains("a statement", "'; DROP TABLE classification; --", ""),
        contains("as long as a description gets", longText(254), "5"),
        contains("10,000 characters", longText(10'000), ""),
        {"quote in an exact value",
         {row("attr3", "is", "O'Brien")},
         "attr3::varchar = 'O'Brien'::varchar AND  1 = 1 ",
         "2",
         ""},
        {"a word that counts as a number", {row("attr3", "is", "nan")}, "attr3 = 'nan' AND  1 = 1 ", "4", ""},
    };
}

} // namespace

const QVector<ClauseCase> &clauseCases()
{
    static const QVector<ClauseCase> cases = plainCases() + kindCases() + groupCases() + valueCases();
    return cases;
}
