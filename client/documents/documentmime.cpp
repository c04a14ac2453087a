#include "documents/documentmime.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QMimeData>
#include <QSet>

#include <algorithm>

namespace {

constexpr int maximumDocuments = 10000;
constexpr int maximumDigits = 18;

/// The ids go into a condition as they stand.
bool isDocumentId(const QString &text)
{
    return !text.isEmpty() && text.size() <= maximumDigits &&
           std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c >= '0' && c <= '9'; });
}

} // namespace

QString documentmime::type()
{
    return QStringLiteral("x-norbant-kelvadocument%1").arg(QCoreApplication::applicationPid());
}

QStringList documentmime::documentIds(const QMimeData *data)
{
    const QByteArray bytes = data->data(type());
    QDataStream stream(bytes);
    QStringList ids;
    QSet<QString> known;
    while (!stream.atEnd()) {
        QString id;
        stream >> id;
        if (stream.status() != QDataStream::Ok || !isDocumentId(id))
            return {};
        if (known.contains(id))
            continue;
        known.insert(id);
        ids << id;
        if (ids.size() > maximumDocuments)
            return {};
    }
    return ids;
}
