#include "admin/samplevocabulary.h"

#include "contract/recordformat.h"
#include "service/attributes.h"
#include "service/folders.h"
#include "service/records.h"
#include "service/rights.h"
#include "service/searches.h"
#include "service/session.h"
#include "service/settings.h"
#include "service/subarchives.h"
#include "service/users.h"
#include "service/vocabulary.h"

#include <QFile>

namespace kelva {

namespace {

enum DocumentType { Letter = 0, Invoice, Contract, Payslip, Drawing };

struct SampleFolder
{
    const char *oid;
    const char *name;
    const char *flag;
    const char *key;
    const char *keywords;
    int type; ///< of the documents filed there; -1: none are
};

// Main folders stand on the second level, below roots of one digit.
const SampleFolder sampleFolders[] = {
    {"1", "Lindqvist & Oehler Timber", "0", "LOT", "company", -1},
    {"1.1", "Customers", "M", "CU", "sales debtors", -1},
    {"1.1.1", "Müller & Söhne", "0", "CU-1001", "joinery Bremen", Invoice},
    {"1.1.2", "O'Brien Boats", "0", "CU-1002", "shipyard Cork", Invoice},
    {"1.1.3", "Jäger Optik", "0", "CU-1003", "shop fitting", Invoice},
    {"1.1.4", "Ærø Skibsværft", "0", "CU-1004", "shipyard", Invoice},
    {"1.1.5", "Dupont d'Épernay", "0", "CU-1005", "cooperage", Letter},
    {"1.1.6", "Bauhof Süd", "0", "CU-1006", "municipality", Letter},
    {"1.2", "Suppliers", "M", "SU", "purchase creditors", -1},
    {"1.2.1", "Nordic Sawmills", "0", "SU-2001", "spruce pine", Invoice},
    {"1.2.2", "Kästner Werkzeuge", "0", "SU-2002", "tools blades", Invoice},
    {"1.2.3", "Harbour Freight", "0", "SU-2003", "shipping", Invoice},
    {"1.3", "Personnel", "M", "HR", "employees", -1},
    {"1.3.1", "Payroll", "0", "HR-1", "wages", Payslip},
    {"1.3.2", "Employment contracts", "0", "HR-2", "", Contract},
    {"1.4", "Projects", "M", "PR", "", -1},
    {"1.4.1", "Pier 7 restoration", "0", "PR-71", "harbour oak", Drawing},
    {"1.4.2", "Town hall roof", "0", "PR-72", "larch", Drawing},
    {"1.4.3", "Chapel of St. Ægidius", "0", "PR-73", "heritage", Drawing},
    {"1.5", "Closed years", "I", "OLD", "", -1},
    {"2", "Property", "U", "PP", "", -1},
    {"2.1", "Buildings", "M", "PP-1", "rent", Contract},
    {"2.2", "Insurance", "M", "PP-2", "policies", Contract},
    {"2.2.1", "Vehicles", "0", "PP-21", "", Contract},
};

struct SampleUser
{
    const char *login;
    const char *name;
    const char *shortName;
    QStringList roles;
};

QByteArray icon(const char *name)
{
    QFile file(QStringLiteral(":/icons/%1.png").arg(QLatin1String(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

Result<void> createUsers(Session &session, const QString &password, QStringList &logins)
{
    Users users(session);
    if (const Result<void> made =
            users.createRoles({QStringLiteral("personnel"), QStringLiteral("projects")});
        !made)
        return made.error();
    const QStringList office{rights::classify, rights::tesmo, rights::history};
    const SampleUser people[] = {{"meier", "Annegret Meier", "AM",
                                  office + QStringList{rights::createFolder, QStringLiteral("projects")}},
                                 {"krause", "Jörg Krause", "JK",
                                  office + QStringList{QStringLiteral("personnel"), rights::versioning}},
                                 {"obrien", "Sinéad O'Brien", "SO", office},
                                 {"guest", "Guest of the house", "GU", {}}};
    for (const SampleUser &person : people) {
        NewUser user;
        user.login = QString::fromUtf8(person.login);
        user.password = password;
        user.name = QString::fromUtf8(person.name);
        user.shortName = QString::fromUtf8(person.shortName);
        if (const Result<qint64> made = users.create(user); !made)
            return made.error();
        const QStringList roles = person.roles + QStringList(rights::personalPrefix + user.login);
        if (const Result<void> given = users.setRolesOf(user.login, roles); !given)
            return given.error();
        logins << user.login;
    }
    return {};
}

Result<void> createFolders(Session &session, SampleVocabulary &vocabulary)
{
    Records records;
    for (const SampleFolder &folder : sampleFolders) {
        const QString oid = QString::fromUtf8(folder.oid);
        const QString name = QString::fromUtf8(folder.name);
        const int dot = oid.lastIndexOf(QLatin1Char('.'));
        records.add({oid, name, QString::fromUtf8(folder.flag), QString::fromUtf8(folder.key),
                     dot < 0 ? QStringLiteral("-1") : oid.left(dot), QStringLiteral("1"), QStringLiteral("I"),
                     QString::fromUtf8(folder.keywords)});
        if (folder.type >= 0)
            vocabulary.folders.append({oid, name, folder.type});
    }
    Folders folders(session);
    if (const Result<void> saved = folders.save(records); !saved)
        return saved.error();
    if (const Result<void> set = folders.setRoles(QStringLiteral("1.3"), {QStringLiteral("personnel")}); !set)
        return set.error();
    return folders.setRoles(QStringLiteral("1.4.2"), {QStringLiteral("projects")});
}

Result<void> createChoices(Session &session)
{
    Vocabulary vocabulary(session);
    Records status;
    status.add({QStringLiteral("1"), QStringLiteral("Open")}, icon("flag_blue"));
    status.add({QStringLiteral("2"), QStringLiteral("Resubmission")}, icon("resubmit"));
    status.add({QStringLiteral("3"), QStringLiteral("Done")}, icon("flag_green"));
    status.add({QString(), QStringLiteral("In review")}, icon("flag_yellow"));
    status.add({QString(), QStringLiteral("Rejected")}, icon("flag_red"));
    if (const Result<void> saved = vocabulary.saveStatus(status); !saved)
        return saved.error();
    Records types;
    types.add({QStringLiteral("0"), QStringLiteral("Letter"), QStringLiteral("0;0;0")}, icon("versenden"));
    types.add({QString(), QStringLiteral("Invoice"), QStringLiteral("10;0;0")}, icon("report_system"));
    types.add({QString(), QStringLiteral("Contract"), QStringLiteral("6;0;0")}, icon("password"));
    types.add({QString(), QStringLiteral("Payslip"), QStringLiteral("0;0;0")}, icon("report_user"));
    types.add({QString(), QStringLiteral("Drawing"), QStringLiteral("0;0;0")}, icon("application_edit"));
    return vocabulary.saveTypes(types);
}

Result<void> createAttributes(Session &session, SampleVocabulary &vocabulary)
{
    vocabulary.departments = QStringList{QStringLiteral("Sales"), QStringLiteral("Purchase"),
                                         QStringLiteral("Office"), QStringLiteral("Yard")};
    const QString no = QStringLiteral("false");
    Attributes attributes(session);
    const auto ids = attributes.save({
        joinFields({QStringLiteral("-1"), QStringLiteral("Reference"), QStringLiteral("String"), no, no}),
        joinFields({QStringLiteral("-2"), QStringLiteral("Amount"), QStringLiteral("Numeric"), no, no}),
        joinFields({QStringLiteral("-3"), QStringLiteral("Department"), QStringLiteral("ComboBox"), no, no}),
        joinFields({QStringLiteral("-4"), QStringLiteral("Paid"), QStringLiteral("CheckBox"), no, no}),
        joinFields({QStringLiteral("-5"), QStringLiteral("Payable by"), QStringLiteral("Date"), no, no}),
    });
    if (!ids)
        return ids.error();
    vocabulary.reference = ids.value().value(-1);
    vocabulary.amount = ids.value().value(-2);
    vocabulary.department = ids.value().value(-3);
    vocabulary.paid = ids.value().value(-4);
    vocabulary.due = ids.value().value(-5);
    return attributes.saveValues(vocabulary.department,
                                 QStringList(QStringLiteral("Department")) + vocabulary.departments);
}

Result<void> createSettings(Session &session)
{
    Settings settings(session);
    const QString global = QStringLiteral("kelvaGlobalSettings");
    const QList<QPair<QString, QByteArray>> values{{QStringLiteral("showBackgroundPic"), "true"},
                                                   {QStringLiteral("useHttpLinks"), "false"},
                                                   {QStringLiteral("resubmissionDays"), "7"}};
    for (const auto &value : values)
        if (const Result<void> saved = settings.save(global, value.first, {value.second, QString()}, true);
            !saved)
            return saved.error();

    const QChar field = recordformat::listSeparator;
    const QString openInvoices = QStringLiteral("Type") + field + QStringLiteral("=") + field +
                                 QStringLiteral("Invoice") + field + QStringLiteral("1");
    Searches searches(session);
    if (const auto saved = searches.save(QStringLiteral("All invoices"), openInvoices, {rights::everyUser});
        !saved)
        return saved.error();
    const auto own = searches.save(QStringLiteral("My invoices"), openInvoices, {});
    return own ? Result<void>() : Result<void>(own.error());
}

} // namespace

Result<SampleVocabulary> createSampleVocabulary(Session &session, const QString &password)
{
    SampleVocabulary vocabulary;
    if (const auto made = createUsers(session, password, vocabulary.users); !made)
        return made.error();
    if (const auto made = createFolders(session, vocabulary); !made)
        return made.error();
    if (const auto made = createChoices(session); !made)
        return made.error();
    if (const auto made = createAttributes(session, vocabulary); !made)
        return made.error();
    if (const auto made = createSettings(session); !made)
        return made.error();
    const auto second = SubArchives(session).create(QStringLiteral("Old archive"), QString());
    if (!second)
        return second.error();
    return vocabulary;
}

} // namespace kelva
