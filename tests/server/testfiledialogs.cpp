#include "support/kelvatest.h"

#include "server/qfiledialogarchive.h"

#include <QCheckBox>
#include <QTemporaryDir>

class TestFileDialogs : public QObject
{
    Q_OBJECT

private slots:
    void checkBoxesAreKept()
    {
        const QTemporaryDir directory;
        {
            QFileDialogArchive dialog(nullptr, "Archive file", directory.path());
            QVERIFY(!dialog.isMoveChecked() && !dialog.isCreateVersion());
            QCOMPARE(dialog.fileMode(), QFileDialog::ExistingFiles);
            for (QCheckBox *box : dialog.findChildren<QCheckBox *>())
                if (box->text() == "create version")
                    box->click();
            dialog.show();
            dialog.reject(); // a cancelled dialog keeps them as well
        }
        QFileDialogArchive again(nullptr, "Archive file", directory.path());
        QVERIFY(!again.isMoveChecked() && again.isCreateVersion());
    }
};

KELVA_TEST(TestFileDialogs)
#include "testfiledialogs.moc"
