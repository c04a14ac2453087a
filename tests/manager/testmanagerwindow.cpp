#include "manager/managersurroundings.h"
#include "manager/managerwindow.h"
#include "support/dialogscript.h"
#include "support/kelvatest.h"
#include "support/outside.h"

#include "service/users.h"

#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTreeWidget>

using namespace kelva;

namespace {

/// The window as the program shows it.
struct Shown : StartedManager
{
    explicit Shown(ManagerSurroundings &s) : StartedManager(s.store)
    {
        window = std::make_unique<ManagerWindow>(profiles, &manager);
        window->present();
    }
    QTreeWidget *list() const { return window->findChild<QTreeWidget *>("profiles"); }
    QPushButton *button(const char *name) const { return window->findChild<QPushButton *>(name); }
    QString state(int row) const { return list()->topLevelItem(row)->text(3); }

    std::unique_ptr<ManagerWindow> window;
};

const char title[] = "Kelva - Connection Manager";

} // namespace

class TestManagerWindow : public QObject
{
    Q_OBJECT

private slots:
    void faultsAreShownAtTheirProfile()
    {
        ManagerSurroundings s;
        s.added(s.profile("Sound"));
        Profile wrong = s.profile("Wrong password");
        wrong.password = "wrong";
        s.added(wrong);
        Profile gone = s.profile("Gone");
        gone.port = "9";
        s.added(gone);
        Profile noPort = s.profile("A port that is no number");
        noPort.port = "x";
        s.added(noPort);
        outside::write(qEnvironmentVariable("KELVA_HOME") + "/8.kelva", QByteArray(5000, 'x'));
        Profile noArchive = s.profile("A file that is no archive");
        noArchive.port = "8";
        s.added(noArchive);
        Shown shown(s);
        QTRY_COMPARE(shown.state(0), QString("Ready"));
        QTRY_COMPARE(shown.state(1), QString("Wrong username or password!"));
        QTRY_VERIFY(shown.state(2).contains("9.kelva"));
        QTRY_VERIFY(shown.state(3).contains("not valid"));
        QTRY_VERIFY(shown.state(4).contains("is no archive"));
        // The password is put right from elsewhere.
        Profile right = s.store.load().value().at(1);
        right.password = "secret";
        QVERIFY(s.store.replace(s.store.load().value().at(1), right).ok());
        QTRY_COMPARE(shown.state(1), QString("Ready"));
    }

    void aTestLogsIn()
    {
        ManagerSurroundings s;
        s.archive.addDocument("Offer", "1.1");
        s.added(s.profile("Office"));
        Shown shown(s);
        QTRY_COMPARE(shown.state(0), QString("Ready"));
        DialogScript script;
        script.expectBox(title, "as admin works.\n\nArchive: Archive (1 in all)\nDocuments: 1\nFolders: 6");
        shown.button("test")->click();
        QVERIFY(!shown.button("test")->isEnabled());
        QTRY_VERIFY(shown.button("test")->isEnabled());
        QTRY_COMPARE(script.problems(), QString());
        QVERIFY(Users(*s.archive.owner()).setPassword("admin", "changed").ok());
        script.expectBox(title, "failed:\n\nWrong username or password!");
        shown.button("test")->click();
        QTRY_COMPARE(script.problems(), QString());
    }

    void aProfileIsEditedAndRemoved()
    {
        ManagerSurroundings s;
        s.added(s.profile("Office"));
        const Profile second = s.added(s.profile("Second"));
        Shown shown(s);
        DialogScript script;
        shown.list()->setCurrentItem(shown.list()->topLevelItem(1));
        script.expectDialog("Profile \"Second\"", true, [](QWidget *dialog) {
            dialog->findChild<QLineEdit *>("name")->setText("<b>Renamed</b>");
        });
        shown.button("edit")->click();
        QCOMPARE(shown.list()->currentItem()->text(0), QString("<b>Renamed</b>"));
        QCOMPARE(s.store.load().value().at(1).id, second.id);
        script.expectDialog("New profile", false);
        shown.button("add")->click();
        script.expectBox(title, "\"<b>Renamed</b>\"", QMessageBox::No);
        shown.window->activateWindow();
        shown.list()->setFocus();
        QTRY_VERIFY(shown.list()->hasFocus());
        QTest::keyClick(shown.list(), Qt::Key_Delete);
        QCOMPARE(shown.list()->topLevelItemCount(), 2);
        script.expectBox(title, "\"<b>Renamed</b>\"", QMessageBox::Yes);
        shown.button("remove")->click();
        QCOMPARE(shown.list()->topLevelItemCount(), 1);
        QCOMPARE(s.store.load().value().size(), 1);
        QVERIFY(!shown.button("edit")->isEnabled());
    }

    void closingAsks()
    {
        ManagerSurroundings s;
        Shown shown(s);
        QSignalSpy quit(shown.window.get(), &ManagerWindow::quitRequested);
        DialogScript script;
        script.expectBox(title, "in the background", QMessageBox::Cancel);
        shown.window->close();
        QVERIFY(shown.window->isVisible() && quit.isEmpty());
        script.expectBox(title, "in the background", QMessageBox::No);
        shown.button("closeButton")->click();
        QCOMPARE(quit.count(), 1);
        script.expectBox(title, "in the background", QMessageBox::Yes);
        shown.window->close();
        QVERIFY(!shown.window->isVisible());
        QCOMPARE(quit.count(), 1);
    }

    void aDamagedFileCanBeSetAside()
    {
        ManagerSurroundings s;
        s.writeFile("{ damaged");
        Shown shown(s);
        auto *bar = shown.window->findChild<QWidget *>("faultBar");
        QVERIFY(bar->isVisible());
        QVERIFY(!shown.button("add")->isEnabled());
        DialogScript script;
        script.expectBox(title, "set aside", QMessageBox::No);
        shown.button("setAside")->click();
        QCOMPARE(s.readFile(), QByteArray("{ damaged"));
        script.expectBox(title, "set aside", QMessageBox::Yes);
        script.expectBox(title, "is kept as");
        shown.button("setAside")->click();
        QVERIFY(!bar->isVisible());
        QVERIFY(shown.button("add")->isEnabled());
    }
};

KELVA_TEST(TestManagerWindow)
#include "testmanagerwindow.moc"
