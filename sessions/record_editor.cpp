#include "sessions/record_editor.h"

#include "platform/center_form.h"
#include "sessions/post_data.h"
#include "sessions/record_dialogs.h"

#include <algorithm>
#include <string>
#include <utility>

namespace kestrune {
namespace {

void fill(FrmEdit& dialog, const RecordSession& record, const PostFields& fields) {
    dialog.txtSession.Text = record.Session;
    dialog.txtUrl.Text = record.Url;
    dialog.txtAction.Text = record.Action;
    for (std::size_t i = 0; i < FrmEdit::pair_count; ++i) {
        if (i < fields.size())
            dialog.show_pair(i, fields.names[i], UrlDecode(fields.values[i]));
        else
            dialog.show_blank(i);
    }
}

// The pairs as the dialog has them; one beyond its last row stays as it was recorded.
std::string edited_postdata(FrmEdit& dialog, PostFields fields, CodePage code_page) {
    const std::size_t shown = std::min(fields.size(), FrmEdit::pair_count);
    for (std::size_t i = 0; i < shown; ++i) {
        fields.names[i] = dialog.lblName(i).Caption.get();
        fields.values[i] = UrlEncode(dialog.txtValue(i).Text.get(), code_page);
    }
    return JoinPostData(fields);
}

} // namespace

RecordEditor::RecordEditor(RecordPanel panel, PermanentStore& store, RecordFiles& files, UserInterface& ui)
    : panel_(panel), store_(store), files_(files), ui_(ui) {}

void RecordEditor::cmdEdit_Click(ListView* list) {
    if (list == &panel_.lvwPermanent)
        store_.wait_until_loaded();
    const ListItem* const item = list == nullptr ? nullptr : list->selected();
    if (item == nullptr) {
        ui_.MessageBox(nothing_selected);
        return;
    }
    if (list->sub_item(*item, "Type") != type_form) {
        panel_.StatusBar1.set_text(1, "Cannot edit bookmark record!");
        return;
    }
    EditFormRecord(*list, *item);
}

void RecordEditor::EditFormRecord(ListView& list, const ListItem& item) {
    const bool permanent = &list == &panel_.lvwPermanent;
    const std::string key = item.Key;
    RecordSession record = RecordOf(list, item);
    PostFields fields = SplitPostData(record.Postdata, panel_.StatusBar1);

    FrmEdit dialog;
    fill(dialog, record, fields);
    dialog.Caption = permanent ? "Edit Permanent Record Session" : "Edit Temporary Record Session";
    dialog.cmdPermanentOK.Enabled = !permanent;
    CenterForm(dialog, ui_.screen());
    ui_.ShowModal(dialog);
    if (!dialog.bSaveFlag) {
        panel_.StatusBar1.set_text(1, "Modification is cancelled!");
        return;
    }

    record.Session = dialog.txtSession.Text;
    record.Url = dialog.txtUrl.Text;
    record.Action = dialog.txtAction.Text;
    record.Postdata = edited_postdata(dialog, std::move(fields), RecordCodePage(record.Postdata));
    list.set_text(key, record.Session);
    list.set_sub_item(key, "Url", record.Url);
    list.set_sub_item(key, "Action", record.Action);
    list.set_sub_item(key, "Postdata", record.Postdata);
    if (permanent) {
        files_.write(record);
        panel_.counters.gbRecordChanged = true;
    }
    panel_.StatusBar1.set_text(1, "Record session is modified!");
    if (dialog.bSavePermanent)
        store_.cmdSave_Click();
}

bool RecordEditor::BookmarkPage(std::string_view address, std::string_view origin) {
    const int number = panel_.counters.temporary_records + 1;
    FrmBookmark dialog;
    dialog.txtName.Text = "Bookmark" + std::to_string(number);
    dialog.txtDestination.Text = std::string(address);
    dialog.txtOriginating.Text = std::string(origin);
    CenterForm(dialog, ui_.screen());
    ui_.ShowModal(dialog);
    if (!dialog.bSaveFlag || dialog.txtDestination.Text.get().empty())
        return false;

    panel_.counters.temporary_records = number;
    const std::string key = "K" + std::to_string(number);
    panel_.ListView1.add(ItemOf(key, {.Type = std::string(type_bookmark),
                                      .Session = dialog.txtName.Text,
                                      .Url = dialog.txtDestination.Text,
                                      .Action = dialog.txtOriginating.Text,
                                      .Postdata = {},
                                      .Header = {},
                                      .Frame = {}}));
    panel_.ListView1.select(key);
    return true;
}

} // namespace kestrune
