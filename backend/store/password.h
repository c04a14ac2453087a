#pragma once

#include <QString>

namespace kelva {

/// Argon2id hash with its salt and cost in one text; empty when memory for it could not be had.
QString hashPassword(const QString &password);
/// An empty hash, as of a user who does not exist, takes as long as a wrong password and is never right.
bool isPassword(const QString &password, const QString &hash);

} // namespace kelva
