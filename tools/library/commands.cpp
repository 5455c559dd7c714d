#include "tools/library/commands.h"

#include "library/library_backup.h"
#include "library/referral_ranking.h"
#include "library/site_library.h"
#include "platform/disk/disk_files.h"
#include "platform/jet/jet_conversion.h"
#include "platform/sqlite/site_merge.h"
#include "platform/sqlite/sqlite_database.h"
#include "platform/sqlite/table_file.h"
#include "tools/library/arguments.h"
#include "tools/library/library_check.h"
#include "tools/library/library_file.h"
#include "tools/library/site_export.h"
#include "tools/library/site_import.h"
#include "tools/library/statistics.h"
#include "tools/library/submission_report.h"

#include <algorithm>
#include <chrono>
#include <ostream>
#include <string_view>
#include <utility>

namespace kestrune {
namespace {

// "1 site", "2 sites".
std::string counted(std::int64_t number, std::string_view noun) {
    return std::to_string(number).append(" ").append(noun).append(number == 1 ? "" : "s");
}

class Tool {
public:
    Tool(LibraryArguments arguments, const ToolSurroundings& here)
        : arguments_(std::move(arguments)), here_(here),
          folder_(arguments_.folder.empty() ? here.program_folder : arguments_.folder) {}

    ToolExit run() {
        const std::vector<std::pair<std::string_view, ToolExit (Tool::*)()>> commands{
            {"import", &Tool::import_}, {"export", &Tool::export_},        {"check", &Tool::check},
            {"report", &Tool::report},  {"statistics", &Tool::statistics}, {"rank", &Tool::rank},
            {"merge", &Tool::merge},    {"convert", &Tool::convert}};
        for (const auto& [name, command] : commands) {
            if (name == arguments_.command)
                return (this->*command)();
        }
        return ToolExit::WrongUsage;
    }

private:
    std::string read(const std::string& path) const {
        auto bytes = files_.read(path);
        if (!bytes)
            throw LibraryError("cannot read " + path);
        return std::move(*bytes);
    }
    // To the file asked for, or to the terminal.
    ToolExit write(const std::string& text) {
        if (!arguments_.operand || *arguments_.operand == "-") {
            here_.out << text;
            here_.out.flush();
            return here_.out.good() ? ToolExit::Done : ToolExit::NotDone;
        }
        if (!files_.write(*arguments_.operand, text))
            throw LibraryError("cannot write " + *arguments_.operand);
        return ToolExit::Done;
    }
    void list(std::string_view heading, const std::vector<std::string>& lines) {
        if (lines.empty())
            return;
        here_.out << heading << " (" << lines.size() << "):\n";
        for (const std::string& line : lines)
            here_.out << "  " << line << '\n';
    }
    [[nodiscard]] std::string_view would() const { return arguments_.dry_run ? "would be " : ""; }

    ToolExit import_() {
        LibraryFile library{folder_};
        ImportOptions options;
        options.duplicates = arguments_.update ? Duplicates::Update : Duplicates::Skip;
        options.dry_run = arguments_.dry_run;
        const ImportReport report = import_sites(library, read(*arguments_.operand), options);
        list("columns that the library does not have, passed over", report.ignored_columns);
        list("addresses that are there already", report.duplicates);
        list("lines refused", report.refused);
        here_.out << counted(report.added, "site") << ' ' << would() << "added, " << report.updated << ' '
                  << would() << "updated, "
                  << static_cast<std::int64_t>(report.duplicates.size()) - report.updated << " left alone, "
                  << counted(static_cast<std::int64_t>(report.refused.size()), "line") << " refused\n";
        return report.refused.empty() ? ToolExit::Done : ToolExit::LookAtIt;
    }

    ToolExit export_() { return write(export_sites(LibraryFile{folder_})); }

    ToolExit check() {
        const std::vector<std::string> problems = check_library(LibraryFile{folder_});
        list("problems", problems);
        if (problems.empty())
            here_.out << "no problems\n";
        return problems.empty() ? ToolExit::Done : ToolExit::LookAtIt;
    }

    ToolExit statistics() {
        here_.out << statistics_text(library_statistics(LibraryFile{folder_}));
        return ToolExit::Done;
    }

    ToolExit report() { return write(submission_report(LibraryFile{folder_}, here_.date)); }

