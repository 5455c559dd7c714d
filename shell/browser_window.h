#pragma once

#include "filling/page_processing.h"
#include "filling/page_state.h"
#include "library/submit_status.h"
#include "platform/browser.h"
#include "platform/user_interface.h"
#include "sessions/permanent_store.h"
#include "sessions/record_editor.h"
#include "sessions/record_list.h"
#include "shell/capture.h"
#include "shell/event_queue.h"
#include "shell/program.h"
#include "shell/window_controls.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kestrune {

// A browser window: the first one, or a pop-up stacked on its opener. It holds its controls, its lists and
// its state; its procedures stand in a file for each topic. They run one at a time on the user-interface
// thread.
class BrowserWindow : public WindowControls, public PageState, public RecordCounters, private BrowserEvents {
public:
    // objParentForm: the window that opened this one, null for the first; it outlives this one.
    BrowserWindow(Program& program, BrowserWindow* opener);
    ~BrowserWindow() override;
    BrowserWindow(const BrowserWindow&) = delete;
    BrowserWindow& operator=(const BrowserWindow&) = delete;
    BrowserWindow(BrowserWindow&&) = delete;
    BrowserWindow& operator=(BrowserWindow&&) = delete;

    BrowserWindow* const objParentForm;
    BrowserWindow* objMeForm = nullptr;
    bool bFirstFlag = false;
    std::int32_t glngPopupLevel = 0;
    std::int32_t lngBlockedPopups = 0;
    bool gbGobackFlag = false;
    bool gbRightClickDone = false;
    std::int32_t glngMnuIdx = fill_nothing; // entry chosen in the right-click menu
    bool bBackEnabled = false;              // the browser has a page to go back to
    const std::string gstrSessionPath;
    int glngCurTab = 0; // 0 permanent, 1 temporary, 2 PAD, 3 NON-PAD
    std::int32_t lngCurPadKey = 0;

    // Start-up and shut-down (start_up.cpp)
    void Form_Load();
    void Form_QueryUnload();
    void Form_Unload();
    // The two above, in order. A pop-up that has opened one itself goes once that one has gone.
    void Unload();
    void mnuExit_Click();
    void CallLoadPermanentRecord();
    void CopyMenuStateFromParent();
    void CopyMenuStateToParent();

    // Layout (layout.cpp)
    void Form_Resize();

    // Navigation (navigation.cpp)
    void OpenSiteForPlayback(std::string_view url, std::string_view description);
    void cmdGoto_Click();
    void cmdBack_Click();
    void mnuWebsite_Click();
    void Timer1_Timer();
    void reload();
    void stop();
    // Asks for an address and opens it as ordinary browsing: not as a site being played.
    void open_address();
    void mnuAbout_Click();
    // Asks whether to, first.
    void forget_sites();

    // Switches (switches.cpp)
    void mnuWithPAD_Click();
    void mnuNoPAD_Click();
    void mnuPromptFill_Click();
    void mnuManualClick_Click();
    void mnuAutoClick_Click();
    void mnuNoFill_Click();
    void mnuAutoRecord_Click();
    void mnuBlock_Click();
    void mnuSelectGeneral_Click();
    void mnuSelectGame_Click();
    void mnuSelectDeveloper_Click();
    void mnuSelectBusiness_Click();
    void mnuSelectFreeware_Click();
    void mnuSelectSpecial_Click();
    void cmdRecord_Click();
    void cmdPrompt_Click();
    void cmdAutoClick_Click();

    // Record lists panel (record_panel.cpp)
    [[nodiscard]] ListView* CurrentRecordList();
    void SSTab1_Click();
    void SortPermanentList(int column);
    void SortPadList(int column);
    void SortNonPadList(int column);
    void mnuHideRecord_Click();
    void cmdHideRecord_Click();
    void mnuAutoHide_Click();
    void cmdAutoHide_Click();
    void AutoHideRecordPanel();

    // Buttons beside the lists, and the profile (record_buttons.cpp)
    void mnuSetting_Click();
    void cmdEdit_Click();
    void cmdDelete_Click();
    void cmdSave_Click();
    void cmdReset_Click();
    // Offers the page in the browser as a bookmark; one that is made comes to the front.
    void bookmark_page();

    // Playback (playback.cpp)
    void cmdPlayback_Click();

    // Right-click menu (right_click.cpp)
    // Shows which fields the last "Multi-input" filled, and why.
    void show_fill_report();
    // What the last "Multi-input" in this window decided.
    [[nodiscard]] const std::optional<FillReport>& last_fill() const { return last_fill_; }

    // Pop-up windows (popups.cpp)
    BrowserWindow& OpenPopupWindow();

    // The program's product profile, complete: waits for the load that reads it.
    [[nodiscard]] FrmPreference& frmPreference();
    [[nodiscard]] Browser& browser() { return *browser_; }
    // What page processing works on in this window.
    [[nodiscard]] PageProcessing page_processing();
    [[nodiscard]] bool busy() const { return events_.busy(); }
    // It has unloaded, or will with the last pop-up over it.
    [[nodiscard]] bool going() const { return unloaded_ || unload_waits_; }

private:
    // BrowserEvents
    [[nodiscard]] PageParts wanted_parts() override;
    void BeforeNavigate2(NavigateEvent event) override;
    void DocumentComplete(PageDocument image) override;
    void CommandStateChange(int command, bool enable) override;
    Browser* NewWindow2() override;
    void WindowClosing() override;
    bool ContextMenu(const ElementRef& field) override;

    using Procedure = void (BrowserWindow::*)();
    void wire();
    void wire_menus();
    void wire_keys();
    // What a control calls: the procedure, in its turn behind whatever runs now.
    [[nodiscard]] std::function<void()> in_turn(Procedure procedure);
    void navigate(std::string_view url);
    void on_command_state(int command, bool enable);
    void show_panel();
    void hide_panel();

    void read_profile(std::string_view text);
    bool fill_by_menu(const ElementRef& field);

    bool may_open_popup();
    [[nodiscard]] bool has_popup() const;
    void show_site_tab(int tab, const std::string& count);
    [[nodiscard]] SubmitStatusControls submit_status_controls();
    [[nodiscard]] RecordPanel record_panel();
    [[nodiscard]] Capture capture();

    Program& program_;
    PermanentStore store_;
    RecordEditor editor_;
    int loads_ = 0; // of the permanent records, apart from those that a later one cut short
    std::optional<FillReport> last_fill_; // of "Multi-input" in this window
    EventQueue events_;
    bool unload_waits_ = false; // for the pop-ups over this window
    bool unloaded_ = false;
    // Counts the navigations of the top window: a completion that waited in the queue while the page was left
    // is dropped.
    std::uint64_t visit_ = 0;
    std::unique_ptr<Browser> browser_;
};

} // namespace kestrune
