#pragma once

/// What is known of the session and the selection when the document actions are switched.
struct SelectionFacts
{
    bool hasLiveDocuments = false; ///< selected rows whose classification is not deleted
    bool hasDocuments = false;     ///< selected rows at all
    bool trash = false;
    bool offline = false;
    bool mayClassify = false;
};

/// Which document actions are enabled. Hiding an action is a matter of rights and of the mode, except for
/// resubmission, which is hidden here without the right to classify.
struct DocumentActionState
{
    bool resubmit = false;
    bool hideResubmit = false;
    bool trash = false;
    bool moveToArchive = false;
    bool exportAndMail = false;
    bool link = false;
    bool show = false;
    bool print = false;
    bool moveToFolder = false;
    bool history = false;
    bool erase = false;
    bool eraseUnchanged = false; ///< leave the delete action as it is
};

DocumentActionState documentActionState(const SelectionFacts &facts);
