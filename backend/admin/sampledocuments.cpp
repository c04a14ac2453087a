#include "admin/sampledocuments.h"

#include "admin/samplefiles.h"

namespace kelva {

namespace {

const char dateFormat[] = "yyyy-MM-dd";
const char *const goods[] = {"oak planks",  "larch beams",   "spruce boards", "plywood",      "roof battens",
                             "boat keels",  "window frames", "shingles",      "birch veneer", "decking",
                             "oak parquet", "pine slats",    "beech stairs",  "ash handles",  "teak rails"};
const char *const matters[] = {"delivery date", "price list",    "complaint", "site visit", "tender",
                               "warranty",      "opening hours", "quality",   "transport",  "cancellation"};
const char *const people[] = {"Åsa Öberg", "Günther Weiß", "Siobhán O'Neill", "Łukasz Żak", "Zoë Brontë"};

template<int count>
QString word(const char *const (&list)[count], int index)
{
    return QString::fromUtf8(list[index % count]);
}

} // namespace

SampleDocuments::SampleDocuments(const SampleVocabulary &vocabulary, quint32 seed, const QDate &today)
    : m_vocabulary(vocabulary),
      m_today(today),
      m_random(seed)
{
}

BulkDocument SampleDocuments::next(bool withFile)
{
    ++m_number;
    // A few documents are in no folder.
    const bool filed = pick(50) != 0;
    const SampleVocabulary::Folder folder =
        filed ? m_vocabulary.folders.at(pick(m_vocabulary.folders.size()))
              : SampleVocabulary::Folder{QStringLiteral("0"), QStringLiteral("unsorted"), 0};
    BulkDocument document;
    document.subArchive = pick(20) == 0 ? 2 : 1;
    document.folder = folder.oid;
    document.type = folder.type;
    document.creator = m_vocabulary.users.at(pick(m_vocabulary.users.size() - 1)); // guests file nothing
    const QDate date = m_today.addDays(-pick(5 * 365));
    document.date = date.toString(QLatin1String(dateFormat));
    document.created = QStringLiteral("%1T%2:%3:00")
                           .arg(date.addDays(pick(9)).toString(QLatin1String(dateFormat)))
                           .arg(7 + pick(11), 2, 10, QLatin1Char('0'))
                           .arg(pick(60), 2, 10, QLatin1Char('0'));
    describe(document, folder);
    setStatus(document);
    setAttributes(document);
    if (pick(12) == 0)
        document.note = QStringLiteral("Please ask %1 before it goes out.").arg(word(people, pick(5)));
    const QString suffix = QStringLiteral("pdf");
    document.fileName =
        QStringLiteral("%1-%2.%3").arg(folder.oid).arg(m_number, 5, 10, QLatin1Char('0')).arg(suffix);
    if (withFile)
        addFile(document, folder.name);
    addEvents(document);
    return document;
}

void SampleDocuments::describe(BulkDocument &document, const SampleVocabulary::Folder &folder)
{
    const int year = QDate::fromString(document.date, QLatin1String(dateFormat)).year();
    const QString number = QString::number(10000 + m_number);
    switch (folder.type) {
    case 1:
        document.description =
            QStringLiteral("Invoice %1-%2 for %3").arg(QString::number(year), number, word(goods, pick(15)));
        break;
    case 2:
        document.description =
            QStringLiteral("Contract with %1, %2").arg(word(people, pick(5)), QString::number(year));
        break;
    case 3:
        document.description =
            QStringLiteral("Payslip %1 of %2").arg(document.date.left(7), word(people, pick(5)));
        break;
    case 4:
        document.description =
            QStringLiteral("Drawing %1: %2, %3").arg(number, folder.name, word(goods, pick(15)));
        break;
    default:
        document.description =
            QStringLiteral("Letter to %1 about the %2").arg(word(people, pick(5)), word(matters, pick(10)));
        break;
    }
    // For measurements: a word that one document in a thousand has.
    if (m_number % 1000 == 0)
        document.description += QStringLiteral(" (see appendix)");
}

void SampleDocuments::setStatus(BulkDocument &document)
{
    const int luck = pick(100);
    if (luck < 4) {
        document.status = 2;
        document.resubmission = m_today.addDays(pick(20) - 5).toString(QLatin1String(dateFormat));
    } else if (luck < 40) {
        document.status = 1;
    } else if (luck < 90) {
        document.status = 3;
    } else {
        document.status = luck < 97 ? 4 : 5;
    }
    document.trashed = pick(40) == 0;
}

void SampleDocuments::setAttributes(BulkDocument &document)
{
    document.attributes.insert(m_vocabulary.reference, QStringLiteral("R-%1").arg(pick(90000) + 10000));
    document.attributes.insert(m_vocabulary.department,
                               m_vocabulary.departments.at(pick(m_vocabulary.departments.size())));
    if (document.type != 1)
        return;
    document.attributes.insert(m_vocabulary.amount, (pick(2000000) + 500) / 100.0);
    document.attributes.insert(m_vocabulary.paid, pick(3) == 0 ? QStringLiteral("0") : QStringLiteral("2"));
    document.attributes.insert(m_vocabulary.due, QDate::fromString(document.date, QLatin1String(dateFormat))
                                                     .addDays(30)
                                                     .toString(QLatin1String(dateFormat)));
}

void SampleDocuments::addFile(BulkDocument &document, const QString &folderName)
{
    const QString stem = document.fileName.left(document.fileName.lastIndexOf(QLatin1Char('.')));
    QStringList lines{document.description, folderName, QString()};
    for (int i = 0; i < 8; ++i)
        lines << QStringLiteral("%1. %2, %3 pieces, %4")
                     .arg(i + 1)
                     .arg(word(goods, pick(15)))
                     .arg(1 + pick(400))
                     .arg(word(matters, pick(10)));
    switch (m_number % 10) {
    case 7:
        document.fileName = stem + QStringLiteral(".txt");
        document.content = samplefiles::text(lines);
        break;
    case 8: {
        QList<QStringList> rows{{QStringLiteral("Goods"), QStringLiteral("Pieces"), QStringLiteral("Price")}};
        for (int i = 0; i < 12; ++i)
            rows << QStringList{word(goods, i), QString::number(1 + pick(400)),
                                QString::number(pick(90000) / 100.0)};
        document.fileName = stem + QStringLiteral(".fods");
        document.content = samplefiles::spreadsheet(rows);
        break;
    }
    case 9:
        document.fileName = stem + QStringLiteral(".png");
        document.content = samplefiles::picture(m_number);
        break;
    default:
        document.content = samplefiles::pdf(lines);
        break;
    }
}

void SampleDocuments::addEvents(const BulkDocument &document)
{
    m_events = {{5, document.created, document.creator}}; // created
    if (pick(3) == 0)
        m_events.append(
            {0, document.created, m_vocabulary.users.at(pick(m_vocabulary.users.size()))}); // shown
}

} // namespace kelva
