#include "testarchive.h"

#include "service/bulkload.h"
#include "service/folders.h"
#include "service/records.h"
#include "service/users.h"

using namespace kelva;

namespace {

template<typename Outcome>
void expect(const Outcome &outcome)
{
    if (!outcome)
        qFatal("%s", qPrintable(outcome.error().text));
}

} // namespace

TestArchive::TestArchive() : m_path(m_directory.filePath("1.kelva"))
{
    NewArchive archive;
    archive.path = m_path;
    archive.administrator = "admin";
    archive.password = "secret";
    expect(archive::create(archive));
    m_owner = owner();
    Records folders;
    const QList<QPair<QString, QString>> tree{{"1", "Office"},  {"1.1", "Invoices"}, {"1.2", "Letters"},
                                              {"1.2.1", "Old"}, {"2", "Board"},      {"2.1", "Minutes"}};
    for (const auto &[oid, name] : tree)
        folders.add({oid, name, "0", QString(), QString(), "1", "I", QString()});
    expect(Folders(*m_owner).save(folders));
    expect(Users(*m_owner).createRoles({"board"}));
    expect(Folders(*m_owner).setRoles("2", {"board"}));
}

std::unique_ptr<Session> TestArchive::owner() const
{
    auto session = Session::openAsOwner(m_path, "admin");
    expect(session);
    return std::move(session.value());
}

std::unique_ptr<Session> TestArchive::login(const QString &user, const QString &password) const
{
    auto session = Session::login(m_path, user, password);
    expect(session);
    return std::move(session.value());
}

void TestArchive::addUser(const QString &login, const QStringList &roles)
{
    expect(Users(*m_owner).create({login, "secret", login, QString()}));
    expect(Users(*m_owner).setRolesOf(login, roles));
}

qint64 TestArchive::addDocument(const QString &description, const QString &folder, const QString &date)
{
    BulkLoad load(*m_owner);
    BulkDocument document;
    document.fileName = description + ".txt";
    document.content = description.toUtf8();
    document.creator = "admin";
    document.created = "2020-02-03T04:05:06";
    document.description = description;
    document.folder = folder;
    document.date = date;
    const Result<qint64> id = load.add(document);
    expect(id);
    expect(load.finish());
    return m_owner->database()
        .value("SELECT id FROM classification WHERE document = ?", {id.value()})
        .toLongLong();
}

QStringList descriptionsOf(const QStringList &list)
{
    QStringList descriptions;
    for (int i = 1; i < list.size(); ++i)
        descriptions << splitFields(list.at(i)).value(2);
    return descriptions;
}

QString textOf(const Result<void> &result)
{
    return result ? QString() : result.error().text;
}
