#pragma once

#include "platform/user_interface.h"
#include "sessions/permanent_store.h"
#include "sessions/record_files.h"

#include <string_view>

namespace kestrune {

// Lets the user change the records of one window's lists, and make bookmarks.
class RecordEditor {
public:
    // All of it outlives this object.
    RecordEditor(RecordPanel panel, PermanentStore& store, RecordFiles& files, UserInterface& ui);

    // Opens the selected record of a record list in its editor; list is one of the panel's two or null, which
    // is no selection. Records of another type than "Form" are refused.
    void cmdEdit_Click(ListView* list);

    // Offers an address as a bookmark; origin is where the user came to it from. When the user confirms an
    // address, the bookmark is added to the temporary records and selected there, and true is returned.
    bool BookmarkPage(std::string_view address, std::string_view origin);

private:
    void EditFormRecord(ListView& list, const ListItem& item);

    RecordPanel panel_;
    PermanentStore& store_;
    RecordFiles& files_;
    UserInterface& ui_;
};

} // namespace kestrune
