#pragma once

#include <QDate>
#include <QString>

#include <optional>

namespace kelva {

/// A text with its date macros replaced by "yyyy-MM-dd": [HEUTE+n], [MONAT+n] and [JAHR+n], each with "+" or
/// "-", are today plus or minus n days, months or years. Everything else stays as it is. Nothing is returned
/// when a macro leads out of the years 1 to 9999.
std::optional<QString> withDateMacros(const QString &text, const QDate &today);

} // namespace kelva
