#include "support/kelvatest.h"

#include "server/qfiledialogarchive.h"
#include "server/qfiledialogzip.h"

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

    void aZipFileOrADirectory()
    {
        const QTemporaryDir directory;
        QFileDialogZip dialog(nullptr, "Select folder", directory.path());
        auto *zip = dialog.findChild<QCheckBox *>();
        dialog.show();
        QVERIFY(!dialog.isZipMode());
        QCOMPARE(dialog.selectedFiles(), QStringList(directory.path()));
        zip->click();
        QVERIFY(dialog.isZipMode());
        QCOMPARE(dialog.nameFilters(), QStringList("Zip Archive (*.zip)"));
        QCOMPARE(dialog.directory().absolutePath(), directory.path());
        zip->click();
        QVERIFY(!dialog.isZipMode());
        QCOMPARE(dialog.selectedFiles(), QStringList(directory.path()));
    }
};

KELVA_TEST(TestFileDialogs)
#include "testfiledialogs.moc"
