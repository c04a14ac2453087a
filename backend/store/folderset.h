#pragma once

#include <QSet>
#include <QString>

namespace kelva {

class Database;

/// Folders by oid, known to this program and to the database's connection: one set at a time for each. The
/// connection forgets it when the transaction that it was made in is taken back.
class FolderSet
{
public:
    FolderSet() = default;
    FolderSet(Database &database, QSet<QString> oids);

    bool contains(const QString &oid) const { return m_oids.contains(oid); }
    /// The column has one of them.
    static QString condition(const QString &column);

private:
    QSet<QString> m_oids;
};

} // namespace kelva
