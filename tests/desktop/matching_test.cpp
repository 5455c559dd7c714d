#include "tools/matching/fill_form.h"

#include "platform/qt/qt_user_interface.h"
#include "tools/practice/pages.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace kestrune::matching {
namespace {

const std::filesystem::path forms = KESTRUNE_SOURCE_DIR "/practice/forms";

struct Filled {
    PageResult page;
    std::string error; // why it could not be filled
};

// Every practice form, filled once by one right-click in the real window.
const std::vector<Filled>& filled_forms() {
    static const std::vector<Filled> all = [] {
        std::vector<Filled> results;
        const QTemporaryDir folder;
        practice::PracticeServer server(practice::load_sites(forms));
        QtUserInterface ui;
        FormFiller filler(ui, server, folder.path().toStdString(), forms / "profile.xml");
        for (const PageData& page : load_form_data(forms)) {
            try {
                results.push_back({filler.fill(page), ""});
            } catch (const std::exception& error) {
                results.push_back({{page.name, {}}, error.what()});
            }
        }
        return results;
    }();
    return all;
}

std::vector<std::string> form_names() {
    std::vector<std::string> names;
    for (const PageData& page : load_form_data(forms))
        names.push_back(page.name);
    return names;
}

class PracticeForm : public testing::TestWithParam<std::string> {};

TEST_P(PracticeForm, HoldsAfterOneMultiInputWhatTheTablesRulesGiveEachField) {
    const auto found =
        std::ranges::find_if(filled_forms(), [](const Filled& one) { return one.page.name == GetParam(); });
    ASSERT_NE(found, filled_forms().end());
    ASSERT_EQ(found->error, "");
    for (const FieldResult& field : found->page.fields) {
        const bool right = field.table == Outcome::as_wanted || field.table == Outcome::left;
        EXPECT_TRUE(right) << field.field << " (" << field.label << ") holds \"" << field.after << "\", not "
                           << field.ruled << (field.by.empty() ? "" : "; decided by ") << field.by;
    }
}

INSTANTIATE_TEST_SUITE_P(Each, PracticeForm, testing::ValuesIn(form_names()), [](const auto& param) {
    std::string name = param.param;
    std::ranges::replace(name, '-', '_');
    return name;
});

TEST(MatchingFigure, InTheDocumentsIsTheOneThatTheFormsGive) {
    std::vector<PageResult> pages;
    for (const Filled& one : filled_forms())
        pages.push_back(one.page);
    EXPECT_EQ(practice::read_whole(KESTRUNE_SOURCE_DIR "/docs/matching.md"), matching_page(pages))
        << "build/release/kestrune-matching writes it anew";
}

} // namespace
} // namespace kestrune::matching
