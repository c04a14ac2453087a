#pragma once

#include "contract/recordformat.h"

#include <QString>

/// A sub-archive as profiles and services name it: display text and key, joined by
/// recordformat::fieldSeparator. An entry of one field is its own key.
struct ArchiveEntry
{
    QString name;
    QString key;
    bool hasKey = false; ///< of its own

    static ArchiveEntry parse(const QString &entry)
    {
        const QStringList fields = entry.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        return {fields.value(0), recordformat::secondOrOnly(fields), fields.size() == 2};
    }

    /// Whether one of these entries has the key.
    static bool isKnown(const QString &key, const QStringList &entries)
    {
        for (const QString &entry : entries)
            if (parse(entry).key == key)
                return true;
        return false;
    }
};
