// The road from a click on a folder to 1,000 painted rows of 20 columns, against the raw query and a bare
// item model with the same cells. Usage: benchlist ARCHIVE-FILE, an archive made by "kelvaadmin sample" that
// may be changed; it is browsed offline, from a copy beside this program.

#include "bench/measure.h"

#include "app/kelvaclientmain.h"
#include "documents/kelvainfoview.h"
#include "service/attributes.h"
#include "service/records.h"
#include "service/session.h"

#include <QApplication>
#include <QFile>
#include <QSpinBox>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

namespace {

constexpr int columns = 20;
constexpr int rows = 1000;

/// The sample has five attributes; four more make 20 columns.
bool addColumns(const QString &path)
{
    const auto session = kelva::Session::openAsOwner(path, "admin");
    if (!session)
        return false;
    kelva::Attributes attributes(*session.value());
    const auto present = attributes.list();
    QStringList missing;
    for (int i = present ? present.value().size() : columns; i < columns - 11; ++i)
        missing << kelva::joinFields(
            {QString::number(-i - 1), QString("Extra %1").arg(i), "String", "false", "false"});
    return missing.isEmpty() || attributes.save(missing).ok();
}

void rawFill(const QString &sql, QTableView &view, QStandardItemModel &model)
{
    model.removeRows(0, model.rowCount());
    QSqlQuery query(QSqlDatabase::database("raw"));
    query.setForwardOnly(true);
    query.exec(sql);
    while (query.next()) {
        QList<QStandardItem *> items;
        for (int column = 0; column < columns; ++column)
            items << new QStandardItem(query.value(column).toString());
        model.appendRow(items);
    }
    view.grab();
}

int run(KelvaClientMain &window)
{
    if (!window.init())
        return 1;
    window.resize(1280, 800);
    window.findChild<QSpinBox *>("m_maxSearchBox")->setValue(rows);
    auto *table = window.findChild<KelvaInfoView *>("m_infoView");
    QCoreApplication::processEvents();

    QStandardItemModel model;
    QTableView view;
    view.setModel(&model);
    view.resize(table->size());
    view.show();
    const QString sql =
        "SELECT c.document, c.folder, c.bemerkung, c.status, c.version, c.folder, c.docart, "
        "c.changeid, c.cdate, c.ctimestamp, c.defdate, c.attr1, c.attr2, c.attr3, c.attr4, c.attr5, "
        "c.attr6, c.attr7, c.attr8, c.attr9 FROM classification c WHERE c.trashed = 0 ORDER BY c.id "
        "DESC LIMIT 1000";
    compare({"refresh of 1,000 rows of 20 columns, painted",
             [&] {
                 window.selChanged();
                 table->grab();
             },
             [&] { rawFill(sql, view, model); }, 1.5});
    return table->rowCount() == rows && model.rowCount() == rows ? 0 : 1;
}

} // namespace

int main(int argc, char *argv[])
{
    QTemporaryDir home;
    for (const char *variable : {"HOME", "XDG_CONFIG_HOME", "TMPDIR"})
        qputenv(variable, home.path().toLocal8Bit());
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName("kelvabench");
    if (argc != 2) {
        QTextStream(stderr) << "usage: benchlist ARCHIVE-FILE\n";
        return 2;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);
    const QString offline = QCoreApplication::applicationDirPath() + "/offline.kelva";
    QFile::remove(offline);
    if (!addColumns(path) || !QFile::copy(path, offline)) {
        QTextStream(stderr) << "The archive cannot be used.\n";
        return 1;
    }
    QSqlDatabase raw = QSqlDatabase::addDatabase("QSQLITE", "raw");
    raw.setDatabaseName(offline);
    raw.setConnectOptions("QSQLITE_OPEN_READONLY");
    raw.open();

    int result = 1;
    {
        KelvaClientMain window;
        QTimer::singleShot(0, &window, [&] {
            result = run(window);
            QCoreApplication::quit();
        });
        QApplication::exec();
    }
    QFile::remove(offline);
    return result;
}
