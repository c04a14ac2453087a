#include "manager/displayprobe.h"

#include <QString>

#include <X11/Xlib.h>

namespace kelva {

DisplayProbe::DisplayProbe()
{
    const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM");
    m_reachable = platform.isEmpty() ? !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
                                     : platform != QLatin1String("xcb");
    if (m_reachable || qEnvironmentVariableIsEmpty("DISPLAY"))
        return;
    m_display = XOpenDisplay(nullptr);
    m_reachable = m_display != nullptr;
}

DisplayProbe::~DisplayProbe()
{
    close();
}

void DisplayProbe::close()
{
    if (m_display)
        XCloseDisplay(m_display);
    m_display = nullptr;
}

} // namespace kelva
