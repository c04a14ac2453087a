#pragma once

#include <QWidget>

#include <memory>

class QCompleter;

namespace Ui {
class KelvaSearchDlg;
}

/// The search bar under a folder tree.
class KelvaSearchDlg final : public QWidget
{
    Q_OBJECT

public:
    /// Arrow keys go on to the view, which is lent.
    KelvaSearchDlg(QWidget *view, QWidget *parent);
    ~KelvaSearchDlg() override;

    QString searchText() const;
    void setSearchText(const QString &text);
    void selectText();
    void setInputFocus();
    /// The completer stays its owner's.
    void setCompleter(QCompleter *completer);
    /// Shows where the words of the search are in the found folder.
    void setFoundText(const QString &text, const QString &search);
    /// Shows that nothing was found.
    void doNewSearch();

signals:
    void newSearch(QString text);
    void updateFolder();
    void nextSearch();
    void resetFolder();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private slots:
    void emitNewSearch(const QString &text);
    void cancel();
    void logCompletion(const QString &text);

private:
    const std::unique_ptr<Ui::KelvaSearchDlg> m_ui;
    QWidget *m_view;
};
