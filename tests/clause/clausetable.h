#pragma once

#include "clause/clause.h"

#include <QList>
#include <QVariantMap>

struct sqlite3;

/// A small table of documents in a database in memory, with full-text tables, and the same rows as values.
class ClauseTable
{
public:
    enum class Indexes { With, Without };

    explicit ClauseTable(const QList<QVariantMap> &rows = documents());
    ~ClauseTable();
    Q_DISABLE_COPY(ClauseTable)

    static const QDate &today(); ///< 2014-08-11
    static QList<QVariantMap> documents();
    /// The types of the columns. docs_id, a field without one, is docid + 10.
    static const QMap<QString, kelva::FieldType> &types();
    kelva::ClauseFields fields(Indexes indexes) const;

    const QList<QVariantMap> &rows() const { return m_rows; }
    /// Numbers of the rows for which a condition holds, ascending. Nothing but "-1" when the database
    /// refuses; lastError() then says why.
    QList<int> ids(const kelva::SqlCondition &condition) const;
    /// What the database plans for a condition, line by line.
    QString plan(const kelva::SqlCondition &condition) const;
    QString lastError() const;

private:
    void run(const QString &sql, const QVariantList &values = {}) const;
    bool query(const QString &sql, const QVariantList &values, int column, QStringList *result) const;

    sqlite3 *m_database = nullptr;
    QList<QVariantMap> m_rows;
};
