#pragma once

#include <QMessageBox>
#include <QTimer>

#include <functional>

/// Answers modal windows by a script of what is expected. A window that the script does not expect is closed
/// and fails the test, and so does an entry that is left over. It always closes what it meets, so that no
/// test hangs in an exec().
class DialogScript : public QObject
{
    Q_OBJECT

public:
    DialogScript();
    /// Fails the test when there are problems still.
    ~DialogScript() override;

    /// A message box with this title whose text holds the given part; the button is pressed.
    void expectBox(const QString &title, const QString &textPart,
                   QMessageBox::StandardButton answer = QMessageBox::Ok);
    /// A dialog with this title; act fills it in, then it is accepted or rejected.
    void expectDialog(const QString &title, bool accept, std::function<void(QWidget *)> act = {});

    /// Empty when every window came as expected and none is missing.
    QString problems() const;

private slots:
    void look();

private:
    struct Entry
    {
        bool box;
        QString title;
        QString textPart;
        QMessageBox::StandardButton button;
        bool accept;
        std::function<void(QWidget *)> act;
    };

    void answer(QWidget *window, const Entry &entry);

    QList<Entry> m_entries;
    QStringList m_problems;
    QTimer m_timer;
};
