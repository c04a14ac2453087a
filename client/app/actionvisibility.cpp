#include "app/actionvisibility.h"

#include "contract/userrights.h"
#include "server/session.h"

ActionVisibility actionVisibility(const Session &session)
{
    ActionVisibility visible;
    visible.administration = session.mayDo(userright::administrate);
    visible.classification = session.mayDo(userright::classify);
    visible.history = session.mayDo(userright::history) && !session.offline;
    visible.serviceOnly = !session.offline;
    return visible;
}
