#include "platform/qt/qt_desktop.h"
#include "tools/matching/fill_form.h"

#include <QTemporaryDir>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace kestrune::matching;

constexpr std::string_view help =
    R"(Usage: kestrune-matching [OUTPUT]

Fills the practice forms (practice/forms) with one right-click each, in the program's real window, and
writes the matching figure to OUTPUT (docs/matching.md of the source tree without it). Needs a display, a
virtual one will do, or QT_QPA_PLATFORM=offscreen. Exits with 1 when a field is not as the data beside its
form says.
)";

int fill_all(kestrune::UserInterface& ui, const fs::path& output) {
    const fs::path forms = KESTRUNE_PRACTICE_FORMS;
    kestrune::practice::PracticeServer server(kestrune::practice::load_sites(forms));
    const QTemporaryDir folder;
    if (!folder.isValid())
        throw std::runtime_error("cannot make a temporary program folder");

    FormFiller filler(ui, server, folder.path().toStdString(), forms / "profile.xml");
    std::vector<PageResult> results;
    for (const PageData& page : load_form_data(forms)) {
        results.push_back(filler.fill(page));
        const Counts counts = count({results.back()}, &FieldResult::table);
        std::cout << page.name << ": " << counts.all() << " fields, " << counts.otherwise + counts.missed
                  << " not as the rules say" << std::endl;
    }
    std::ofstream(output, std::ios::binary) << matching_page(results);
    const Counts counts = count(results, &FieldResult::table);
    std::cout << results.size() << " forms, " << counts.all() << " fields, "
              << counts.otherwise + counts.missed << " not as the rules say; " << output.string() << '\n';
    return counts.otherwise + counts.missed == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]).starts_with("-")) {
            std::cout << help;
            return std::string_view(argv[i]) == "--help" ? 0 : 2;
        }
    }
    const fs::path output = argc > 1 ? fs::path(argv[1]) : fs::path(KESTRUNE_MATCHING_PAGE);
    kestrune::QtDesktop desktop(argc, argv);
    try {
        return fill_all(desktop.user_interface(), output);
    } catch (const std::exception& error) {
        std::cerr << "kestrune-matching: " << error.what() << '\n';
        return 1;
    }
}
