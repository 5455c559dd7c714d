#include "tests/desktop/engine_fixture.h"

#include <QFile>
#include <QWebEnginePage>
#include <QWebEngineView>

#include <optional>
#include <string>

namespace kestrune {
namespace {

using ::testing::HasSubstr;

struct Seen {
    std::string label;
    std::string from;
    friend bool operator==(const Seen&, const Seen&) = default;
};

std::ostream& operator<<(std::ostream& out, const Seen& seen) {
    return out << '"' << seen.label << "\" (" << seen.from << ')';
}

class EngineLabels : public EngineTest {
protected:
    EngineLabels() {
        probe_.parts = {false, true, true};
        server_.page("/end-of-test", "the end");
    }

    PageDocument open_page(const std::string& html) {
        server_.page("/page", "<!doctype html><meta charset=utf-8>" + html);
        return open(server_.url("/page"));
    }

    static Seen label_of(const PageDocument& page, std::string_view name) {
        for (const PageForm& form : page.forms) {
            for (const PageElement& element : form.elements) {
                if (element.name == name)
                    return {element.label, element.label_from};
            }
        }
        ADD_FAILURE() << "no field " << name;
        return {};
    }

    // What a page with this in its form shows as the label of the field named f.
    Seen seen(const std::string& form) { return label_of(open_page("<form>" + form + "</form>"), "f"); }

