#pragma once

#include "service/records.h"
#include "store/result.h"

namespace kelva {

class Session;

/// Status, document types and what else fills the choices of a client.
class Vocabulary
{
public:
    explicit Vocabulary(Session &session) : m_session(session) {}

    /// Records of id and name, in saved order. saveStatus takes the whole list: an empty id is new, a missing
    /// one is deleted, InUse when a record has it.
    Result<Records> status();
    Result<void> saveStatus(const Records &records);
    /// Records of id, name and retention "years;months;days", in saved order. A retention is never shortened.
    Result<Records> types();
    Result<void> saveTypes(const Records &records);

    /// Oldest and newest document date that the session sees; today twice when it sees none.
    Result<QStringList> dateBounds();
    /// Distinct descriptions among the newest records that the session sees, sorted.
    Result<QStringList> descriptions();
    /// Label and key of every field that a rule for classifying can name, and a last row for the rights
    /// letters.
    Result<QStringList> classifyFields();

private:
    Session &m_session;
};

} // namespace kelva
