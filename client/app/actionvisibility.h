#pragma once

struct Session;

/// Which actions a session has at all. What is false is hidden, and off whatever is selected.
struct ActionVisibility
{
    bool administration = false; ///< settings, users and plug-ins, with their tool bar
    bool classification =
        false; ///< archiving, resubmission, moving to another archive; without it nothing is edited
    bool history = false;
    bool serviceOnly = false; ///< what needs a service: links, trash, stored filters, one's password
};

ActionVisibility actionVisibility(const Session &session);
