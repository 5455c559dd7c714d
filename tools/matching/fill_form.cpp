#include "tools/matching/fill_form.h"

#include "filling/fill_menu.h"
#include "platform/qt/qt_browser.h"
#include "platform/sqlite/site_schema.h"
#include "shell/browser_window.h"
#include "tools/matching/menu_chooser.h"

#include <QWebEngineView>

#include <algorithm>
#include <array>

namespace kestrune::matching {
namespace {

constexpr PageParts forms_only{.links = false, .forms = true, .labels = false};

QtBrowser& engine_behind(Browser& browser) {
    auto* const engine = dynamic_cast<QtBrowser*>(&browser);
    if (engine == nullptr)
        throw drive::DriveError("the window's browser is not the real one");
    return *engine;
}

const PageDocument* document_at(const PageDocument& image, const std::string& address) {
    if (image.url == address)
        return &image;
    for (const PageDocument& frame : image.frames) {
        if (const PageDocument* const found = document_at(frame, address))
            return found;
    }
    return nullptr;
}

bool is_button(const PageElement& element) {
    constexpr std::array<std::string_view, 6> buttons{"submit", "reset",    "button",
                                                      "image",  "fieldset", "output"};
    return std::ranges::find(buttons, element.type) != buttons.end();
}

FieldState state_of(const PageElement& element) {
    if (element.type == "checkbox" || element.type == "radio")
        return {element.name, element.checked ? "checked" : ""};
    if (!element.type.starts_with("select"))
        return {element.name, element.value};
    FieldState state{element.name, ""};
    for (const PageOption& option : element.options) {
        if (option.selected)
            state.value += (state.value.empty() ? "" : ", ") + option.text;
    }
    return state;
}

const PageForm& form_in(const PageDocument& image, const std::string& address, std::size_t number) {
    const PageDocument* const document = document_at(image, address);
    if (document == nullptr)
        throw drive::DriveError("the page shows no document " + address);
    if (document->forms.size() < number)
        throw drive::DriveError(address + " has " + std::to_string(document->forms.size()) + " forms, not " +
                                std::to_string(number));
    return document->forms[number - 1];
}

std::vector<FieldState> states_of(const PageForm& form) {
    std::vector<FieldState> states;
    for (const PageElement& element : form.elements) {
        if (!is_button(element))
            states.push_back(state_of(element));
    }
    return states;
}

} // namespace

FormFiller::FormFiller(UserInterface& ui, practice::PracticeServer& server,
                       const std::filesystem::path& program_folder, const std::filesystem::path& profile)
    : server_(server), ui_(ui, [this](Browser& made) { browser_ = &engine_behind(made); }),
      program_(ui_, files_, database_, program_folder.string()) {
    create_site_library((program_folder / std::string(site_library_name)).string(), {});
    const auto session = program_folder / "session";
    std::filesystem::create_directories(session);
    std::filesystem::copy_file(profile, session / std::string(profile_file_name),
                               std::filesystem::copy_options::overwrite_existing);
    window_ = &program_.start();
    driver_.wait("the blank page", [this] { return ui_.completed("about:blank") && !window_->busy(); });
    const FrmPreference& boxes = window_->frmPreference();
    for (const ProfileField& field : ProfileFields())
        profile_[(boxes.*field.box).Name] = (boxes.*field.box).Text;
}

std::string FormFiller::address(const PageData& page, const FormData& form) const {
    const std::string path = form.document == "/index.html" ? "/" : form.document;
    return server_.address(page.name, path);
}

void FormFiller::open(const PageData& page) {
    ui_.forget_reports();
    const std::string home = server_.home(page.name);
    browser_->Navigate(home);
    driver_.wait("the page " + home, [&] { return ui_.completed(home) && !window_->busy(); });
    page_ = ui_.completed_document(home);
}

PageDocument FormFiller::image() {
    auto image = browser_->take_image(page_, forms_only);
    if (!image)
        throw drive::DriveError("the page gave no image");
    return *std::move(image);
}

PageResult FormFiller::fill(const PageData& page) {
    open(page);
    const PageDocument before = image();
    choose_multi_input(page);
    const PageDocument after = image();
    const auto by = decided_by();
    PageResult result{page.name, {}};
    for (const FormData& form : page.forms) {
        const std::string at = address(page, form);
        const bool filled = !form.press.empty();
        auto fields = compare(form, states_of(form_in(before, at, form.number)),
                              states_of(form_in(after, at, form.number)),
                              filled ? by : std::map<std::string, std::string>{}, profile_);
        std::ranges::move(fields, std::back_inserter(result.fields));
    }
    return result;
}

std::map<std::string, std::string> FormFiller::decided_by() const {
    std::map<std::string, std::string> by;
    std::map<std::string, std::size_t> seen;
    if (!window_->last_fill())
        return by;
    for (const FieldReport& field : *window_->last_fill()) {
        const std::size_t ordinal = ++seen[field.name];
        const auto& rows = PatternTable();
        const auto row = std::ranges::find(rows, field.pattern, &PatternRow::pattern);
        const std::string title = ordinal == 1 ? field.name : field.name + "#" + std::to_string(ordinal);
        by[title] = row == rows.end()
                        ? field.pattern
                        : "row " + std::to_string(row - rows.begin() + 1) + ": " + field.pattern;
    }
    return by;
}

void FormFiller::choose_multi_input(const PageData& page) {
    const FormData& form = page.filled();
    const std::string at = address(page, form);
    const MenuChooser chooser{QStringLiteral("mnuRightClickMenu"), QStringLiteral("mnuAll")};
    const PageDocument now = image();
    const auto& elements = form_in(now, at, form.number).elements;
    const ElementRef pressed = std::ranges::find(elements, form.press, &PageElement::name)->ref;
    put_focus(pressed);
    ui_.ask_for_menu(pressed);
    driver_.wait("the right-click menu on " + at, [&] { return chooser.chosen() > 0 && !window_->busy(); });
}

void FormFiller::put_focus(const ElementRef& element) {
    browser_->view().setFocus();
    browser_->apply({{PageEdit::Kind::focus, element}});
}

} // namespace kestrune::matching
