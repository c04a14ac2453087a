#pragma once

#include <QFileIconProvider>
#include <QIcon>
#include <QMimeDatabase>

/// Icons for files by their type. Lives as long as the process.
class kelvaIconProvider final
{
public:
    static kelvaIconProvider *instance();

    /// Icon of the type that the file's name stands for; null when the desktop's icon theme has none. Only
    /// the name is looked at: it may come from an archive, and a local file of that name is another thing.
    QIcon fileIcon(const QString &path) const;
    QIcon dirIcon() const;

private:
    kelvaIconProvider() = default;

    QFileIconProvider m_provider;
    QMimeDatabase m_types;
};
