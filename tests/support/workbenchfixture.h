#pragma once

#include "contract/sharedblock.h"
#include "folders/workbenchdata.h"

/// Lays a data block down in shared memory, as the Connection Manager does, for as long as it lives.
class WorkbenchFixture
{
public:
    /// The vocabulary that goes with the fake archive.
    static WorkbenchData vocabulary();
    static QByteArray block(const WorkbenchData &data);

    WorkbenchFixture(const QString &key, const QByteArray &block);
    bool isReady() const { return m_ready; }

private:
    SharedBlock m_segment;
    const bool m_ready;
};
