#include "admin/commands.h"

#include <QCoreApplication>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kelvaadmin"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KELVA_VERSION));
    return kelva::runCommand(QCoreApplication::arguments().mid(1));
}
