#include "tools/matching/form_data.h"

#include "filling/live_page.h"
#include "filling/pad_matcher.h"
#include "form_fields.h"
#include "library/product_profile.h"
#include "platform/browser.h"
#include "platform/code_page.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/memory_ui.h"
#include "platform/text.h"
#include "tools/matching/judgement.h"
#include "tools/practice/pages.h"
#include "tools/practice/site.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace kestrune::matching {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;

PageData parsed(const std::string& text) { return parse_form_data("form", text, "fields.txt"); }

std::string refusal(const std::string& text) {
    try {
        parsed(text);
    } catch (const FormDataError& error) {
        return error.what();
    }
    return "accepted";
}

TEST(PracticeFormFile, FormsAndFieldsAreRead) {
    const PageData page = parsed("# a comment\n"
                                 "form = 1\n"
                                 "q | | stay | stay\n"
                                 "\n"
                                 "document = /box.html\n"
                                 "form = 2\n"
                                 "press = b\n"
                                 "a#2 | Name * : | 17 txtProgramName | \"Nora H\" or txtFirstName\n"
                                 "b | Size (MB) | 5 stay | \"2.4\"\n"
                                 "c | License | list \"Shareware\" | checked\n");
    ASSERT_THAT(page.forms, SizeIs(2));
    EXPECT_EQ(page.forms[0].document, "/index.html");
    EXPECT_EQ(page.forms[0].number, 1U);
    const FormData& form = page.filled();
    EXPECT_EQ(form.document, "/box.html");
    EXPECT_EQ(form.number, 2U);
    ASSERT_THAT(form.fields, SizeIs(3));
    EXPECT_EQ(form.fields[0].name, "a");
    EXPECT_EQ(form.fields[0].ordinal, 2U);
    EXPECT_EQ(form.fields[0].title(), "a#2");
    EXPECT_EQ(form.fields[0].label, "Name * :");
    EXPECT_EQ(form.fields[0].row, 17);
    EXPECT_EQ(form.fields[0].table, (Wanted{Wanted::Kind::box, "txtProgramName"}));
    EXPECT_THAT(form.fields[0].person,
                ElementsAre(Wanted{Wanted::Kind::text, "Nora H"}, Wanted{Wanted::Kind::box, "txtFirstName"}));
    EXPECT_EQ(form.fields[1].row, 5);
    EXPECT_EQ(form.fields[1].table, Wanted{});
    EXPECT_EQ(form.fields[2].row, 0);
    EXPECT_EQ(form.fields[2].table, (Wanted{Wanted::Kind::text, "Shareware"}));
    EXPECT_THAT(form.fields[2].person, ElementsAre(Wanted{Wanted::Kind::checked, ""}));
}

TEST(PracticeFormFile, ErrorNamesFileLineAndWhatIsWanted) {
    EXPECT_EQ(refusal("a | b | stay | stay\n"),
              "fields.txt:1: \"form = NUMBER\" is missing before this line");
    EXPECT_THAT(refusal("form = 0\n"), HasSubstr("the form's number is wanted"));
    EXPECT_THAT(refusal("nonsense\n"), HasSubstr("\"key = value\" or a field"));
    EXPECT_THAT(refusal("colour = red\n"), HasSubstr("unknown key \"colour\""));
    EXPECT_THAT(refusal("form = 1\na | b | stay\n"),
                EndsWith("2: \"NAME | LABEL | TABLE | PERSON\" is wanted"));
    EXPECT_THAT(refusal("form = 1\na#x | b | stay | stay\n"), HasSubstr("a number is wanted behind \"#\""));
    EXPECT_THAT(refusal("form = 1\na | b | stay | stay\na | c | stay | stay\n"),
                HasSubstr("\"a\" stands on line 2 already"));
    EXPECT_THAT(refusal("form = 1\na | b | txtPrice | stay\n"), HasSubstr("\"ROW BOX\""));
    EXPECT_THAT(refusal("form = 1\na | b | 3 \"x\" | stay\n"), HasSubstr("a box of the profile or \"stay\""));
    EXPECT_THAT(refusal("form = 1\na | b | list txtPrice | stay\n"), HasSubstr("the text of an option"));
    EXPECT_THAT(refusal("form = 1\na | b | stay | maybe\n"), HasSubstr("not \"maybe\""));
    EXPECT_THAT(refusal("form = 1\na | b | stay | stay\n"), HasSubstr("\"press\" is missing"));
    EXPECT_THAT(refusal("form = 1\npress = z\na | b | stay | stay\n"), HasSubstr("names no field"));
}

