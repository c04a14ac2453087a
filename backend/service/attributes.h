#pragma once

#include "store/result.h"

#include <QHash>
#include <QString>
#include <QStringList>

namespace kelva {

class Session;

/// The archive's own classification fields. Each has a column in the table of records from the day it is
/// made.
class Attributes
{
public:
    explicit Attributes(Session &session) : m_session(session) {}

    /// Records of id, name, kind (String, ComboBox, CheckBox, Date, Numeric), not-unique, not-active.
    Result<QStringList> list();
    /// A negative id inserts; the result says which id it became. Nothing is deleted.
    Result<QHash<qint64, qint64>> save(const QStringList &records);
    Result<QStringList> values(qint64 id);
    /// The name first, then the values in their order.
    Result<void> saveValues(qint64 id, const QStringList &nameAndValues);

private:
    Session &m_session;
};

} // namespace kelva
