#include "clause/clausetable.h"

#include "store/sqlfunctions.h"

#include <QDate>

#include <sqlite3.h>

using kelva::FieldType;

namespace {

const QStringList &columns()
{
    static const QStringList names{"docid",      "status",  "docart", "folder", "bemerkung",
                                   "changeid",   "attr5",   "attr7",  "attr9",  "cdate",
                                   "ctimestamp", "defdate", "trashed"};
    return names;
}

bool hasFullText(const QString &key)
{
    return key == "bemerkung" || key == "attr5";
}

void bind(sqlite3_stmt *statement, const QVariantList &values)
{
    for (int i = 0; i < values.size(); ++i) {
        const QVariant &value = values.at(i);
        if (value.isNull())
            sqlite3_bind_null(statement, i + 1);
        else if (value.type() == QVariant::String)
            sqlite3_bind_text16(statement, i + 1, value.toString().utf16(), value.toString().size() * 2,
                                SQLITE_TRANSIENT);
        else if (value.type() == QVariant::Double)
            sqlite3_bind_double(statement, i + 1, value.toDouble());
        else
            sqlite3_bind_int64(statement, i + 1, value.toLongLong());
    }
}

} // namespace

const QDate &ClauseTable::today()
{
    static const QDate date(2014, 8, 11);
    return date;
}

const QMap<QString, FieldType> &ClauseTable::types()
{
    static const QMap<QString, FieldType> types{
        {"docid", FieldType::Integer},  {"status", FieldType::Integer},       {"docart", FieldType::Integer},
        {"folder", FieldType::Text},    {"bemerkung", FieldType::Text},       {"changeid", FieldType::Text},
        {"attr5", FieldType::Text},     {"attr7", FieldType::Text},           {"attr9", FieldType::Number},
        {"cdate", FieldType::Date},     {"ctimestamp", FieldType::Timestamp}, {"defdate", FieldType::Date},
        {"trashed", FieldType::Boolean}};
    return types;
}

QList<QVariantMap> ClauseTable::documents()
{
    const QVariant none;
    const QList<QVariantList> table{
        {1, 1, 3, "3.1", "Miete Januar 2014", "meier", none, "2", 12.5, "2014-01-15", "2014-01-15T08:00:00",
         none, 0},
        {2, 2, 3, "3.1.2", "Rechnung 100% bezahlt", "MEIER", "x", "0", 12.0, "2014-08-11",
         "2014-08-11T12:30:00", "2014-08-18", 0},
        {3, 2, 12, "3.10", "O'Brien's Invoice 2015", "schmidt", "2", none, none, "2014-12-31",
         "2015-01-02T00:00:00", "2014-08-19", 0},
        {4, 4, 5, "4", "Größe ÄÖÜ Straße", "Müller", "X", none, 0.1, none, "2013-05-05T23:59:59", none, 0},
        {5, -1, 3, "0", "", "meier", "", "0", -3.0, "2013-05-05", "2014-08-12T00:00:00", "2014-08-01", 1},
        {6, 3, 0, "3.1", none, "a_b", "12", "2", 1000000.0, "2014-02-01", "2014-08-11T00:00:00", "2015-08-11",
         0},
        {7, 2, 5, "5.1", "inv-2015 a\\b \"quoted\" it's", "root", "1.50", "2", 1.5, "2014-08-04",
         "2014-08-04T10:00:00", "2014-07-11", 0},
        {8, 0, none, "3.1x", "RENT and rent invoices 2015, dogs' and cats' place", "O'", "ö", "0", 0.0,
         "2012-08-11", "2014-08-11T23:59:59", "2014-08-11", 1},
    };
    QList<QVariantMap> rows;
    for (const QVariantList &values : table) {
        QVariantMap row;
        for (int i = 0; i < columns().size(); ++i)
            row.insert(columns().at(i), values.at(i));
        rows << row;
    }
    return rows;
}

