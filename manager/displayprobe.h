#pragma once

struct _XDisplay;

namespace kelva {

/// Finds out whether there is a display, before a QApplication is made, which ends the program when it finds
/// none. Stays connected until close(): a virtual display may start over when its last client leaves.
class DisplayProbe
{
public:
    DisplayProbe();
    ~DisplayProbe();
    DisplayProbe(const DisplayProbe &) = delete;
    DisplayProbe &operator=(const DisplayProbe &) = delete;

    /// True as well when the environment asks for a platform that may need no display.
    bool isReachable() const { return m_reachable; }
    void close();

private:
    _XDisplay *m_display = nullptr;
    bool m_reachable = false;
};

} // namespace kelva
