#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace kelva {

/// Records as they travel: fields joined by the field separator, and a picture (PNG or empty) at the same
/// index.
struct Records
{
    QStringList rows;
    QList<QByteArray> pictures;

    void add(const QStringList &fields, const QByteArray &picture = QByteArray());
    /// Fields of a row; missing ones are empty.
    QStringList fields(int row, int atLeast) const;
};

QString joinFields(const QStringList &fields);
QStringList splitFields(const QString &record);
/// A value that can be stored and sent: control characters and separators taken out, cut at a length.
QString cleanText(const QString &text, int maximum = 4000);

} // namespace kelva
