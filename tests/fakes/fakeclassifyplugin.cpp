#include "fakes/fakeclassifyclient.h"

/// The fake metadata client as a plug-in file, for programs and tests that load one.
class FakeClassifyPlugin final : public FakeClassifyClient
{
    Q_OBJECT
    Q_INTERFACES(ClassifyInterface)
    Q_PLUGIN_METADATA(IID CLASSIFY_INTERFACE_IID)
};

#include "fakeclassifyplugin.moc"
