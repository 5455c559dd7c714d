#include "sessions/permanent_store.h"

#include "platform/text.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace kestrune {
namespace {

// Small enough not to be felt between two events of the user.
constexpr std::size_t files_per_slice = 200;

bool name_fits(std::string_view file_name, const RecordSession& record) {
    return equal_ignoring_case(file_name.substr(0, file_name.size() - 4), UrlToFileName(record.Url));
}

} // namespace

struct PermanentStore::Load {
    explicit Load(const RecordFiles& record_files)
        : names(record_files.names()), files(record_files.sequence(names)) {
        items.reserve(names.size());
    }

    std::vector<std::string> names;
    std::unique_ptr<FileSequence> files; // of the names from `next` on
    std::size_t next = 0;
    std::vector<ListItem> items;
};

PermanentStore::PermanentStore(RecordPanel panel, RecordFiles& files, SiteLibrary& library, UserInterface& ui,
                               PreferenceReader read_preference)
    : panel_(panel), files_(files), library_(library), ui_(ui), read_preference_(std::move(read_preference)) {
}

void PermanentStore::LoadPermanentSession() {
    panel_.ListView1.set_columns(RecordColumns());
    panel_.lvwPermanent.set_columns(RecordColumns());
    panel_.lvwPAD.set_columns(SiteColumns());
    panel_.lvwNonPad.set_columns(SiteColumns());
    library_.LoadSiteList(site_library_name, panel_.lvwPAD, true, panel_.counters.glngNoOfPadRecord);
    library_.LoadSiteList(site_library_name, panel_.lvwNonPad, false, panel_.counters.glngNoOfNonPadRecord);

    files_.prepare();
    panel_.lvwPermanent.clear();
    panel_.counters.glngNoOfPermanentRecord = 0;
    loading_ = std::make_shared<Load>(files_);
    read_files(files_per_slice);
}

void PermanentStore::wait_until_loaded() {
    if (loading_)
        read_files(std::numeric_limits<std::size_t>::max());
}

void PermanentStore::continue_later() {
    ui_.call_later([this, load = std::weak_ptr<Load>(loading_)] {
        if (const auto wanted = load.lock(); wanted && wanted == loading_)
            read_files(files_per_slice);
    });
}

void PermanentStore::read_files(std::size_t most) {
    Load& load = *loading_;
    const std::size_t end = load.next + std::min(most, load.names.size() - load.next);
    while (load.next < end) {
        std::string text;
        if (TextOfFile(load.files->next(), text))
            read_file(load.names[load.next], text);
        ++load.next;
    }
    if (load.next == load.names.size())
        finish_loading();
    else
        continue_later();
}

void PermanentStore::read_file(const std::string& name, std::string_view text) {
    RecordSession record;
    ParseSessionXml(text, record);
    if (record.Type == type_preference) {
        if (read_preference_)
            read_preference_(text);
    } else if (name_fits(name, record)) {
        std::string key = UrlToRecordKey(record.Url);
        loading_->items.push_back(ItemOf(std::move(key), std::move(record)));
    } else {
        files_.put_away(name);
    }
}

void PermanentStore::finish_loading() {
    const auto load = std::exchange(loading_, nullptr);
    const ListView::Bulk bulk{panel_.lvwPermanent};
    for (ListItem& item : load->items) {
        if (panel_.lvwPermanent.add(std::move(item)))
            ++panel_.counters.glngNoOfPermanentRecord;
    }
}

void PermanentStore::cmdSave_Click() {
    const ListItem* const selected = panel_.ListView1.selected();
    if (selected == nullptr) {
        ui_.MessageBox(nothing_selected);
        return;
    }
    wait_until_loaded();
    const std::string temporary_key = selected->Key;
    RecordSession record = RecordOf(panel_.ListView1, *selected);
    if (!may_replace(record)) {
        panel_.StatusBar1.set_text(1, "Move action is aborted!");
        return;
    }
    if (!PutRecordInList(panel_.lvwPermanent, UrlToRecordKey(record.Url), record, panel_.counters))
        ++panel_.counters.glngNoOfPermanentRecord;
    files_.write(record);
    panel_.counters.gbRecordChanged = true;
    panel_.ListView1.remove(temporary_key);
}

// A bookmark must not cost the user a recorded form unasked.
bool PermanentStore::may_replace(const RecordSession& record) {
    if (record.Type != type_bookmark)
        return true;
    const ListItem* const listed = panel_.lvwPermanent.find(UrlToRecordKey(record.Url));
    const auto kept = files_.record_for(record.Url);
    if ((listed == nullptr || panel_.lvwPermanent.sub_item(*listed, "Type") != type_form) &&
        (!kept || kept->Type != type_form))
        return true;
    return ui_.MessageBox("This bookmark would replace the recorded form of the same address, do you want to "
                          "replace it?",
                          Buttons::YesNo) == Answer::Yes;
}

bool PermanentStore::may_delete_from(const ListView& list) {
    std::string_view question;
    if (&list == &panel_.lvwPermanent)
        question = "Are you sure to delete this permanent record session?";
    else if (&list == &panel_.lvwPAD)
        question = "Are you sure to delete PAD Record?";
    else if (&list == &panel_.lvwNonPad)
        question = "Are you sure to delete NON-PAD Record?";
    return question.empty() || ui_.MessageBox(question, Buttons::YesNo) == Answer::Yes;
}

void PermanentStore::cmdDelete_Click(ListView* list) {
    wait_until_loaded();
    const SelectedEntry entry = ReadSelectedEntry(list);
    if (!entry.found) {
        ui_.MessageBox(nothing_selected);
        return;
    }
    if (!may_delete_from(*list)) {
        panel_.StatusBar1.set_text(1, "Delete action is aborted!");
        return;
    }
    if (list == &panel_.lvwPermanent) {
        files_.remove(entry.url);
        --panel_.counters.glngNoOfPermanentRecord;
        panel_.counters.gbRecordChanged = true;
    }
    list->remove(entry.key);
    if (list == &panel_.lvwPAD || list == &panel_.lvwNonPad)
        library_.DeleteSiteRecord(site_library_name, entry.key);
    panel_.StatusBar1.set_text(1, "Record session is deleted!");
}

} // namespace kestrune
