#include "manager/managersurroundings.h"
#include "manager/profiledialog.h"
#include "support/kelvatest.h"

#include "service/subarchives.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace kelva;

namespace {

/// The dialog with what it saved.
struct Opened
{
    explicit Opened(const Profile &profile)
        : dialog(
              profile,
              [this](const Profile &entered) -> Result<void> {
                  if (!refusal.isEmpty())
                      return Error{ErrorCode::Conflict, refusal};
                  saved << entered;
                  return {};
              },
              nullptr)
    {
        dialog.show();
        dialog.activateWindow();
    }
    QString message() const { return dialog.findChild<QLabel *>("message")->text(); }
    QLineEdit *field(const char *name) const { return dialog.findChild<QLineEdit *>(name); }
    bool hasFocus(const char *name) const { return dialog.focusWidget() == field(name); }
    void type(const char *name, const QString &text)
    {
        QLineEdit *edit = field(name);
        edit->selectAll();
        QTest::keyClicks(edit, text);
    }
    void load() { dialog.findChild<QPushButton *>("load")->click(); }
    bool isLoaded() const { return dialog.findChild<QPushButton *>("load")->isEnabled(); }
    bool isReady() const
    {
        return dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->isEnabled();
    }
    QComboBox *archive() const { return dialog.findChild<QComboBox *>("archive"); }

    QString refusal;
    QList<Profile> saved;
    ProfileDialog dialog;
};

} // namespace

class TestProfileDialog : public QObject
{
    Q_OBJECT

private slots:
    void archivesAreLoadedAndChosen()
    {
        ManagerSurroundings s;
        QVERIFY(SubArchives(*s.archive.owner()).create("Zweites Archiv", QString()).ok());
        Profile fresh;
        fresh.host = "localhost";
        Opened opened(fresh);
        opened.dialog.accept();
        QVERIFY(opened.message().contains("name"));
        QVERIFY(opened.hasFocus("name"));
        QCOMPARE(opened.field("port")->text(), QString("1")); // the only one of this machine
        opened.type("name", "Office");
        opened.type("port", "01");
        opened.type("user", " admin ");
        opened.type("password", "secret");
        opened.dialog.accept();
        QTRY_VERIFY2(opened.message().contains("choose one"), qPrintable(opened.message()));
        QVERIFY(opened.saved.isEmpty());
        QCOMPARE(opened.archive()->count(), 2);
        QCOMPARE(opened.dialog.focusWidget(), opened.archive());
        opened.archive()->setCurrentIndex(1);
        opened.dialog.accept();
        QTRY_VERIFY(!opened.dialog.isVisible());
        QCOMPARE(opened.saved.size(), 1);
        const Profile profile = opened.saved.first();
        QCOMPARE(profile.port + '|' + profile.user + '|' + profile.displayLine1, QString("1|admin|Office"));
        QCOMPARE(profile.archiveName(), QString("Zweites Archiv"));
    }

    void aListThatComesTooLateIsDropped()
    {
        ManagerSurroundings s;
        Opened opened(s.profile("Office"));
        opened.load();
        QCOMPARE(opened.archive()->currentText(), QString("Archive"));
        opened.type("port", "2");
        QCOMPARE(opened.archive()->count(), 0); // those of another port do not count
        opened.load();
        QTRY_VERIFY(opened.message().contains("2.kelva"));
        QVERIFY(opened.isLoaded());
        QCOMPARE(opened.archive()->count(), 0);
        opened.dialog.accept();
        QTRY_VERIFY(opened.isReady() && opened.message().contains("2.kelva"));
        QVERIFY(opened.hasFocus("port") || opened.dialog.focusWidget()->objectName() == "portChoice");
        QVERIFY(opened.saved.isEmpty());
    }

    void nothingTypedIsLost()
    {
        ManagerSurroundings s;
        Profile original = s.profile("Office");
        original.id = 1001;
        Opened opened(original);
        // The login stays as it was: it is not tried.
        opened.type("name", "Bureau");
        opened.refusal = "Somebody was faster.";
        opened.dialog.accept();
        QVERIFY(opened.dialog.isVisible());
        QCOMPARE(opened.message(), opened.refusal);
        opened.refusal.clear();
        opened.type("user", "anna");
        opened.dialog.accept();
        QTRY_VERIFY2(opened.message().contains("Wrong username"), qPrintable(opened.message()));
        QVERIFY(opened.hasFocus("password"));
        // Changed once more: that is tried as well.
        opened.type("password", "other");
        opened.dialog.accept();
        QTRY_VERIFY(opened.message().contains("press OK again"));
        QVERIFY(opened.saved.isEmpty());
        opened.dialog.accept();
        Profile expected = original;
        expected.name = "Bureau";
        expected.user = "anna";
        expected.password = "other";
        QVERIFY(opened.saved == QList<Profile>{expected});
    }
};

KELVA_TEST(TestProfileDialog)
#include "testprofiledialog.moc"