    static inline const Seen none{};
};

TEST_F(EngineLabels, a_label_for_the_field_is_its_label) {
    EXPECT_EQ(seen("<label for=x>Program\n  name</label><p>other text <input id=x name=f>"),
              (Seen{"Program name", "label"}));
}

TEST_F(EngineLabels, a_label_around_the_field_is_its_label_without_the_texts_of_controls_in_it) {
    EXPECT_EQ(seen("<label>License <select name=f><option>Free<option>Shareware</select> "
                   "<button>Help</button><b>required</b></label>"),
              (Seen{"License required", "label"}));
    EXPECT_EQ(seen("<label>Notes <textarea name=f>already here</textarea></label>"),
              (Seen{"Notes", "label"}));
}

TEST_F(EngineLabels, several_labels_of_a_field_are_read_in_order) {
    EXPECT_EQ(seen("<label for=x>Size</label><input id=x name=f><label for=x>in bytes</label>"),
              (Seen{"Size in bytes", "label"}));
}

TEST_F(EngineLabels, a_label_goes_before_everything_else) {
    EXPECT_EQ(seen("<span id=n>named</span><label for=x>Label</label><dl><dt>term<dd>text <input id=x name=f "
                   "aria-labelledby=n aria-label=aria placeholder=holder title=title></dl>"),
              (Seen{"Label", "label"}));
}

TEST_F(EngineLabels, the_elements_that_aria_labelledby_names_are_read_in_its_order) {
    EXPECT_EQ(seen("<b id=two>of the program</b><b id=one>Home page</b>text <input name=f "
                   "aria-labelledby='one  two nowhere' aria-label=aria>"),
              (Seen{"Home page of the program", "aria-labelledby"}));
}

TEST_F(EngineLabels, an_aria_label_goes_before_the_text_beside_the_field) {
    EXPECT_EQ(seen("text <input name=f aria-label=' Search  keywords '>"),
              (Seen{"Search keywords", "aria-label"}));
}

TEST_F(EngineLabels, the_text_before_the_field_in_its_block_is_its_label) {
    EXPECT_EQ(seen("<p>another block<p><b>Program</b> <i>name</i>: <input name=f placeholder=holder>"),
              (Seen{"Program name:", "text"}));
}

TEST_F(EngineLabels, the_text_before_the_field_begins_behind_the_field_before_it) {
    EXPECT_EQ(seen("Name: <input name=a> Version: <input name=f> Size:"), (Seen{"Version:", "text"}));
    EXPECT_EQ(seen("<input type=radio name=a> Freeware <input type=radio name=a> Shareware, price: $ <input "
                   "name=f>"),
              (Seen{"Shareware, price: $", "text"}));
}

TEST_F(EngineLabels, push_buttons_and_hidden_fields_do_not_part_a_text_from_its_field) {
    EXPECT_EQ(seen("Download URL <button type=button>?</button><input type=hidden name=h><input type=button "
                   "value=Help> (direct) <input name=f>"),
              (Seen{"Download URL (direct)", "text"}));
}

TEST_F(EngineLabels, lines_parted_by_breaks_are_one_label) {
    EXPECT_EQ(seen("<p><b>Your e-mail</b> (not shown)<br>\n<input name=f></p>"),
              (Seen{"Your e-mail (not shown)", "text"}));
    EXPECT_EQ(seen("<div><b>Название<br><i>Program name</i></b> <input name=f></div>"),
              (Seen{"Название Program name", "text"}));
}

TEST_F(EngineLabels, of_lines_too_long_for_a_label_the_nearest_counts) {
    std::string rules;
    for (int i = 0; i < 40; ++i)
        rules += "Read the rules. ";
    EXPECT_EQ(seen(rules + "<br>E-mail: <input name=f>"), (Seen{"E-mail:", "text"}));
    EXPECT_EQ(seen(rules + "<input name=f>"), none);
}

TEST_F(EngineLabels, what_stands_behind_the_field_on_the_line_above_is_not_the_next_fields) {
    EXPECT_EQ(seen("Size: <input name=a> as a number of bytes<br>Version: <input name=f>"),
              (Seen{"Version:", "text"}));
    EXPECT_EQ(seen("<input name=a> Name<br><input name=f> E-mail"), none);
}

TEST_F(EngineLabels, a_unit_right_behind_the_field_belongs_to_its_label) {
    EXPECT_EQ(seen("File size: <input name=f> <i>KB</i>"), (Seen{"File size: KB", "text"}));
    EXPECT_EQ(seen("<label for=x>File size</label> <input id=x name=f> (MB)"),
              (Seen{"File size (MB)", "label"}));
    EXPECT_EQ(seen("Size: <input name=a> KB, version: <input name=f>"), (Seen{"version:", "text"}));
    EXPECT_EQ(seen("Key: <input name=f> kbps"), (Seen{"Key:", "text"}));
}

TEST_F(EngineLabels, a_block_above_the_field_in_the_same_block_is_its_label) {
    EXPECT_EQ(seen("<div><div>Intro</div><div>Program name</div><input name=f><div>Version</div><input "
                   "name=g></div>"),
              (Seen{"Program name", "text"}));
}

TEST_F(EngineLabels, an_empty_line_parts_the_label_from_what_stands_above_it) {
    EXPECT_EQ(seen("<p>Name<br><input name=a><br>Without the version.<br><br>Price<br><input name=f></p>"),
              (Seen{"Price", "text"}));
    EXPECT_EQ(seen("<p>Price<br><br><input name=f></p>"), (Seen{"Price", "text"}));
    EXPECT_EQ(seen("<p>Price<br><br>(in dollars)<br><input name=f></p>"),
              (Seen{"Price (in dollars)", "text"}));
}

TEST_F(EngineLabels, a_heading_and_what_is_explained_below_it_are_the_only_fields_label) {
    EXPECT_EQ(seen("<div><h3>Program name</h3><p>As in the list.</p><input name=f></div>"),
              (Seen{"Program name As in the list.", "text"}));
    EXPECT_EQ(seen("<div><h3>Program name</h3><p>As in the list.</p><div><input name=f></div></div>"),
              (Seen{"Program name As in the list.", "cell"}));
    EXPECT_EQ(seen("<div><h3>Links</h3><p>Home page</p><input name=f><p>Download</p><input name=a></div>"),
              (Seen{"Home page", "text"}));
}

TEST_F(EngineLabels, a_heading_over_several_fields_labels_none_of_them) {
    EXPECT_EQ(seen("<h3>Program information</h3><input name=f placeholder=Name><input name=g>"),
              (Seen{"Name", "placeholder"}));
    EXPECT_EQ(seen("<fieldset><legend>Download</legend><input name=f><input name=g></fieldset>"), none);
    EXPECT_EQ(seen("<div>Program information</div><div><input name=f placeholder=Name></div><div><input "
                   "name=g></div>"),
              (Seen{"Name", "placeholder"}));
}

TEST_F(EngineLabels, the_legend_of_a_fieldset_with_one_field_is_its_label) {
    EXPECT_EQ(seen("<fieldset><legend>Download URL</legend><input name=f></fieldset><input name=g>"),
              (Seen{"Download URL", "text"}));
}

TEST_F(EngineLabels, the_title_of_the_page_and_what_stands_before_the_form_label_nothing) {
    EXPECT_EQ(
        label_of(open_page("<h1>Download directory</h1><p>Home page</p>text<form><input name=f></form>"),
                 "f"),
        none);
    EXPECT_EQ(seen("<h2>Program name</h2><input name=f>"), none);
}

TEST_F(EngineLabels, text_that_is_not_shown_is_no_label) {
    EXPECT_EQ(
        seen("<style>.h { display: none } .v { visibility: hidden }</style>Name<span class=h>program "
             "title</span><span class=v>version</span><script>var url;</script><template>size</template> "
             "<input name=f>"),
        (Seen{"Name", "text"}));
}

TEST_F(EngineLabels, the_label_of_a_field_that_is_not_shown_yet_is_read_like_any_other) {
    EXPECT_EQ(seen("<div style='display:none'><p>Step 2</p><p>Download URL: <input name=f></p></div>"),
              (Seen{"Download URL:", "text"}));
    EXPECT_EQ(seen("<label for=x style='display:none'>Program <b>name</b></label><input id=x name=f>"),
              (Seen{"Program name", "label"}));
}

TEST_F(EngineLabels, the_term_before_the_definition_is_its_fields_label) {
    EXPECT_EQ(seen("<dl><dt>Web site<dd>see above<dt>Download <em>link</em><dd><input name=f></dl>"),
              (Seen{"Download link", "term"}));
    EXPECT_EQ(seen("<dl><div><dt>Costs</dt><dd><div><input name=f> US$</div></dd></div></dl>"),
              (Seen{"Costs", "term"}));
}

TEST_F(EngineLabels, text_within_the_definition_goes_before_its_term) {
    EXPECT_EQ(seen("<dl><dt>Size<dd>in KB: <input name=f></dl>"), (Seen{"in KB:", "text"}));
}

TEST_F(EngineLabels, a_term_goes_to_one_field_of_its_definition_and_the_lists_before_it) {
    const PageDocument page = open_page(
        "<form><dl><dt>Author<dd><select name=s><option>Mr</select><input name=f><input name=g></dl></form>");
    EXPECT_EQ(label_of(page, "s"), (Seen{"Author", "term"}));
    EXPECT_EQ(label_of(page, "f"), (Seen{"Author", "term"}));
    EXPECT_EQ(label_of(page, "g"), none);
}

TEST_F(EngineLabels, the_cell_before_in_a_grid_of_blocks_is_the_label) {
    const PageDocument page = open_page(
        "<form><div class=row><div>Product name</div><div><input name=f><div>60 characters</div></div>"
        "</div><div class=row><div>Publisher</div><div><div><span><input "
        "name=g></span></div></div></div></form>");
    EXPECT_EQ(label_of(page, "f"), (Seen{"Product name", "cell"}));
    EXPECT_EQ(label_of(page, "g"), (Seen{"Publisher", "cell"}));
}

TEST_F(EngineLabels, the_cells_of_a_grid_in_one_row_label_each_its_next) {
    const PageDocument page = open_page(
        "<form><style>.grid { display: grid; grid-template-columns: 1fr 1fr 1fr 1fr }</style><div class=grid>"
        "<div>Name</div><div><input name=a></div><div>Version</div><div><input name=b></div>"
        "<span>License</span><select name=c><option>x</select><span>Price</span><input name=d></div></form>");
    EXPECT_EQ(label_of(page, "a"), (Seen{"Name", "cell"}));
    EXPECT_EQ(label_of(page, "b"), (Seen{"Version", "cell"}));
    EXPECT_EQ(label_of(page, "c"), (Seen{"License", "text"}));
    EXPECT_EQ(label_of(page, "d"), (Seen{"Price", "text"}));
}

TEST_F(EngineLabels, a_cell_of_fields_labels_no_other_cell) {
    EXPECT_EQ(seen("<div><div>Name <input name=a></div><div><input name=f></div></div>"), none);
}

TEST_F(EngineLabels, text_behind_the_field_in_another_fields_cell_labels_no_other) {
    EXPECT_EQ(seen("<style>label { position: absolute }</style><div><input name=a><label>Name</label></div>"
                   "<div><input name=f><label>Version</label></div>"),
              none);
    EXPECT_EQ(seen("<div><div>Name</div><div><input name=a><div>No version here.</div></div></div>"
                   "<div><div><input name=f></div></div>"),
              none);
}

TEST_F(EngineLabels, a_placeholder_goes_before_a_title) {
    EXPECT_EQ(seen("<input name=f placeholder='PAD file URL' title=title>"),
              (Seen{"PAD file URL", "placeholder"}));
    EXPECT_EQ(seen("<select name=f title=License><option>x</select>"), (Seen{"License", "title"}));
}

TEST_F(EngineLabels, a_place_without_any_text_gives_way_to_the_next) {
    EXPECT_EQ(seen("<label for=x> </label><p id=e></p><p><b> * </b><input id=x name=f aria-labelledby=e "
                   "aria-label=' ' placeholder=' ' title=Price>"),
              (Seen{"Price", "title"}));
}

TEST_F(EngineLabels, a_label_for_nothing_counts_as_text) {
    EXPECT_EQ(seen("<p><label for=nothing>Program name</label> <input name=f>"),
              (Seen{"Program name", "text"}));
}

TEST_F(EngineLabels, of_fields_with_one_id_each_gets_the_label_before_it) {
    const PageDocument page = open_page("<form><label for=x>Name</label><input id=x name=a><label "
                                        "for=x>E-mail</label><input id=x name=b></form>");
    EXPECT_EQ(label_of(page, "a"), (Seen{"Name", "label"}));
    EXPECT_EQ(label_of(page, "b"), (Seen{"E-mail", "label"}));
}

// Counted where the labels compare places, with stand-ins for the document.
TEST_F(EngineLabels, labels_of_many_fields_with_one_id_find_theirs_without_looking_at_all) {
    open_page("");
    QFile file(":/kestrune/page/labels.js");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString code = "const Labels = " + QString::fromUtf8(file.readAll()) + R"(({
            native: {
                localName: (mark) => mark.name, attribute: () => 'id', rootNode: () => 0, control: () => null,
            },
            limits: {},
        });
        let looks = 0;
        const marks = [];
        for (let i = 0; i < 1000; ++i)
            marks.push({ name: 'label' }, { name: 'input' });
        marks.push({ name: 'label' });
        const entries = () => marks.map((mark, place) => [{ valueOf: () => (++looks, place) }, mark]);
        const found = new Labels({ entries }).labels;
        const right = marks.every((mark, place) => mark.name === 'label' ||
            found.get(mark)[0] === marks[place - 1] && found.get(mark).length === (place < 1999 ? 1 : 2));
        (right ? '' : 'wrong ') + looks)";
    std::optional<QString> said;
    browser_->view().page()->runJavaScript("{" + code + "}",
                                           [&said](const QVariant& answer) { said = answer.toString(); });
    ASSERT_TRUE(wait_until([&said] { return said.has_value(); }));
    bool number = false;
    const int looks = said->toInt(&number);
    EXPECT_TRUE(number) << said->toStdString();
    EXPECT_LT(looks, 1001 * 2 * 11); // places compared two by two, at most eleven times for a thousand fields
}

