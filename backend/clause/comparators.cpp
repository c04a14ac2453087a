#include "clause/comparators.h"

namespace kelva {

Comparator negation(Comparator comparator)
{
    switch (comparator) {
    case Comparator::Equal:
        return Comparator::NotEqual;
    case Comparator::NotEqual:
        return Comparator::Equal;
    case Comparator::Less:
        return Comparator::GreaterOrEqual;
    case Comparator::LessOrEqual:
        return Comparator::Greater;
    case Comparator::Greater:
        return Comparator::LessOrEqual;
    case Comparator::GreaterOrEqual:
        return Comparator::Less;
    }
    return comparator;
}

Comparator mirrored(Comparator comparator)
{
    switch (comparator) {
    case Comparator::Less:
        return Comparator::Greater;
    case Comparator::LessOrEqual:
        return Comparator::GreaterOrEqual;
    case Comparator::Greater:
        return Comparator::Less;
    case Comparator::GreaterOrEqual:
        return Comparator::LessOrEqual;
    case Comparator::Equal:
    case Comparator::NotEqual:
        break;
    }
    return comparator;
}

QString sign(Comparator comparator)
{
    switch (comparator) {
    case Comparator::Equal:
        return QStringLiteral(" = ");
    case Comparator::NotEqual:
        return QStringLiteral(" <> ");
    case Comparator::Less:
        return QStringLiteral(" < ");
    case Comparator::LessOrEqual:
        return QStringLiteral(" <= ");
    case Comparator::Greater:
        return QStringLiteral(" > ");
    case Comparator::GreaterOrEqual:
        break;
    }
    return QStringLiteral(" >= ");
}

bool holds(Comparator comparator, int order)
{
    switch (comparator) {
    case Comparator::Equal:
        return order == 0;
    case Comparator::NotEqual:
        return order != 0;
    case Comparator::Less:
        return order < 0;
    case Comparator::LessOrEqual:
        return order <= 0;
    case Comparator::Greater:
        return order > 0;
    case Comparator::GreaterOrEqual:
        break;
    }
    return order >= 0;
}

} // namespace kelva
