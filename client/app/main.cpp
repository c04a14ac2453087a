#include "app/desktoppalette.h"
#include "app/kelvaclientmain.h"
#include "app/programversion.h"
#include "app/qmyapplication.h"
#include "app/screenfitter.h"
#include "contract/privatefile.h"

#include <QSettings>
#include <QStyle>
#include <QTextCodec>
#include <QTimer>
#include <QTranslator>

namespace {

const char applicationSheet[] =
    "QDockWidget::title {background: rgb(233, 239, 255);padding-left: 2px; padding-top: 4px;} QDockWidget "
    "{margin:0px;padding:0px;} QStatusBar {border: 1px outset rgb(180, 215, 255) ; background-color: "
    "rgb(180, 215, "
    "255);} QMainWindow {padding: 0px;margin: 0px;} QAbstractItemView {alternate-background-color: rgb(233, "
    "239, "
    "255);} QMainWindow::separator {border: 1px outset rgb(180, 215, 255); height: 1px; width: 1px;} "
    "QMainWindow::separator:hover {border: 2px solid rgb(180, 215, 255); height: 1px; width: 1px;}";

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QMyApplication application(argc, argv);
    QCoreApplication::setApplicationName(programversion::application);
    QCoreApplication::setOrganizationName(programversion::organisation);
    // Before its first write: it may come to hold the password of a proxy.
    makePrivateFile(QSettings(programversion::organisation, programversion::application).fileName());
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    QApplication::setPalette(
        programPalette(QGuiApplication::palette(), QApplication::style()->standardPalette()));
    application.setStyleSheet(applicationSheet);

    // The one catalogue beside the program decides the language, not the locale; without it the texts stay
    // English.
    QTranslator translator;
    translator.load("language", QCoreApplication::applicationDirPath(), QString(), QString());
    QCoreApplication::installTranslator(&translator);
    QGuiApplication::setQuitOnLastWindowClosed(true);

    ScreenFitter fitter;
    application.installEventFilter(&fitter);
    KelvaClientMain window;
    QTimer::singleShot(100, &window, SLOT(init()));
    return QApplication::exec();
}
