#pragma once

#include <QNetworkProxy>

class QSettings;

/// The proxy of the settings file, or the system's.
struct ProxySettings
{
    bool useSystem = true;
    /// Keeps the default type even with a host: no HTTP or SOCKS type is chosen.
    QNetworkProxy proxy;
};

ProxySettings readProxySettings(const QSettings &settings);
