#include "platform/qt/engine_age.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <array>

namespace kestrune {
namespace {

struct Release {
    int milestone;
    int year;
    int month;
    int day;
};

// A new one appears every four weeks, with a pause at the turn of some years; the ones between are counted
// from the last one here.
constexpr std::array<Release, 9> releases = {{{94, 2021, 9, 21},
                                              {100, 2022, 3, 29},
                                              {108, 2022, 11, 29},
                                              {110, 2023, 2, 7},
                                              {118, 2023, 10, 10},
                                              {122, 2024, 2, 20},
                                              {130, 2024, 10, 15},
                                              {134, 2025, 3, 4},
                                              {140, 2025, 9, 2}}};
constexpr int days_between = 28;
constexpr int worrying_months = 3;

} // namespace

std::optional<QDate> chromium_date(const QString& version) {
    bool number = false;
    const int milestone = version.section(u'.', 0, 0).toInt(&number);
    if (!number || milestone < releases.front().milestone)
        return std::nullopt;
    const auto after = std::find_if(releases.begin(), releases.end(), [milestone](const Release& release) {
        return release.milestone > milestone;
    });
    const Release& before = *std::prev(after);
    return QDate(before.year, before.month, before.day)
        .addDays((milestone - before.milestone) * days_between);
}

QString engine_age_words(const QString& version, QDate today) {
    const QString advice =
        QStringLiteral("Newer fixes come with a newer system: upgrade it. Until then visit only sites that "
                       "you would visit with an "
                       "old browser, and sign in nowhere with a password that you use elsewhere.");
    const std::optional<QDate> date = chromium_date(version);
    if (!date)
        return QStringLiteral("The browser engine's security fixes are several years old. ") + advice;
    const int months = (today.year() - date->year()) * 12 + today.month() - date->month();
    if (months < worrying_months)
        return QStringLiteral(
            "The browser engine's security fixes are up to date or nearly so. Keep your system up to "
            "date, and the engine stays so.");
    return QStringLiteral("The browser engine's security fixes are about %1 months old. ").arg(months) +
           advice;
}

QString sandbox_words(const QByteArray& disabling_variable, const QByteArray& flags,
                      const QStringList& arguments) {
    QString by;
    // As the engine reads it: any value but 0 and none.
    if (!disabling_variable.isEmpty() && disabling_variable != "0")
        by = QStringLiteral("QTWEBENGINE_DISABLE_SANDBOX");
    else if (flags.contains("no-sandbox"))
        by = QStringLiteral("QTWEBENGINE_CHROMIUM_FLAGS");
    else if (arguments.contains(QStringLiteral("--no-sandbox")))
        by = QStringLiteral("--no-sandbox");
    if (by.isEmpty())
        return {};
    return QStringLiteral(
               "The sandbox, which keeps pages away from your files, is switched off from outside (%1). "
               "Start the program without it, as an ordinary user.")
        .arg(by);
}

QString sandbox_words() {
    return sandbox_words(qgetenv("QTWEBENGINE_DISABLE_SANDBOX"), qgetenv("QTWEBENGINE_CHROMIUM_FLAGS"),
                         QCoreApplication::arguments());
}

} // namespace kestrune
