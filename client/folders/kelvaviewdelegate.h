#pragma once

#include "documents/kelvadelegate.h"

class KelvaDocTree;

/// The folder column: its value is the oid of a folder of the tree, which is lent.
class KelvaViewDelegate final : public KelvaDelegate
{
    Q_OBJECT

public:
    KelvaViewDelegate(KelvaDocTree *tree, QWidget *parent);

    KelvaDelegate *clone(QWidget *parent) const override;
    KelvaDocTree *getTree() const { return m_tree; }

private:
    KelvaDocTree *m_tree;
};
