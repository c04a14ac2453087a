#include "manager/display.h"

#include <QString>

#include <X11/Xlib.h>

namespace kelva {

bool hasDisplay()
{
    const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM");
    if (!platform.isEmpty() && platform != QLatin1String("xcb"))
        return true;
    if (platform.isEmpty() && !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return true;
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        return false;
    Display *display = XOpenDisplay(nullptr);
    if (!display)
        return false;
    XCloseDisplay(display);
    return true;
}

} // namespace kelva