class Judgement : public testing::Test {
protected:
    [[nodiscard]] Outcome judged(const std::vector<Wanted>& any_of, std::string_view before,
                                 std::string_view after) const {
        return judge(any_of, before, after, profile);
    }
    const ProfileTexts profile{{"txtPrice", "24.95"}, {"txtFirstName", "Nora"}};
    const Wanted stay{};
    const Wanted price{Wanted::Kind::box, "txtPrice"};
    const Wanted dollars{Wanted::Kind::text, "$24.95"};
    const Wanted checked{Wanted::Kind::checked, ""};
};

TEST_F(Judgement, FieldThatHoldsOneOfTheWantedTextsIsAsWanted) {
    EXPECT_EQ(judged({price}, "", "24.95"), Outcome::as_wanted);
    EXPECT_EQ(judged({price, dollars}, "0", "$24.95"), Outcome::as_wanted);
    EXPECT_EQ(judged({checked}, "", "checked"), Outcome::as_wanted);
    EXPECT_EQ(judged({stay, price}, "", "24.95"), Outcome::as_wanted);
}

TEST_F(Judgement, FieldThatWasToStayAndDidIsLeft) {
    EXPECT_EQ(judged({stay}, "http://", "http://"), Outcome::left);
    EXPECT_EQ(judged({price, stay}, "", ""), Outcome::left);
}

TEST_F(Judgement, AnyOtherTextIsOtherwise) {
    EXPECT_EQ(judged({stay}, "", "24.95"), Outcome::otherwise);
    EXPECT_EQ(judged({price}, "", "Nora"), Outcome::otherwise);
    EXPECT_EQ(judged({stay}, "http://", ""), Outcome::otherwise);
}

TEST_F(Judgement, FieldThatWasToBeFilledAndIsAsItWasIsMissed) {
    EXPECT_EQ(judged({price}, "0.00", "0.00"), Outcome::missed);
    EXPECT_EQ(judged({checked}, "", ""), Outcome::missed);
}

TEST_F(Judgement, FieldsOfOneNameAreToldApartByTheirOrder) {
    const PageData page = parsed("form = 1\npress = u\n"
                                 "u | | 21 txtPrice | stay\n"
                                 "u#2 | | stay | txtFirstName\n");
    const auto results = compare(page.filled(), {{"u", ""}, {"u", ""}}, {{"u", "24.95"}, {"u", "Nora"}},
                                 {{"u", "url"}}, profile);
    ASSERT_THAT(results, SizeIs(2));
    EXPECT_EQ(results[0].table, Outcome::as_wanted);
    EXPECT_EQ(results[0].person, Outcome::otherwise);
    EXPECT_EQ(results[0].by, "url");
    EXPECT_EQ(results[1].table, Outcome::otherwise);
    EXPECT_EQ(results[1].person, Outcome::as_wanted);
    EXPECT_EQ(results[1].by, "");
}

TEST_F(Judgement, PageWithFieldsThatTheDataKnowsNothingOfIsRefused) {
    const PageData page = parsed("form = 1\npress = u\nu | | stay | stay\n");
    EXPECT_THROW(compare(page.filled(), {{"u", ""}, {"v", ""}}, {{"u", ""}, {"v", ""}}, {}, profile),
                 std::runtime_error);
    EXPECT_THROW(compare(page.filled(), {{"v", ""}}, {{"v", ""}}, {}, profile), std::runtime_error);
}

