#pragma once

#include "library/site_library.h"
#include "platform/user_interface.h"
#include "sessions/record_files.h"
#include "sessions/record_list.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kestrune {

// What of a window the record procedures work on. All of it outlives them.
struct RecordPanel {
    ListView& lvwPermanent;
    ListView& ListView1; // temporary records
    ListView& lvwPAD;
    ListView& lvwNonPad;
    StatusBar& StatusBar1;
    RecordCounters& counters;
};

// The permanent records of one window: loading them, keeping temporary ones, deleting from any of the lists.
class PermanentStore {
public:
    // Gets the text of the product profile's file, when the session folder holds one; may be empty.
    using PreferenceReader = std::function<void(std::string_view text)>;

    // All but the panel may be shared between windows, and outlive this object.
    PermanentStore(RecordPanel panel, RecordFiles& files, SiteLibrary& library, UserInterface& ui,
                   PreferenceReader read_preference);

    // Sets the columns of all four lists, fills the two site lists, and replaces the permanent list by what
    // the session folder holds, in order of file name; of two files with one key the first is listed and the
    // other left alone. A file whose name does not fit its record's address is put away. A large folder is
    // read in slices from the event loop; the list and its count are empty until the last of them.
    void LoadPermanentSession();
    [[nodiscard]] bool loaded() const { return loading_ == nullptr; }
    // Reads at once what is still to be read. Whoever looks at the permanent list, its count or the product
    // profile calls this first.
    void wait_until_loaded();

    // Moves the selected temporary record to the permanent ones, file included.
    void cmdSave_Click();

    // Deletes the selected entry of the list that is showing, which is one of the panel's or null; all but
    // temporary records after a question, records with their file, sites with their row.
    void cmdDelete_Click(ListView* list);

private:
    struct Load;

    void continue_later();
    void read_files(std::size_t most);
    void read_file(const std::string& name, std::string_view text);
    void finish_loading();
    [[nodiscard]] bool may_replace(const RecordSession& record);
    [[nodiscard]] bool may_delete_from(const ListView& list);

    RecordPanel panel_;
    RecordFiles& files_;
    SiteLibrary& library_;
    UserInterface& ui_;
    PreferenceReader read_preference_;
    std::shared_ptr<Load> loading_;
};

} // namespace kestrune
