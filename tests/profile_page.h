#pragma once

#include "filling/live_page.h"
#include "library/product_profile.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/memory_ui.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace kestrune {

// A page with forms as an image, and a profile in which every text says which box it is from.
class ProfilePageTest : public ::testing::Test {
protected:
    // Notes what is written to the page.
    class Written : public Browser {
    public:
        void Navigate(std::string_view /*url*/) override {}
        void GoBack() override {}
        void Reload() override {}
        void Stop() override {}
        [[nodiscard]] std::string LocationURL() const override { return {}; }
        std::optional<PageDocument> take_image(const DocumentId& /*document*/, PageParts /*parts*/) override {
            return std::nullopt;
        }
        void apply(const std::vector<PageEdit>& noted) override {
            edits.insert(edits.end(), noted.begin(), noted.end());
        }
        std::vector<PageEdit> edits;
    };

    ProfilePageTest() {
        for (const ProfileField& field : ProfileFields())
            (profile.*field.box).Text = (profile.*field.box).Name;
        image.id = "page";
        image.parts = {.links = false, .forms = true, .labels = true};
        add_form();
    }

    void add_form() {
        PageForm form;
        form.ref = next_ref();
        image.forms.push_back(std::move(form));
        image.source += "<form action=\"x\">";
    }
    // A field in a table row of its own beside its label. The references last until the next one is added.
    PageElement& add(const std::string& type, const std::string& name, const std::string& label) {
        const std::string tag = type == "textarea" ? "<textarea name=\"" + name + "\"></textarea>"
                                : type == "select-one"
                                    ? "<select name=\"" + name + "\"></select>"
                                    : "<input type=\"" + type + "\" name=\"" + name + "\">";
        image.source += "<table><tr><td>" + label + "</td><td>" + tag + "</td></tr></table>";
        return add_element(type, name);
    }
    PageElement& add_list(const std::string& name, const std::string& label,
                          const std::vector<std::string>& options) {
        PageElement& list = add("select-one", name, label);
        for (const std::string& option : options)
            list.options.push_back({next_ref(), option, option, list.options.empty()});
        return list;
    }
    // Without a trace in the source.
    PageElement& add_element(const std::string& type, const std::string& name) {
        PageElement element;
        element.ref = next_ref();
        element.type = type;
        element.name = name;
        auto& elements = image.forms.back().elements;
        elements.push_back(std::move(element));
        if (image.active_element.ref.element == 0)
            image.active_element.ref = elements.back().ref;
        return elements.back();
    }

    // What was written to the element of this name, "nothing" when nothing was.
    [[nodiscard]] std::string written_to(const std::string& name) const {
        for (const PageForm& form : image.forms) {
            for (const PageElement& element : form.elements) {
                if (element.name != name)
                    continue;
                for (const PageEdit& edit : browser.edits) {
                    if (edit.kind == PageEdit::Kind::value && edit.ref.element == element.ref.element)
                        return edit.text;
                }
            }
        }
        return "nothing";
    }
    // The options selected in the list of this name, in the order of the selections.
    [[nodiscard]] std::vector<std::string> selected_in(const std::string& name) const {
        std::vector<std::string> selected;
        for (const PageEdit& edit : browser.edits) {
            for (const PageForm& form : image.forms) {
                for (const PageElement& element : form.elements) {
                    for (const PageOption& option : element.options) {
                        if (element.name == name && edit.kind == PageEdit::Kind::select &&
                            option.ref.element == edit.ref.element)
                            selected.push_back(option.text);
                    }
                }
            }
        }
        return selected;
    }

    ElementRef next_ref() { return {"page", ++last_element_}; }

    MemoryFiles files;
    MemoryUserInterface ui;
    FrmPreference profile{ui, files};
    PageDocument image;
    Written browser;

private:
    std::uint32_t last_element_ = 0;
};

} // namespace kestrune
