#include "documents/kelvaiconprovider.h"

kelvaIconProvider *kelvaIconProvider::instance()
{
    static auto *provider =
        new kelvaIconProvider; // never destroyed: icons may be asked for until the very end
    return provider;
}

QIcon kelvaIconProvider::fileIcon(const QString &path) const
{
    const QMimeType type = m_types.mimeTypeForFile(path, QMimeDatabase::MatchExtension);
    return QIcon::fromTheme(type.iconName(), QIcon());
}

QIcon kelvaIconProvider::dirIcon() const
{
    return m_provider.icon(QFileIconProvider::Folder);
}
