#include "service/folders.h"

#include "service/operation.h"
#include "service/recordvalues.h"
#include "service/rights.h"

#include <QHash>
#include <QMap>
#include <QSet>

#include <algorithm>

namespace kelva {
namespace {

constexpr int maximumName = 254;
constexpr int maximumKeywords = 4000;
/// Of an oid; some fifty levels of folders.
constexpr int maximumLength = 200;

const QLatin1Char inactiveLetter('I');

struct FolderRow
{
    QString oid;
    QString name;
    QString flag;
    QString key;
    QString keywords;
    QByteArray picture;
    bool visible = false;
    bool occupied = false; ///< records in it or below it
    bool leads = false;    ///< the way to a visible one
};

QString parentOf(const QString &oid)
{
    return oid.left(std::max(0, oid.lastIndexOf(QLatin1Char('.'))));
}

bool isStorableOid(const QString &oid)
{
    // A first number 0 means a status, or no folder at all.
    return isFolderOid(oid) && oid.section(QLatin1Char('.'), 0, 0) != QLatin1String("0");
}

/// Unless all is set, what lies in folders that are not seen shows in no mark.
QVector<FolderRow> readFolders(Session &session, bool all)
{
    Database &database = session.database();
    const Access &access = session.access();
    QVector<FolderRow> rows;
    Query row = database.query(
        QStringLiteral("SELECT f.oid, f.name, f.flag, f.key, f.keywords, f.picture,"
                       " EXISTS(SELECT 1 FROM classification c WHERE c.folder = f.oid AND c.trashed = 0)"
                       " FROM folder f"));
    while (row.next()) {
        // Of a damaged archive. An empty one would be its own parent.
        if (!isStorableOid(row.text(0)))
            continue;
        const bool visible = access.maySee(row.text(0));
        rows.append({row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.bytes(5), visible,
                     row.flag(6) && (all || visible), false});
    }
    return rows;
}

/// Hands facts up the tree, and sorts it: parents first, siblings by name.
class FolderTree
{
public:
    explicit FolderTree(QVector<FolderRow> rows) : m_rows(std::move(rows))
    {
        for (int i = 0; i < m_rows.size(); ++i)
            m_byOid.insert(m_rows.at(i).oid, i);
        for (int i = 0; i < m_rows.size(); ++i)
            m_children[nearestParent(m_rows.at(i).oid)].append(i);
        for (const FolderRow &row : qAsConst(m_rows))
            for (QString above = parentOf(row.oid); !above.isEmpty(); above = parentOf(above)) {
                const int parent = m_byOid.value(above, -1);
                if (parent < 0)
                    continue;
                m_rows[parent].occupied = m_rows.at(parent).occupied || row.occupied;
                m_rows[parent].leads = m_rows.at(parent).leads || row.visible;
            }
    }

    QVector<const FolderRow *> inOrder()
    {
        QVector<const FolderRow *> order;
        append(QString(), &order);
        return order;
    }

private:
    QString nearestParent(const QString &oid) const
    {
        QString above = parentOf(oid);
        while (!above.isEmpty() && !m_byOid.contains(above))
            above = parentOf(above);
        return above;
    }

    void append(const QString &parent, QVector<const FolderRow *> *order)
    {
        QVector<int> children = m_children.value(parent);
        std::sort(children.begin(), children.end(), [this](int a, int b) {
            const int byName = m_rows.at(a).name.compare(m_rows.at(b).name, Qt::CaseInsensitive);
            return byName != 0 ? byName < 0 : m_rows.at(a).oid < m_rows.at(b).oid;
        });
        for (const int child : qAsConst(children)) {
            order->append(&m_rows.at(child));
            append(m_rows.at(child).oid, order);
        }
    }