TEST_F(EngineLabels, a_check_box_has_the_labels_that_name_it_and_no_text_before_it) {
    EXPECT_EQ(seen("<label for=x>I agree</label> <input type=checkbox id=x name=f>"),
              (Seen{"I agree", "label"}));
    EXPECT_EQ(seen("Do you agree? <input type=checkbox name=f> I do"), none);
}

TEST_F(EngineLabels, fields_named_like_properties_have_their_labels) {
    const PageDocument page = open_page(
        "<form id=form><p>Email <input name=parentNode><p>Name <input name=previousSibling><p>URL "
        "<input name=elements><p>Size <input name=nodeType><p>Price <input name=getRootNode></form>");
    EXPECT_EQ(label_of(page, "parentNode"), (Seen{"Email", "text"}));
    EXPECT_EQ(label_of(page, "previousSibling"), (Seen{"Name", "text"}));
    EXPECT_EQ(label_of(page, "elements"), (Seen{"URL", "text"}));
    EXPECT_EQ(label_of(page, "nodeType"), (Seen{"Size", "text"}));
    EXPECT_EQ(label_of(page, "getRootNode"), (Seen{"Price", "text"}));
}

TEST_F(EngineLabels, fields_in_an_open_shadow_root_have_its_labels) {
    const PageDocument page = open_page(
        "<label for=x>not this one</label><p>Publisher <span id=host></span></p><script>"
        "host.attachShadow({mode: 'open'}).innerHTML = '<input name=first><form><label for=x>Program "
        "name</label><input id=x name=a><span id=n>Version</span><input name=b aria-labelledby=n></form>'"
        "</script>");
    EXPECT_EQ(label_of(page, "a"), (Seen{"Program name", "label"}));
    EXPECT_EQ(label_of(page, "b"), (Seen{"Version", "aria-labelledby"}));
    ASSERT_EQ(page.inputs.size(), 3U);
    EXPECT_EQ((Seen{page.inputs[0].label, page.inputs[0].label_from}), (Seen{"Publisher", "text"}));
    EXPECT_THAT(page.source, HasSubstr("<span id=\"host\"><template shadowroot"));
}

