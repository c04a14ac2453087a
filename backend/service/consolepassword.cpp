#include "service/consolepassword.h"

#include <QTextStream>

#include <termios.h>
#include <unistd.h>

QString kelva::readConsolePassword()
{
    termios before = {};
    const bool isTyped = ::tcgetattr(STDIN_FILENO, &before) == 0;
    if (isTyped) {
        termios silent = before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ::tcsetattr(STDIN_FILENO, TCSANOW, &silent);
        QTextStream(stderr) << QStringLiteral("Password: ");
    }
    QTextStream input(stdin);
    input.setCodec("UTF-8");
    const QString password = input.readLine();
    if (isTyped) {
        ::tcsetattr(STDIN_FILENO, TCSANOW, &before);
        QTextStream(stderr) << QLatin1Char('\n');
    }
    return password;
}