    ToolExit rank() {
        const std::int64_t all = LibraryFile{folder_}.size();
        need_database_file(files_.path(folder_, referral_database_name), "database of hits");
        SqliteDatabase database;
        back_up(database);
        const ReferralRanking ranking{database, files_, folder_};
        const RankingSummary summary = ranking.RecomputeReferralRanks([&](std::int64_t rewritten) {
            progress(rewritten, all);
            return !here_.cancelled || !here_.cancelled();
        });
        end_progress();
        here_.out << summary.rewritten << " of " << counted(all, "site") << " ranked, " << summary.with_hits
                  << " of them with hits\n";
        if (summary.end == RankingSummary::End::Cancelled)
            here_.err << "ended by you; the other sites keep the rank that they had\n";
        if (summary.end == RankingSummary::End::Failed)
            here_.err << "ended early: " << summary.failure
                      << (summary.failed_at.empty() ? "" : "\n  at " + summary.failed_at) << '\n';
        return summary.end == RankingSummary::End::Finished ? ToolExit::Done : ToolExit::LookAtIt;
    }

    ToolExit merge() {
        const LibraryFile library{folder_}; // says in plain words when there is none
        need_database_file(*arguments_.operand, "file");
        const std::string own = files_.path(folder_, site_library_name);
        const bool dry = arguments_.dry_run;
        // Before the copy: a file that turns out to be no library must not cost the last copy.
        auto added = merge_site_libraries(*arguments_.operand, own, MergeMode::DryRun);
        if (!dry) {
            SqliteDatabase database;
            back_up(database);
            added = merge_site_libraries(*arguments_.operand, own, MergeMode::Store);
        }
        std::vector<std::string> lines;
        for (const MergedSite& site : added)
            lines.push_back(site.description + "  " + site.url);
        list(dry ? "sites that would be added" : "sites added", lines);
        here_.out << counted(static_cast<std::int64_t>(added.size()), "site") << ' ' << would() << "added\n";
        return ToolExit::Done;
    }

    ToolExit convert() {
        const std::vector<JetFile> files = jet_files_in(folder_);
        JetConversions conversions{files, create_table_file};
        const auto outcomes = conversions.finish([this](JetProgress rows) {
            progress(rows.done, rows.total);
            return !here_.cancelled || !here_.cancelled();
        });
        end_progress();
        ToolExit exit = ToolExit::Done;
        for (std::size_t i = 0; i < files.size(); ++i) {
            const bool missing = !files_.file_exists(files[i].path);
            const bool done = outcomes[i] == JetOutcome::Converted || outcomes[i] == JetOutcome::NotJet;
            here_.out << files[i].path << ": " << (missing ? "no such file" : describe(outcomes[i]))
                      << (done ? "" : ", left as it is") << '\n';
            if (!done)
                exit = ToolExit::NotDone;
        }
        return exit;
    }

    void back_up(Database& database) {
        if (!LibraryBackup{database, files_, folder_}.BackUp(site_library_name))
            throw LibraryError(
                "the library could not be copied to the folder \"backup\", so nothing was changed");
    }

    void progress(std::int64_t done, std::int64_t all) {
        using Clock = std::chrono::steady_clock;
        constexpr std::chrono::milliseconds between{100};
        if (!here_.show_progress || Clock::now() - shown_ < between)
            return;
        shown_ = Clock::now();
        here_.err << '\r' << done << " of " << all << std::flush;
        progress_shown_ = true;
    }
    void end_progress() {
        if (std::exchange(progress_shown_, false))
            here_.err << "\r\x1b[K" << std::flush;
    }

    LibraryArguments arguments_;
    const ToolSurroundings& here_;
    std::string folder_;
    DiskFiles files_;
    std::chrono::steady_clock::time_point shown_;
    bool progress_shown_ = false;
};

} // namespace

ToolExit run_library_tool(const std::vector<std::string>& arguments, const ToolSurroundings& here) {
    LibraryArguments read;
    if (const auto wrong = read_arguments(arguments, read)) {
        here.err << "kestrune-library: " << wrong->why << "\n\"kestrune-library --help\" says more\n";
        return ToolExit::WrongUsage;
    }
    if (read.help) {
        here.out << library_tool_help();
        return ToolExit::Done;
    }
    try {
        return Tool{std::move(read), here}.run();
    } catch (const std::exception& error) {
        here.err << "kestrune-library: " << error.what() << '\n';
        return ToolExit::NotDone;
    }
}

} // namespace kestrune
