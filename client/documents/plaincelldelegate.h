#pragma once

#include "documents/kelvadelegate.h"

/// Cells that nobody edits, painted like all others.
class PlainCellDelegate final : public KelvaDelegate
{
    Q_OBJECT

public:
    using KelvaDelegate::KelvaDelegate;

    KelvaDelegate *clone(QWidget *parent) const override { return new PlainCellDelegate(parent); }
};
