#include "folders/kelvafolderviewdlg.h"

#include "folders/kelvafolderview.h"

#include <QKeyEvent>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

namespace {

/// The window must have become active before the tree can take the focus.
constexpr int focusDelayMs = 100;

} // namespace

KelvaFolderViewDlg::KelvaFolderViewDlg(QWidget *parent) : QDialog(parent), m_View(new KelvaFolderView(this))
{
    setWindowTitle(tr("Select folder"));
    resize(400, 571);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_View);
    auto *hint =
        new QLabel(tr("A double click or Return chooses a folder, Escape none. Type to search."), this);
    hint->setWordWrap(true);
    layout->addWidget(hint);
    m_View->setObjectName("m_View");
    m_View->setAccessibleName(tr("Folders"));
    m_View->setFocusPolicy(Qt::WheelFocus);
    m_View->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_View->setRootIsDecorated(true);
    m_View->setDialogMode(true);
    m_View->setSaveState(true, "FolderViewDlg");
    connect(m_View, SIGNAL(doubleClicked(QModelIndex)), this, SLOT(doFinish()), Qt::DirectConnection);
    connect(m_View, SIGNAL(escPressed()), this, SLOT(reject()));
}

void KelvaFolderViewDlg::updateHeader()
{
    m_View->update();
    QTimer::singleShot(focusDelayMs, this, SLOT(setViewFocus()));
}

void KelvaFolderViewDlg::setViewFocus()
{
    m_View->setFocus();
}

void KelvaFolderViewDlg::saveHeader()
{
    m_View->doSaveState();
}

void KelvaFolderViewDlg::doFinish()
{
    if (m_accepted)
        return;
    saveHeader();
    m_accepted = true;
    accept();
}

void KelvaFolderViewDlg::done(int result)
{
    // Escape comes twice, from the tree and as the dialog's own key.
    if (isVisible())
        QDialog::done(result);
}

void KelvaFolderViewDlg::keyPressEvent(QKeyEvent *event)
{
    // The tree turns these into a choice; here they would close the dialog without one.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        event->ignore();
    else
        QDialog::keyPressEvent(event);
}