TEST_F(Judgement, PageListsFiguresAndEveryFieldThatIsNotAsWanted) {
    FieldResult wrong;
    wrong.field = "last";
    wrong.label = "Last name";
    wrong.after = "Tide | Sync";
    wrong.by = "name";
    wrong.ruled = "txtProgramName";
    wrong.preferred = "txtLastName";
    wrong.table = Outcome::as_wanted;
    wrong.person = Outcome::otherwise;
    FieldResult missed;
    missed.field = "day";
    missed.preferred = "txtRelDay";
    missed.person = Outcome::missed;
    const std::string text = matching_page({{"one", {wrong, missed}}, {"two", {missed}}});
    EXPECT_THAT(text, HasSubstr("| one | 2 | 1 | 1 | 0 | 0 | 0 | 0 | 1 | 1 |\n"));
    EXPECT_THAT(text, HasSubstr("| **all 2** | 3 | 1 | 2 | 0 | 0 | 0 | 0 | 1 | 2 |\n"));
    EXPECT_THAT(text, HasSubstr("| one | last | Last name | \"Tide \\| Sync\" | \"name\" | txtLastName |\n"));
    EXPECT_THAT(text, HasSubstr("| two | day |  | txtRelDay |\n"));
    EXPECT_THAT(text, HasSubstr("rules say\n\nNone.\n"));
}

// The forms in the tree

constexpr auto folder = KESTRUNE_SOURCE_DIR "/practice/forms";

// The label table as it is told to people, apart from the one that the program uses: row, patterns, box.
struct TableRow {
    std::vector<std::vector<std::string>> alternatives;
    std::string box;
};
const std::vector<TableRow>& table() {
    static const std::vector<TableRow> rows{
        {{{"product", "name"},
          {"program", "title"},
          {"program", "name"},
          {"soft", "name"},
          {"soft", "title"},
          {"prog", "title"}},
         "txtProgramName"},
        {{{"short", "description"}, {"small", "description"}}, "txtShortDesc"},
        {{{"long", "description"}}, "txtLongDesc"},
        {{{"company", "name"}, {"author", "name"}, {"developer"}, {"publisher"}}, "txtCompanyName"},
        {{{"size", "mb"}, {"size", "mbyte"}, {"size", "megabyte"}}, ""},
        {{{"size", "kb"}, {"size", "kbyte"}, {"size", "kilobyte"}}, "txtSizeKbytes"},
        {{{"pad", "url"}}, "txtPADUrl"},
        {{{"size"}}, "txtSizeBytes"},
        {{{"screen"}, {"image", "url"}}, "txtScreenUrl"},
        {{{"home", "page"},
          {"program", "information"},
          {"web", "site"},
          {"registration"},
          {"information", "page"},
          {"info", "page"},
          {"support"},
          {"program", "page"}},
         "txtAppInfoUrl"},
        {{{"download"}, {"program", "url"}, {"download", "url"}}, "txtDownloadUrl"},
        {{{"mail"}, {"email"}, {"e-mail"}}, "txtAuthorEmail"},
        {{{"first", "name"}, {"contact", "name"}, {"author", "name"}}, "txtFirstName"},
        {{{"version"}}, "txtProgramVersion"},
        {{{"requirement"}}, "txtRequirement"},
        {{{"description"}}, "txtLongDesc"},
        {{{"name"}}, "txtProgramName"},
        {{{"keyword"}}, "txtKeywords"},
        {{{"author"}}, "txtCompanyName"},
        {{{"title"}}, "txtProgramName"},
        {{{"url"}}, "txtDownloadUrl"},
        {{{"price"}, {"cost"}}, "txtPrice"},
    };
    return rows;
}

// From 1; 0 for none.
int first_row(const std::string& label) {
    const std::string text = lower_case(label);
    const auto occurs = [&](const std::string& word) { return text.find(word) != std::string::npos; };
    for (std::size_t row = 0; row < table().size(); ++row) {
        for (const auto& words : table()[row].alternatives) {
            if (std::ranges::all_of(words, occurs))
                return static_cast<int>(row) + 1;
        }
    }
    return 0;
}

