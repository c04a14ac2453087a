// A client whose window is worked by lines on its standard input: a process of its own, with the real
// plug-ins beside it and the Connection Manager that runs. After "ready" it answers each command with one
// line: the description shown in the first row, a tab, and the titles of the boxes that came up.

#include "app/kelvaclientmain.h"
#include "documents/documentcolumns.h"
#include "documents/kelvainfoview.h"

#include <QAction>
#include <QApplication>
#include <QMessageBox>
#include <QSocketNotifier>
#include <QTextStream>
#include <QTimer>

#include <unistd.h>

namespace {

class Driver : public QObject
{
public:
    Driver() : m_input(stdin), m_ready(STDIN_FILENO, QSocketNotifier::Read)
    {
        connect(&m_look, &QTimer::timeout, this, [this] { closeBox(); });
        m_look.start(5);
        QTimer::singleShot(0, this, [this] { begin(); });
    }

private:
    void begin()
    {
        if (!m_window.init())
            return QCoreApplication::exit(1);
        answer("ready");
        connect(&m_ready, &QSocketNotifier::activated, this, [this] { obey(m_input.readLine()); });
    }

    void obey(const QString &line)
    {
        const QString command = line.section(' ', 0, 0);
        const QString value = line.section(' ', 1);
        m_boxes.clear();
        if (command == "refresh")
            m_window.findChild<QAction *>("action_Neuladen")->trigger();
        else if (command == "append")
            append(value);
        else
            return QCoreApplication::quit(); // the end of the input as well
        answer(shown() + '\t' + m_boxes.join(';'));
    }

    QModelIndex cell() const { return table()->model()->index(0, documentcolumn::description); }
    KelvaInfoView *table() const { return m_window.findChild<KelvaInfoView *>("m_infoView"); }
    QString shown() const { return cell().data().toString(); }

    void append(const QString &text)
    {
        table()->QTableView::setCurrentIndex(cell());
        table()->model()->setData(cell(), shown() + text, Qt::DisplayRole);
        QCoreApplication::processEvents(); // saved once the table is done with it
    }

    void closeBox()
    {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        m_boxes << box->windowTitle();
        box->accept();
    }

    static void answer(const QString &line) { QTextStream(stdout) << line << '\n'; }

    KelvaClientMain m_window;
    QTextStream m_input;
    QSocketNotifier m_ready;
    QTimer m_look;
    QStringList m_boxes;
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName("kelvaclient");
    QCoreApplication::setOrganizationName("Norbant GmbH");
    const Driver driver;
    return QCoreApplication::exec();
}
