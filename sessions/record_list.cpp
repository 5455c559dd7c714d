#include "sessions/record_list.h"

#include "platform/text.h"

#include <utility>

namespace kestrune {

SelectedEntry ReadSelectedEntry(const ListView* list) {
    const ListItem* const item = list == nullptr ? nullptr : list->selected();
    if (item == nullptr)
        return {};
    // Record lists call the address "Url", site lists "url".
    const std::string_view url = list->sub_item(*item, "Url");
    return {true, item->Key, item->Text, std::string(url.empty() ? list->sub_item(*item, "url") : url),
            item->SubItems};
}

std::vector<ListView::Column> RecordColumns() {
    return {{"Record Name", 3500},         {"Record Type", 1200},
            {"Destination Address", 3500}, {"Form Action / Originating Address", 3500},
            {"Post Data", 5000},           {"Header", 1000},
            {"Target Frame", 1000}};
}

std::vector<ListView::Column> SiteColumns() {
    return {{"Library Name", 2500}, {"URL", 3500}, {"Status", 700}, {"Category", 1200}, {"Comment", 3000}};
}

RecordSession RecordOf(const ListView& list, const ListItem& item) {
    const auto field = [&](std::string_view key) { return std::string(list.sub_item(item, key)); };
    return {field("Type"),     item.Text,       field("Url"),  field("Action"),
            field("Postdata"), field("Header"), field("Frame")};
}

ListItem ItemOf(std::string key, RecordSession record) {
    ListItem item{std::move(key), std::move(record.Session), {}};
    item.SubItems.reserve(6);
    for (std::string* const field :
         {&record.Type, &record.Url, &record.Action, &record.Postdata, &record.Header, &record.Frame})
        item.SubItems.push_back(std::move(*field));
    return item;
}

bool AddRecordToList(ListView& list, RecordSession record) {
    std::string key = UrlToRecordKey(record.Url);
    return list.add(ItemOf(std::move(key), std::move(record)));
}

bool UpdateRecordInList(ListView& list, std::string_view key, RecordSession& record) {
    const ListItem* const item = list.find(key);
    if (item == nullptr)
        return false;
    if (record.Session == generated_name)
        record.Session = item->Text;
    else
        list.set_text(key, record.Session);
    list.set_sub_item(key, "Type", record.Type);
    list.set_sub_item(key, "Url", record.Url);
    list.set_sub_item(key, "Action", record.Action);
    list.set_sub_item(key, "Postdata", record.Postdata);
    list.set_sub_item(key, "Header", record.Header);
    list.set_sub_item(key, "Frame", record.Frame);
    return true;
}

bool PutRecordInList(ListView& list, std::string_view key, RecordSession& record, RecordCounters& counters) {
    if (UpdateRecordInList(list, key, record))
        return true;
    if (record.Session == generated_name)
        record.Session = "Session" + std::to_string(++counters.generated_names);
    AddRecordToList(list, record);
    return false;
}

} // namespace kestrune
