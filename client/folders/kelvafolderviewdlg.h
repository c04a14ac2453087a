#pragma once

#include <QDialog>

class KelvaFolderView;

/// Lets the user choose a folder. Serves one choice: make a new one for the next.
class KelvaFolderViewDlg final : public QDialog
{
    Q_OBJECT

public:
    explicit KelvaFolderViewDlg(QWidget *parent = nullptr);

    KelvaFolderView *getView() const { return m_View; }
    /// True once a folder was chosen; it is the view's current one.
    bool wasAccepted() const { return m_accepted; }
    /// Restores columns and expanded folders, and gives the tree the focus soon after.
    void updateHeader();
    void saveHeader();
    void done(int result) override;

public slots:
    void doFinish();
    void setViewFocus();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    KelvaFolderView *m_View;
    bool m_accepted = false;
};
