#include "clause/clausetable.h"

#include <QDate>

using kelva::FieldType;

namespace {

const QStringList fullTextKeys{"bemerkung", "attr5"};

const QStringList &columns()
{
    static const QStringList names{"docid",      "status",  "docart", "folder", "bemerkung",
                                   "changeid",   "attr5",   "attr7",  "attr9",  "cdate",
                                   "ctimestamp", "defdate", "trashed"};
    return names;
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

ClauseTable::ClauseTable(const QList<QVariantMap> &rows)
    : m_database(std::move(
          kelva::Database::open(m_directory.filePath("1.kelva"), kelva::Database::Mode::Create).value())),
      m_rows(rows)
{
    m_database->run("CREATE TEMP TABLE documents (docid INTEGER PRIMARY KEY, status INTEGER, docart INTEGER, "
                    "folder TEXT, bemerkung TEXT, changeid TEXT, attr5 TEXT, attr7 TEXT, attr9 REAL, "
                    "cdate TEXT, ctimestamp TEXT, defdate TEXT, trashed INTEGER)");
    for (const QString key : {"folder", "status", "cdate"})
        m_database->run("CREATE INDEX temp.by_" + key + " ON documents (" + key + ")");
    for (const QString &key : fullTextKeys) {
        m_database->run("CREATE VIRTUAL TABLE temp.words_" + key +
                        " USING fts5(t, tokenize='unicode61 remove_diacritics 0')");
        m_database->run("CREATE VIRTUAL TABLE temp.trigrams_" + key + " USING fts5(t, tokenize='trigram')");
    }
    for (const QVariantMap &row : rows) {
        QVariantList values;
        for (const QString &column : columns())
            values << row.value(column);
        m_database->run("INSERT INTO temp.documents VALUES (?" + QString(", ?").repeated(values.size() - 1) +
                            ")",
                        values);
        for (const QString &key : fullTextKeys)
            for (const QString table : {"words_", "trigrams_"})
                m_database->run("INSERT INTO temp." + table + key + " (rowid, t) VALUES (?, ?)",
                                {row.value("docid"), row.value(key)});
    }
    const auto made = m_database->result(0);
    if (!made)
        qFatal("%s", qPrintable(made.error().text));
}

kelva::ClauseFields ClauseTable::fields(Indexes indexes) const
{
    kelva::ClauseFields fields;
    fields.rowIdColumn = "d.docid";
    for (auto type = types().begin(); type != types().end(); ++type) {
        kelva::ClauseField field{type.value(), "d." + type.key(), {}, {}};
        if (indexes == Indexes::With && fullTextKeys.contains(type.key())) {
            field.wordTable = "words_" + type.key();
            field.trigramTable = "trigrams_" + type.key();
        }
        fields.byKey.insert(type.key(), field);
    }
    fields.byKey.insert("docs_id", {FieldType::Integer, "(d.docid + 10)", {}, {}});
    return fields;
}

QList<int> ClauseTable::ids(const kelva::SqlCondition &condition) const
{
    const kelva::Transaction reading(*m_database, kelva::Transaction::Kind::Read);
    const auto found = m_database->result(m_database->numbers(
        "SELECT d.docid FROM documents d WHERE " + condition.sql + " ORDER BY d.docid", condition.values));
    m_lastError = found ? QString() : found.error().text;
    return found ? QList<int>(found.value().begin(), found.value().end()) : QList<int>{-1};
}

QString ClauseTable::plan(const kelva::SqlCondition &condition) const
{
    QStringList lines;
    auto query = m_database->query(
        "EXPLAIN QUERY PLAN SELECT d.docid FROM documents d WHERE " + condition.sql, condition.values);
    while (query.next())
        lines << query.text(3);
    return lines.join('\n');
}
