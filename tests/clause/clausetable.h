#pragma once

#include "clause/clause.h"
#include "store/database.h"

#include <QTemporaryDir>
#include <QVariantMap>

/// A small table of documents in an archive of its own, with full-text tables, and the same rows as values.
class ClauseTable
{
public:
    enum class Indexes { With, Without };

    explicit ClauseTable(const QList<QVariantMap> &rows = documents());

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
    const QString &lastError() const { return m_lastError; }

private:
    QTemporaryDir m_directory;
    std::unique_ptr<kelva::Database> m_database;
    QList<QVariantMap> m_rows;
    mutable QString m_lastError;
};
