#pragma once

#include "service/documentcolumns.h"
#include "store/result.h"

#include <QString>
#include <QVariant>

namespace kelva {

/// What a record carries of its revision, so that a save of an older one is noticed.
QString versionToken(qint64 revision);

/// Field texts as they are stored. Text never becomes NULL; an empty date or number does.
QVariant storedText(const QString &text, int maximum = 4000);
/// "yyyy-MM-dd" or empty; BadInput otherwise.
Result<QVariant> storedDate(const QString &text);
Result<QVariant> storedAttribute(const AttributeColumn &attribute, const QString &text);

} // namespace kelva