class PracticeForms : public testing::Test {
protected:
    PracticeForms() {
        ReadProfileXml(practice::read_whole(std::string(folder) + "/profile.xml"), boxes_);
        for (const ProfileField& field : ProfileFields())
            profile[(boxes_.*field.box).Name] = (boxes_.*field.box).Text;
    }

    // The path is that of a page of the folder, or an address on another practice form's.
    static WrittenFields written(const PageData& page, std::string_view document) {
        constexpr std::string_view site = "{{site:";
        std::filesystem::path in = page.folder;
        if (document.starts_with(site)) {
            const auto end = document.find("}}");
            in = std::filesystem::path(folder) / document.substr(site.size(), end - site.size());
            document.remove_prefix(end + 2);
        }
        const auto file = practice::page_file(in, document);
        EXPECT_TRUE(file) << page.name << " has no " << document;
        return WrittenFields(file ? text_of_bytes(practice::read_whole(*file)) : "");
    }

    // Of the form's fields the one that the data speaks of; an empty one when there is none.
    static WrittenField find(const WrittenFields& page, const FormData& form, const FieldData& field) {
        std::size_t ordinal = 0;
        for (const WrittenField& one : page.fields()) {
            if (one.form == form.number && one.name == field.name && ++ordinal == field.ordinal)
                return one;
        }
        return {};
    }

    // Does `check(page, form, field, written)` for every field of the data.
    template <typename Check>
    void for_each_field(const Check& check) const {
        for (const PageData& page : pages) {
            for (const FormData& form : page.forms) {
                const WrittenFields fields = written(page, form.document);
                for (const FieldData& field : form.fields) {
                    SCOPED_TRACE(page.name + "/fields.txt:" + std::to_string(field.line));
                    check(page, form, field, find(fields, form, field));
                }
            }
        }
    }

    [[nodiscard]] std::string first_option(const WrittenField& list, const std::string& box) const {
        const std::string wanted = lower_case(profile.at(box));
        for (const std::string& option : list.options) {
            if (lower_case(option).find(wanted) != std::string::npos)
                return option;
        }
        return "";
    }
    // The option that the rules for lists select; "" for none.
    [[nodiscard]] std::string option_by_rules(const WrittenField& list, const std::string& label) const {
        const std::string text = lower_case(label);
        const auto occurs = [&](std::string_view word) { return text.find(word) != std::string::npos; };
        std::string selected;
        if (occurs("category") || occurs("directory")) {
            selected = first_option(list, "txtL2Keyword");
            if (selected.empty())
                selected = first_option(list, "txtL1Keyword");
        }
        if (occurs("type") || occurs("license") || occurs("licence")) {
            const std::string option = first_option(list, "txtProgramType");
            selected = option.empty() ? selected : option;
        }
        return selected;
    }

    const std::vector<PageData> pages = load_form_data(folder);
    [[nodiscard]] const FrmPreference& boxes() const { return boxes_; }
    ProfileTexts profile;

private:
    MemoryFiles files_;
    MemoryUserInterface ui_;
    FrmPreference boxes_{ui_, files_};
};

TEST_F(PracticeForms, AreServedLikeTheSitesAndLeftOutOfTheTour) {
    EXPECT_GE(pages.size(), 22U);
    const auto sites = practice::load_sites(folder);
    for (const PageData& page : pages) {
        const auto site = std::ranges::find(sites, page.name, &practice::Site::name);
        ASSERT_NE(site, sites.end()) << page.name;
        EXPECT_NE(site->left_out, "") << page.name;
    }
}