    QVector<FolderRow> m_rows;
    QHash<QString, int> m_byOid;
    QHash<QString, QVector<int>> m_children;
};

Error badFolder(const QString &oid)
{
    return {ErrorCode::BadInput, QStringLiteral("The folder \"%1\" is not valid.").arg(oid.left(80))};
}

Error unknownFolder()
{
    return {ErrorCode::NotFound, QStringLiteral("The folder does not exist.")};
}

Result<void> removeFolder(Database &database, const QString &oid)
{
    if (database.value(QStringLiteral("SELECT 1 FROM classification WHERE folder = ? LIMIT 1"), {oid})
            .isValid())
        return Error{ErrorCode::InUse, QStringLiteral("There are documents in the folder %1.").arg(oid)};
    database.run(QStringLiteral("DELETE FROM folder WHERE oid = ?"), {oid});
    database.run(QStringLiteral("DELETE FROM folder_structure WHERE folder = ?"), {oid});
    return {};
}

Result<void> saveRow(Database &database, const QStringList &fields, const QByteArray &picture)
{
    const QString oid = fields.at(0);
    const QString letter = fields.at(6);
    if (!isStorableOid(oid))
        return badFolder(oid);
    if (letter == QLatin1String("D"))
        return removeFolder(database, oid);
    const QVariantList values{storedText(fields.at(1), maximumName),
                              storedText(fields.at(2), 16),
                              storedText(fields.at(3), maximumName),
                              storedText(fields.at(7)),
                              picture,
                              oid};
    if (letter == QLatin1String("I")) {
        if (database.value(QStringLiteral("SELECT 1 FROM folder WHERE oid = ?"), {oid}).isValid())
            return Error{ErrorCode::Conflict,
                         QStringLiteral("Another user has created a folder in the meantime. Please reload.")};
        database.run(
            QStringLiteral(
                "INSERT INTO folder(name, flag, key, keywords, picture, oid) VALUES(?, ?, ?, ?, ?, ?)"),
            values);
        return {};
    }
    if (letter != QLatin1String("U"))
        return badFolder(oid);
    database.run(
        QStringLiteral(
            "UPDATE folder SET name = ?, flag = ?, key = ?, keywords = ?, picture = ? WHERE oid = ?"),
        values);
    return database.affected() > 0 ? Result<void>() : unknownFolder();
}

/// The first free oid below a folder; a main folder's without a parent.
QString nextBelow(Database &database, const QString &parent)
{
    const QString prefix = parent.isEmpty() ? QString() : parent + QLatin1Char('.');
    const QString end = parent.isEmpty() ? QStringLiteral(":") : parent + QLatin1Char('/');
    qint64 largest = 0;
    // Records count too: the number of a deleted folder must not come back and inherit anything.
    for (const char *source : {"SELECT oid FROM folder WHERE oid > ? AND oid < ?",
                               "SELECT DISTINCT folder FROM classification WHERE folder > ? AND folder < ?"})
        for (const QString &oid : database.texts(QLatin1String(source), {prefix, end}))
            largest = std::max(largest, oid.mid(prefix.size()).section(QLatin1Char('.'), 0, 0).toLongLong());
    return prefix + QString::number(largest + 1);
}

} // namespace

QString mainFolderOf(const QString &oid)
{
    const int first = oid.indexOf(QLatin1Char('.'));
    const int second = first < 0 ? -1 : oid.indexOf(QLatin1Char('.'), first + 1);
    return second < 0 ? oid : oid.mid(first - 1, second - first + 1);
}

QStringList folderFaults(Database &database)
{
    QStringList faults;
    {
        Transaction reading(database, Transaction::Kind::Read);
        for (Query row = database.query(QStringLiteral("SELECT oid, name FROM folder")); row.next();)
            if (!isStorableOid(row.text(0)))
                faults << QStringLiteral("The folder \"%1\" has no valid number.").arg(row.text(1).left(80));
    }
    if (database.failed())
        faults << database.error().text;
    return faults;
}

bool isFolderOid(const QString &oid)
{
    if (oid.size() > maximumLength)
        return false;
    const QStringList parts = oid.split(QLatin1Char('.'));
    return std::all_of(parts.cbegin(), parts.cend(), [](const QString &part) {
        return !part.isEmpty() && std::all_of(part.cbegin(), part.cend(), [](QChar c) {
            return c >= QLatin1Char('0') && c <= QLatin1Char('9');
        });
    });
}

Result<Records> Folders::list(Scope scope)
{
    const bool all = scope == Scope::All;
    return read(m_session, all ? "Folders::list, all" : "Folders::list", [&](Database &) -> Result<Records> {
        FolderTree tree(readFolders(m_session, all));
        Records records;
        QSet<QString> inactive;
        for (const FolderRow *row : tree.inOrder()) {
            QString flag = row->flag;
            // What lies below an inactive folder is out of use with it.
            if (!all && (flag.contains(inactiveLetter) || inactive.contains(parentOf(row->oid)))) {
                inactive.insert(row->oid);
                if (scope == Scope::InUse)
                    continue;
                if (!flag.contains(inactiveLetter))
                    flag += inactiveLetter;
            }
            if (!all && !row->visible && !row->leads)
                continue;
            const bool locked = !all && !row->visible;
            records.add({row->oid, row->name, flag, row->key, parentOf(row->oid), QStringLiteral("0"),
                         locked ? QStringLiteral("L") : QString(),
                         row->occupied ? QString() : QStringLiteral("E"), row->keywords},
                        row->picture);
        }
        return records;
    });
}

Result<void> Folders::save(const Records &records)
{
    return change(m_session, "Folders::save", [&](Database &database) -> Result<void> {
        for (int i = 0; i < records.rows.size(); ++i)
            if (const Result<void> saved = saveRow(database, records.fields(i, 8), records.pictures.value(i));
                !saved)
                return saved;
        m_session.noteVocabularyChange();
        return {};
    });
}

Result<QString> Folders::create(const QString &parentOid, const QString &name, const QString &key,
                                const QString &keywords)
{
    return change(m_session, "Folders::create", [&](Database &database) -> Result<QString> {
        const bool isMain = parentOid == QLatin1String("-1");
        const Access &access = m_session.access();
        if (!isMain) {
            if (!database.value(QStringLiteral("SELECT 1 FROM folder WHERE oid = ?"), {parentOid}).isValid())
                return unknownFolder();
            if (!access.isAdmin() && !access.maySee(parentOid))
                return unknownFolder();
        }
        const QVariant cleanName = storedText(name.trimmed(), maximumName);
        if (cleanName.toString().isEmpty())
            return Error{ErrorCode::BadInput, QStringLiteral("The folder needs a name.")};
        if (keywords.size() > maximumKeywords)
            return Error{ErrorCode::BadInput,
                         QStringLiteral("The keywords are longer than %1 characters.").arg(maximumKeywords)};
        const QString oid = nextBelow(database, isMain ? QString() : parentOid);
        if (oid.size() > maximumLength)
            return Error{ErrorCode::BadInput,
                         QStringLiteral("The folders would lie too deep in each other.")};
        if (!isStorableOid(oid))
            return badFolder(oid);
        database.run(
            QStringLiteral("INSERT INTO folder(oid, name, flag, key, keywords) VALUES(?, ?, ?, ?, ?)"),
            {oid, cleanName, isMain ? QStringLiteral("M") : QStringLiteral("0"), storedText(key, maximumName),
             storedText(keywords)});
        m_session.noteVocabularyChange();
        return oid;
    });
}

Result<QString> Folders::nextOid()
{
    return read(m_session, "Folders::nextOid", [&](Database &database) -> Result<QString> {
        qint64 largest = 0;
        for (const QString &oid : database.texts(QStringLiteral("SELECT oid FROM folder")))
            largest = std::max(largest, oid.section(QLatin1Char('.'), -1).toLongLong());
        return QString::number(largest + 1);
    });
}

Result<QStringList> Folders::roles(const QString &oid)
{
    return read(m_session, "Folders::roles", [&](Database &database) -> Result<QStringList> {
        return database.texts(QStringLiteral("SELECT role FROM folder_role WHERE folder = ? ORDER BY role"),
                              {oid});
    });
}

Result<void> Folders::setRoles(const QString &oid, const QStringList &roles)
{
    return change(m_session, "Folders::setRoles", [&](Database &database) -> Result<void> {
        if (!database.value(QStringLiteral("SELECT 1 FROM folder WHERE oid = ?"), {oid}).isValid())
            return unknownFolder();
        database.run(QStringLiteral("DELETE FROM folder_role WHERE folder = ?"), {oid});
        for (const QString &role : roles) {
            if (role != rights::publicFolder &&
                !database.value(QStringLiteral("SELECT 1 FROM role WHERE name = ?"), {role}).isValid())
                return Error{ErrorCode::NotFound,
                             QStringLiteral("The role %1 does not exist.").arg(role.left(80))};
            database.run(
                QStringLiteral("INSERT INTO folder_role(folder, role) VALUES(?, ?) ON CONFLICT DO NOTHING"),
                {oid, role});
        }
        m_session.noteVocabularyChange();
        return {};
    });
}

Result<Records> Folders::structure(const QString &oid)
{
    return read(m_session, "Folders::structure", [&](Database &database) -> Result<Records> {
        Records records;
        for (Query row = database.query(
                 QStringLiteral(
                     "SELECT record, picture FROM folder_structure WHERE folder = ? ORDER BY position"),
                 {oid});
             row.next();) {
            records.rows << row.text(0);
            records.pictures << row.bytes(1);
        }
        return records;
    });
}

Result<void> Folders::saveStructure(const QString &oid, const Records &records)
{
    return change(m_session, "Folders::saveStructure", [&](Database &database) -> Result<void> {
        if (!isStorableOid(oid))
            return badFolder(oid);
        database.run(QStringLiteral("DELETE FROM folder_structure WHERE folder = ?"), {oid});
        for (int i = 0; i < records.rows.size(); ++i)
            database.run(
                QStringLiteral(
                    "INSERT INTO folder_structure(folder, position, record, picture) VALUES(?, ?, ?, ?)"),
                {oid, i, records.rows.at(i), records.pictures.value(i)});
        return {};
    });
}

} // namespace kelva