TEST_F(EngineLabels, fields_of_frames_have_their_labels) {
    server_.page("/inner", "<form><label>E-mail <input name=mail></label></form>");
    const PageDocument page =
        open_page("<iframe src='" + server_.url("/inner", "127.0.0.9") +
                  "'></iframe><iframe srcdoc='<form>Price <input name=p></form>'></iframe>");
    ASSERT_EQ(page.frames.size(), 2U);
    EXPECT_EQ(label_of(page.frames[0], "mail"), (Seen{"E-mail", "label"}));
    EXPECT_EQ(label_of(page.frames[1], "p"), (Seen{"Price", "text"}));
    EXPECT_THAT(page.frames[0].source, HasSubstr("<label>E-mail <input name=\"mail\">"));
}

TEST_F(EngineLabels, labels_and_source_come_only_when_they_are_asked_for) {
    const PageDocument page = open_page("<form>Name <input name=f autofocus></form>");
    EXPECT_THAT(page.source, HasSubstr("<form>Name <input name=\"f\""));
    const PageDocument bare = image_of(page);
    EXPECT_EQ(bare.source, "");
    EXPECT_EQ(label_of(bare, "f"), none);
}

TEST_F(EngineLabels, a_document_that_is_no_html_has_no_labels_and_harms_nothing) {
    server_.answer(
        "/page.xml",
        {"<root xmlns:h='http://www.w3.org/1999/xhtml'>Name <h:form><h:input name='f'/></h:form></root>", 200,
         "application/xml"});
    const PageDocument page = open(server_.url("/page.xml"));
    ASSERT_EQ(page.forms.size(), 1U);
    EXPECT_EQ(label_of(page, "f"), none);
}

