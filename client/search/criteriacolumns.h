#pragma once

/// Columns of the extended search's table of criteria.
namespace criteriacolumn {

enum : int { field, op, value, several, remove, count };

} // namespace criteriacolumn
