#include "service/workbench.h"

#include "contract/recordformat.h"
#include "service/documentcolumns.h"
#include "service/folders.h"
#include "service/operation.h"
#include "service/records.h"
#include "service/vocabulary.h"

#include <QDataStream>
#include <QMap>

namespace kelva {
namespace {

/// Values offered in a line attribute: those of the newest records that the session sees.
QStringList lineValues(Session &session, const AttributeColumn &attribute)
{
    constexpr int window = 2000;
    return session.database().texts(
        QStringLiteral(
            "SELECT DISTINCT value FROM (SELECT c.%1 AS value FROM classification c %2"
            " WHERE c.trashed = 0 AND %3 ORDER BY c.id DESC LIMIT %4) AS newest WHERE value <> '' ORDER BY 1")
            .arg(attribute.column, sql::byRowId(),
                 session.access().visibleCondition(QStringLiteral("c.folder")))
            .arg(window));
}

/// The editors of the attribute columns, as maps from column number to values.
struct Editors
{
    QMap<int, QString> choices;
    QMap<int, QString> lines;
    QMap<int, QString> checks;
    QMap<int, QString> dates;
};

Editors editorsOf(Session &session, const DocumentColumns &columns)
{
    Editors editors;
    for (int i = 0; i < columns.attributes().size(); ++i) {
        const AttributeColumn &attribute = columns.attributes().at(i);
        const int column = DocumentColumns::fixedCount + i;
        switch (attribute.kind) {
        case AttributeKind::ComboBox:
            editors.choices.insert(
                column,
                session.database()
                    .texts(QStringLiteral(
                               "SELECT value FROM attribute_value WHERE attribute = ? ORDER BY position"),
                           {attribute.id})
                    .join(recordformat::listSeparator));
            break;
        case AttributeKind::String:
            editors.lines.insert(column, lineValues(session, attribute).join(recordformat::listSeparator));
            break;
        case AttributeKind::Numeric:
            editors.lines.insert(column, QStringLiteral("type:Numeric"));
            break;
        case AttributeKind::CheckBox:
            editors.checks.insert(column, QStringLiteral(""));
            break;
        case AttributeKind::Date:
            editors.dates.insert(column, QStringLiteral(""));
            break;
        }
    }
    return editors;
}

/// Folders of the first two levels that are in use, by oid and name.
Records mainFolders(const Records &folders)
{
    Records main;
    for (int i = 0; i < folders.rows.size(); ++i) {
        const QStringList fields = folders.fields(i, 3);
        if (fields.at(0).count(QLatin1Char('.')) <= 1 && !fields.at(2).contains(QLatin1Char('I')))
            main.add({fields.at(0), fields.at(1)}, folders.pictures.at(i));
    }
    return main;
}

} // namespace

Result<QByteArray> workbenchBlock(Session &session)
{
    return read(session, "workbenchBlock", [&](Database &database) -> Result<QByteArray> {
        const DocumentColumns columns = DocumentColumns::load(database);
        Result<Records> status = Vocabulary(session).status();
        if (!status)
            return status.error();
        Result<Records> types = Vocabulary(session).types();
        if (!types)
            return types.error();
        Result<Records> folders = Folders(session).list(Folders::Scope::WithInactive);
        if (!folders)
            return folders.error();
        const Records main = mainFolders(folders.value());

        const QStringList titles = columns.titles();
        const QStringList keys = columns.keys();
        QStringList searchColumns;
        for (int i = 0; i < keys.size(); ++i)
            searchColumns << joinFields({titles.at(i), keys.at(i)});
        searchColumns << joinFields({QStringLiteral("Rights"), QStringLiteral("rights")});
        const Editors editors = editorsOf(session, columns);
        QByteArray block;
        QDataStream stream(&block, QIODevice::WriteOnly);
        stream << (titles + QStringList{QStringLiteral("Rights")}) << searchColumns << keys << editors.choices
               << editors.lines << editors.checks << editors.dates
               << QList<QStringList>{main.rows, status.value().rows, types.value().rows, folders.value().rows}
               << QList<QList<QByteArray>>{main.pictures, status.value().pictures, types.value().pictures,
                                           folders.value().pictures};
        return block;
    });
}

QString workbenchKey(const QString &login, const QString &host, int port, qint64 profileId)
{
    return QStringLiteral("kelva_%1_%2_%3%4")
        .arg(login, host, QString::number(port), QString::number(profileId));
}

Result<void> WorkbenchSegment::publish(const QByteArray &block)
{
    const SharedBlock::Outcome outcome = m_block.publish(block);
    if (outcome == SharedBlock::Outcome::Done)
        return {};
    return Error{outcome == SharedBlock::Outcome::Locked ? ErrorCode::Busy : ErrorCode::Storage,
                 SharedBlock::text(outcome, key())};
}

} // namespace kelva
