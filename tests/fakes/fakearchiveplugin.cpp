#include "fakes/fakearchiveclient.h"

/// The fake content client as a plug-in file.
class FakeArchivePlugin final : public FakeArchiveClient
{
    Q_OBJECT
    Q_INTERFACES(kelvaArchiveClientInterface)
    Q_PLUGIN_METADATA(IID KELVA_ARCHIVE_CLIENT_INTERFACE_IID)
};

#include "fakearchiveplugin.moc"
