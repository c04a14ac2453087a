#include "documents/documentactionstate.h"

DocumentActionState documentActionState(const SelectionFacts &facts)
{
    DocumentActionState state;
    state.resubmit = facts.mayClassify;
    state.hideResubmit = !facts.mayClassify;
    if (!facts.hasLiveDocuments) {
        state.resubmit = false;
        state.moveToArchive = facts.trash && facts.hasDocuments;
        state.history = facts.trash;
        state.eraseUnchanged = true; // each refresh has switched it off already
        return state;
    }
    state.trash = true;
    state.moveToArchive = true;
    state.exportAndMail = true;
    state.link = !facts.offline;
    state.show = true;
    state.print = true;
    state.moveToFolder = true;
    state.history = true;
    if (facts.trash)
        state.resubmit = false;
    state.erase = facts.trash;
    return state;
}