TEST_F(EngineLabels, the_source_of_a_page_of_many_megabytes_comes_whole) {
    std::string html = "<form><table>";
    while (html.size() < 9000000)
        html += "<tr><td>some cells of a long list<td>" + std::string(800, 'x');
    const PageDocument page = open_page(html + "<tr><td>Program name<td><input name=f></table></form>");
    EXPECT_GT(page.source.size(), html.size());
    EXPECT_THAT(page.source.substr(page.source.size() - 200), HasSubstr("<input name=\"f\">"));
}

TEST_F(EngineLabels, the_field_with_the_focus_is_told_in_a_form_or_not) {
    const PageDocument outside =
        open_page("<form><input name=a></form><p>Search <input name=s value=v autofocus>");
    ASSERT_TRUE(wait_until([&] { return image_of(outside).active_element.name == "s"; }));
    const PageDocument page = *browser_->take_image(outside.id, {false, true, true});
    EXPECT_EQ(page.active_element.type, "text");
    EXPECT_EQ(page.active_element.value, "v");
    EXPECT_EQ(page.active_element.label, "Search");
    EXPECT_EQ(page.active_element.ref.element, page.inputs.at(1).ref.element);
    browser_->apply({{PageEdit::Kind::focus, page.inputs.at(0).ref}});
    const PageDocument after = image_of(page);
    EXPECT_EQ(after.active_element.name, "a");
    EXPECT_EQ(after.active_element.ref.element, after.forms.at(0).elements.at(0).ref.element);
}

TEST_F(EngineLabels, without_a_focused_field_no_active_element_is_told) {
    const PageDocument page = open_page("<form><input name=a></form><button autofocus>b</button>");
    EXPECT_EQ(image_of(page).active_element.ref.element, 0U);
    EXPECT_EQ(image_of(page).active_element.type, "");
}

TEST_F(EngineLabels, a_field_with_the_focus_in_a_shadow_root_is_told) {
    const PageDocument page =
        open_page("<div id=host></div><script>const root = host.attachShadow({mode: 'open'});"
                  "root.innerHTML = '<form><select name=s><option>x</select></form>'</script>");
    browser_->apply({{PageEdit::Kind::focus, page.forms.at(0).elements.at(0).ref}});
    EXPECT_EQ(image_of(page).active_element.name, "s");
    EXPECT_EQ(image_of(page).active_element.type, "select-one");
}

TEST_F(EngineLabels, the_page_hears_of_the_focus_it_is_given) {
    const PageDocument page = open_page(
        "<form><input name=a><input name=log></form><script>for (const type of ['focus', 'input', 'change'])"
        "document.addEventListener(type, e => { if (e.target.name === 'a') "
        "document.querySelector('[name=log]').value += type + ';' }, true)</script>");
    const ElementRef field = page.forms.at(0).elements.at(0).ref;
    browser_->apply({{PageEdit::Kind::focus, field}, {PageEdit::Kind::value, field, "x"}});
    EXPECT_EQ(image_of(page).forms.at(0).elements.at(1).value, "focus;input;change;");
}

} // namespace
} // namespace kestrune
