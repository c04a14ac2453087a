#include "folders/kelvaviewdelegate.h"

#include "folders/kelvadoctree.h"

#include <QWidget>

KelvaViewDelegate::KelvaViewDelegate(KelvaDocTree *tree, QWidget *parent)
    : KelvaDelegate(parent),
      m_tree(tree)
{
}

KelvaDelegate *KelvaViewDelegate::clone(QWidget *parent) const
{
    auto *copy = new KelvaViewDelegate(m_tree, parent);
    copy->setDelegateColumn(delegateColumn);
    return copy;
}