TEST_F(PracticeForms, ProfileHasADifferentTextInEachOfTheTwentySevenBoxes) {
    ASSERT_THAT(profile, SizeIs(27));
    std::set<std::string> texts;
    for (const auto& [box, text] : profile) {
        EXPECT_NE(text, "") << box;
        EXPECT_TRUE(texts.insert(text).second) << box << " holds the text of another box";
        EXPECT_EQ(text.find_first_of("|&<\r\n"), std::string::npos) << box;
    }
}

TEST_F(PracticeForms, EveryFieldOfTheDataIsInItsPage) {
    for_each_field(
        [this](const PageData&, const FormData&, const FieldData& field, const WrittenField& written) {
            EXPECT_NE(written.type, "") << "the page has no " << field.title();
            std::vector<Wanted> wanted = field.person;
            wanted.push_back(field.table);
            for (const Wanted& one : wanted) {
                if (one.kind == Wanted::Kind::box) {
                    EXPECT_TRUE(profile.contains(one.text)) << one.text;
                }
                const bool box_to_tick = written.type == "checkbox" || written.type == "radio";
                EXPECT_EQ(one.kind == Wanted::Kind::checked && !box_to_tick, false) << field.title();
                if (written.type == "select" && one.kind == Wanted::Kind::text) {
                    EXPECT_THAT(written.options, testing::Contains(one.text));
                }
            }
        });
}

TEST_F(PracticeForms, EveryFieldOfAPageIsInTheData) {
    for (const PageData& page : pages) {
        std::set<std::string> documents;
        for (const FormData& form : page.forms)
            documents.insert(form.document);
        for (const std::string& document : documents) {
            const WrittenFields fields = written(page, document);
            std::map<std::pair<std::size_t, std::string>, std::size_t> in_page;
            for (const WrittenField& field : fields.fields()) {
                ++in_page[{field.form, field.name}];
                EXPECT_NE(field.form, 0U) << page.name << ": " << field.name << " stands in no form";
                EXPECT_NE(field.name, "") << page.name << ": a field without a name";
            }
            std::map<std::pair<std::size_t, std::string>, std::size_t> in_data;
            for (const FormData& form : page.forms) {
                for (const FieldData& field : form.fields) {
                    if (form.document == document)
                        ++in_data[{form.number, field.name}];
                }
            }
            EXPECT_EQ(in_page, in_data) << page.name << document;
        }
    }
}

TEST_F(PracticeForms, EveryPageWithAFormIsInTheData) {
    for (const PageData& page : pages) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(page.folder)) {
            if (entry.path().extension() != ".html")
                continue;
            const std::string path =
                "/" + std::filesystem::relative(entry.path(), page.folder).generic_string();
            if (written(page, path).forms() == 0)
                continue;
            EXPECT_TRUE(
                std::ranges::any_of(page.forms, [&](const FormData& form) { return form.document == path; }))
                << page.name << path;
        }
    }
}

TEST_F(PracticeForms, RowOfEachFieldIsTheFirstOneThatItsLabelMatches) {
    for_each_field(
        [](const PageData& page, const FormData& form, const FieldData& field, const WrittenField& written) {
            static const std::set<std::string> skipped{"hidden", "password", "checkbox",       "radio",
                                                       "file",   "select",   "select-multiple"};
            const bool typed = !written.locked && !skipped.contains(written.type) && &form == &page.filled();
            const int row = typed ? first_row(field.label) : 0;
            EXPECT_EQ(field.row, row) << field.label;
            const std::string box = row == 0 ? "" : table()[static_cast<std::size_t>(row) - 1].box;
            if (typed) {
                EXPECT_EQ(field.table.text, box) << field.label;
            }
        });
}

TEST_F(PracticeForms, OptionOfEachListIsTheOneThatTheRulesForListsSelect) {
    for_each_field([this](const PageData& page, const FormData& form, const FieldData& field,
                          const WrittenField& written) {
        const bool list = written.type == "select" && &form == &page.filled();
        const std::string option = list ? option_by_rules(written, field.label) : "";
        if (list) {
            EXPECT_EQ(field.table.text, option) << field.label;
        }
        if (!option.empty()) {
            EXPECT_NE(option, written.options.front()) << "it is selected before anything is filled";
        }
    });
}