ClauseTable::ClauseTable(const QList<QVariantMap> &rows) : m_rows(rows)
{
    sqlite3_open(":memory:", &m_database);
    kelva::registerSqlFunctions(m_database);
    run("CREATE TABLE documents (docid INTEGER PRIMARY KEY, status INTEGER, docart INTEGER, folder TEXT, "
        "bemerkung TEXT, changeid TEXT, attr5 TEXT, attr7 TEXT, attr9 REAL, cdate TEXT, ctimestamp TEXT, "
        "defdate TEXT, trashed INTEGER)");
    run("CREATE INDEX by_folder ON documents (folder)");
    run("CREATE INDEX by_status ON documents (status)");
    run("CREATE INDEX by_cdate ON documents (cdate)");
    for (const QString key : {"bemerkung", "attr5"}) {
        run("CREATE VIRTUAL TABLE words_" + key + " USING fts5(t, tokenize='unicode61 remove_diacritics 0')");
        run("CREATE VIRTUAL TABLE trigrams_" + key + " USING fts5(t, tokenize='trigram')");
    }
    for (const QVariantMap &row : rows) {
        QVariantList values;
        for (const QString &column : columns())
            values << row.value(column);
        run("INSERT INTO documents VALUES (?" + QString(", ?").repeated(values.size() - 1) + ")", values);
        for (const QString key : {"bemerkung", "attr5"})
            for (const QString table : {"words_", "trigrams_"})
                run("INSERT INTO " + table + key + " (rowid, t) VALUES (?, ?)",
                    {row.value("docid"), row.value(key)});
    }
}

ClauseTable::~ClauseTable()
{
    sqlite3_close(m_database);
}

kelva::ClauseFields ClauseTable::fields(Indexes indexes) const
{
    kelva::ClauseFields fields;
    fields.rowIdColumn = "d.docid";
    for (auto type = types().begin(); type != types().end(); ++type) {
        kelva::ClauseField field{type.value(), "d." + type.key(), {}, {}};
        if (indexes == Indexes::With && hasFullText(type.key())) {
            field.wordTable = "words_" + type.key();
            field.trigramTable = "trigrams_" + type.key();
        }
        fields.byKey.insert(type.key(), field);
    }
    fields.byKey.insert("docs_id", {FieldType::Integer, "(d.docid + 10)", {}, {}});
    return fields;
}

void ClauseTable::run(const QString &sql, const QVariantList &values) const
{
    if (!query(sql, values, 0, nullptr))
        qFatal("%s: %s", qPrintable(sql), qPrintable(lastError()));
}

bool ClauseTable::query(const QString &sql, const QVariantList &values, int column, QStringList *result) const
{
    sqlite3_stmt *statement = nullptr;
    const bool prepared =
        sqlite3_prepare16_v2(m_database, sql.utf16(), -1, &statement, nullptr) == SQLITE_OK &&
        sqlite3_bind_parameter_count(statement) == values.size();
    int state = SQLITE_ERROR;
    if (prepared) {
        bind(statement, values);
        while ((state = sqlite3_step(statement)) == SQLITE_ROW)
            if (result)
                *result << QString::fromUtf8(
                    reinterpret_cast<const char *>(sqlite3_column_text(statement, column)));
    }
    sqlite3_finalize(statement);
    return state == SQLITE_DONE;
}

QList<int> ClauseTable::ids(const kelva::SqlCondition &condition) const
{
    QStringList texts;
    if (!query("SELECT d.docid FROM documents d WHERE " + condition.sql + " ORDER BY d.docid",
               condition.values, 0, &texts))
        return {-1};
    QList<int> ids;
    for (const QString &text : texts)
        ids << text.toInt();
    return ids;
}

QString ClauseTable::plan(const kelva::SqlCondition &condition) const
{
    QStringList lines;
    if (!query("EXPLAIN QUERY PLAN SELECT d.docid FROM documents d WHERE " + condition.sql, condition.values,
               3, &lines))
        return lastError();
    return lines.join('\n');
}

QString ClauseTable::lastError() const
{
    return QString::fromUtf8(sqlite3_errmsg(m_database));
}
