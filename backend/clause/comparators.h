#pragma once

#include "clause/clausetree.h"

namespace kelva {

/// What holds where the comparison does not; NULL aside.
Comparator negation(Comparator comparator);
/// The same comparison with its sides exchanged.
Comparator mirrored(Comparator comparator);
/// In SQL, with blanks around it.
QString sign(Comparator comparator);
/// order is below, at or above zero as the left side is below, equal to or above the right one.
bool holds(Comparator comparator, int order);

} // namespace kelva