// A browser that takes edits and shows nothing.
class SilentBrowser final : public Browser {
public:
    void Navigate(std::string_view /*url*/) override {}
    void GoBack() override {}
    void Reload() override {}
    void Stop() override {}
    [[nodiscard]] std::string LocationURL() const override { return {}; }
    std::optional<PageDocument> take_image(const DocumentId& /*document*/, PageParts /*parts*/) override {
        return std::nullopt;
    }
    void apply(const std::vector<PageEdit>& /*edits*/) override {}
};

// The form as an image. A field outside of table rows has the label that a person reads.
PageForm image_of(const FormData& form, const WrittenFields& written) {
    PageForm image;
    std::uint32_t number = 0;
    std::map<std::string, std::size_t> seen;
    for (const WrittenField& field : written.fields()) {
        if (field.form != form.number)
            continue;
        static const std::map<std::string, std::string> types{
            {"select", "select-one"}, {"email", "text"}, {"url", "text"},   {"tel", "text"},
            {"number", "text"},       {"date", "text"},  {"search", "text"}};
        PageElement element;
        element.ref = {"page", ++number};
        const auto type = types.find(field.type);
        element.type = type == types.end() ? field.type : type->second;
        element.name = field.name;
        element.locked = field.locked;
        for (const std::string& option : field.options)
            element.options.push_back({{"page", ++number}, option, option, element.options.empty()});
        const std::size_t ordinal = ++seen[field.name];
        const auto data = std::ranges::find_if(form.fields, [&](const FieldData& one) {
            return one.name == field.name && one.ordinal == ordinal;
        });
        if (data != form.fields.end())
            element.label = data->label;
        image.elements.push_back(std::move(element));
    }
    return image;
}

std::vector<FieldState> states_of(const PageForm& form) {
    std::vector<FieldState> states;
    for (const PageElement& element : form.elements) {
        FieldState state{element.name, element.value};
        for (const PageOption& option : element.options) {
            if (option.selected)
                state.value = option.text;
        }
        states.push_back(std::move(state));
    }
    return states;
}

// The page's source when its scripts have run, as far as these pages need it.
std::string source_of(const WrittenFields& fields) {
    constexpr std::string_view as_written = "<template id=\"publish\">";
    std::string source = fields.html();
    if (const auto at = source.find(as_written); at != std::string::npos)
        source.replace(at, as_written.size(), "<template shadowroot=\"open\">");
    return source;
}

// The rules alone, on the pages as they are written; the real window fills them in tests of its own.
TEST_F(PracticeForms, MatcherGivesEachFieldWhatTheTablesRulesSay) {
    for (const PageData& page : pages) {
        const FormData& form = page.filled();
        const WrittenFields fields = written(page, form.document);
        PageDocument image;
        image.id = "page";
        image.parts = {.links = false, .forms = true, .labels = true};
        image.source = source_of(fields);
        image.forms.resize(form.number);
        image.forms.back() = image_of(form, fields);
        const auto before = states_of(image.forms.back());
        for (const PageElement& element : image.forms.back().elements) {
            if (element.name == form.press)
                image.active_element.ref = element.ref;
        }
        SilentBrowser browser;
        LivePage live{browser, std::move(image)};
        std::map<std::string, std::string> by;
        for (const FieldReport& field : FillAllFields(live, boxes()))
            by.try_emplace(field.name, field.label_from + ": " + field.label + " -> " + field.pattern);
        const auto results =
            compare(form, before, states_of(live.document()->forms.at(form.number - 1)), by, profile);
        for (const FieldResult& field : results) {
            const bool right = field.table == Outcome::as_wanted || field.table == Outcome::left;
            EXPECT_TRUE(right) << page.name << ": " << field.field << " (" << field.label << ") holds \""
                               << field.after << "\", not " << field.ruled << "; " << field.by;
        }
    }
}

} // namespace
} // namespace kestrune::matching
