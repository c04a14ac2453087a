#include "app/proxysettings.h"

#include <QSettings>

ProxySettings readProxySettings(const QSettings &settings)
{
    ProxySettings result;
    // Stored as the state of a check box: 1 is not checked.
    if (settings.value("proxyUse", 0).toInt() != Qt::Checked)
        return result;
    result.useSystem = false;
    result.proxy.setType(QNetworkProxy::DefaultProxy);
    result.proxy.setHostName(settings.value("proxyHost", QString()).toString());
    result.proxy.setPort(static_cast<quint16>(settings.value("proxyPort", 0).toUInt()));
    if (settings.value("proxyLogon", 0).toInt() == Qt::Checked) {
        result.proxy.setUser(settings.value("proxyUser", QString()).toString());
        result.proxy.setPassword(settings.value("proxyPass", QString()).toString());
    }
    return result;
}
