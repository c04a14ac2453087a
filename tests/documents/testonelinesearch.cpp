#include "support/kelvatest.h"

#include "contract/recordformat.h"
#include "documents/documentquery.h"
#include "documents/onelinesearch.h"

using Editor = OneLineSearch::Editor;
Q_DECLARE_METATYPE(Editor)

/// The texts that leave the client for the service, character for character.
class TestOneLineSearch : public QObject
{
    Q_OBJECT

private slots:
    void clauses_data()
    {
        kelvatest::columns<QString, QString, Editor, QString, QString>("column", "value", "editor", "online",
                                                                       "offline");
        const auto same = [](const char *name, const char *column, const char *value, Editor editor,
                             const char *clause) {
            kelvatest::row(name, column, value, editor, clause, clause);
        };
        same("status branch of the folder tree", "folder", "0.4", Editor::Other, "status = 4");
        same("status branch, all", "folder", "0.0", Editor::Other, "status > 0");
        same("all status values", "status", "0", Editor::Other, "status > 0");
        same("id", "docid", "12", Editor::Line, "docid = 12");
        same("type", "docart", "3", Editor::Other, "docart = 3");
        same("document date", "cdate", "2024-03-05", Editor::Line, "cdate = '2024-03-05'");
        same("attribute with a calendar", "attr4", "2024-03-05", Editor::Calendar, "attr4 = '2024-03-05'");
        kelvatest::row("time of the last change", "ctimestamp", "2014", Editor::Line,
                       "ctimestamp::varchar ilike '%2014%'::varchar",
                       "ctimestamp::varchar like '%2014%'::varchar");
        same("ticked box", "attr7", "2", Editor::CheckBox, "attr7 = 2::varchar");
        same("box not ticked", "attr7", "0", Editor::CheckBox, "(attr7 != 2::varchar OR attr7 IS NULL)");
        same("folder", "folder", "3.1", Editor::Other, "folder = '3.1'");
        kelvatest::row("user of the last change", "changeid", "me", Editor::Line, "changeid ilike '%me%'",
                       "changeid like '%me%'");
        same("number", "attr9", "12.5", Editor::NumericLine, "attr9 = 12.5");
        same("number of the locale", "attr9", "12,5", Editor::NumericLine, "attr9 = 12.5");
        same("whole number as the table shows it", "attr9", "12,", Editor::NumericLine, "attr9 = 12.");
        same("number without its nought", "attr9", "-,5", Editor::NumericLine, "attr9 = -.5");
        same("number with an exponent", "attr9", "1e5", Editor::NumericLine, "attr9 = 1e5");
        kelvatest::row("nearly a number", "attr9", "inf", Editor::NumericLine,
                       "to_tsvector(attr9) @@ to_tsquery('inf')", "attr9 like '%inf%'");
        same("no number", "attr9", "", Editor::NumericLine, "attr9 is null");
        kelvatest::row("words, one of them a beginning", "bemerkung", "inv* 2015", Editor::Line,
                       "to_tsvector(bemerkung) @@ to_tsquery('inv:* & 2015')",
                       "bemerkung like '%inv* 2015%'");
        kelvatest::row("quoted phrase", "bemerkung", "\"a b\"", Editor::Line, "bemerkung ilike '%a b%'",
                       "bemerkung like '%a b%'");
        kelvatest::row("a lone asterisk", "bemerkung", "* inv", Editor::Line,
                       "to_tsvector(bemerkung) @@ to_tsquery(':* & inv')", "bemerkung like '%* inv%'");
        kelvatest::row("nothing but blanks", "bemerkung", "  ", Editor::Line,
                       "bemerkung = null or bemerkung = ''", "bemerkung like '%  %'");
        kelvatest::row("a value that looks like a marker", "bemerkung", "\"%1 %2\"", Editor::Line,
                       "bemerkung ilike '%%1 %2%'", "bemerkung like '%%1 %2%'");
        same("quote and all goes in as it is", "attr5", "O'Brien", Editor::Other, "attr5 = 'O'Brien'");
    }

    void clauses()
    {
        OneLineSearch search;
        QFETCH(QString, column);
        QFETCH(QString, value);
        QFETCH(Editor, editor);
        search.column = column;
        search.value = value;
        search.editor = editor;
        search.decimalPoint = ',';
        QTEST(oneLineClause(search), "online");
        search.offline = true;
        QTEST(oneLineClause(search), "offline");
    }

    void fullTextOptions()
    {
        const QChar f = recordformat::fieldSeparator;
        const QStringList hits{QString("11") + f + "21", QString("12") + f + "22"};
        QCOMPARE(fullTextSelection(hits, false), QString("OPT:SELECTION;11,12"));
        QCOMPARE(fullTextSelection(hits, true), QString("OPT:SELECTION;21,22"));
        QCOMPARE(fullTextSelection({}, false), QString("OPT:SELECTION;-1"));
        QCOMPARE(fullTextOption("two words"), QString("OPT:FULLTEXT") + f + "two words");
    }

    void filterOrder()
    {
        DocumentQuery query;
        query.limit = 100;
        QCOMPARE(documentFilters(query), QStringList({"1=1", "OPT:LIMIT;100"}));
        query.selectionOption = "OPT:SELECTION;-1";
        query.fullTextOption = "OPT:FULLTEXT";
        query.fragments = selectionFragments("3.1", "1");
        query.searchWhere = "docid = 5";
        query.dateFilter = "cdate >= 'a'";
        query.mineOption = "OPT:MINE";
        query.trash = true;
        query.openStatus = true;
        QCOMPARE(documentFilters(query),
                 QStringList({"OPT:SELECTION;-1", "OPT:FULLTEXT", "(folder = '3.1' OR folder like '3.1.%')",
                              "(status = 1)", "docid = 5", "cdate >= 'a'", "OPT:MINE", "OPT:TRASH",
                              "OPT:DEFDATE;2", "OPT:LIMIT;100"}));
        QCOMPARE(selectionFragments("-1", "-1"), QStringList());
        QCOMPARE(emptyListText(query, QString()),
                 QString("No documents were found in the trash.\nA search or a filter is active.\n"
                         "Only one folder is shown.\nOnly one status is shown.\n"
                         "Only a span of dates is shown.\nThe personal view is on."));
        QCOMPARE(emptyListText(query, "Why."), QString("The documents could not be listed.\nWhy."));
        query.clearSearch();
        QCOMPARE(documentFilters(query).mid(0, 3),
                 QStringList({"(folder = '3.1' OR folder like '3.1.%')", "(status = 1)", "1=1"}));
        QVERIFY(!emptyListText(query, QString()).contains("search"));
        QCOMPARE(emptyListText(DocumentQuery(), QString()), QString("There are no documents yet."));
    }
};

KELVA_TEST(TestOneLineSearch)
#include "testonelinesearch.moc"
