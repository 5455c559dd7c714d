#pragma once

#include "platform/qt/child_of.h"
#include "platform/qt/page_bars.h"
#include "tests/desktop/bar_user.h"
#include "tests/desktop/wait_until.h"

#include <QTest>
#include <QVBoxLayout>

#include <gmock/gmock.h>

namespace kestrune {

// Bars above a page that is an input box, in a time of the test's own.
class BarsFixture : public ::testing::Test {
protected:
    BarsFixture() {
        auto& column = child_of<QVBoxLayout>(place_);
        column.setContentsMargins(0, 0, 0, 0);
        column.setSpacing(0);
        column.addWidget(&bars_);
        column.addWidget(&page_, 1);
        page_.setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        page_.setMinimumHeight(0);
        bars_.set_clock([this] { return now_; });
        place_.resize(800, 600);
        place_.show();
        place_.activateWindow();
        EXPECT_TRUE(wait_until([&] { return place_.isActiveWindow(); }));
        page_.setFocus();
    }

    PageBar& ask(const QString& name, const QString& text = QStringLiteral("text")) {
        PageBar& bar = bars_.add(name);
        bar.set_heading(name);
        bar.set_text(text);
        bar.add_button(QStringLiteral("Yes"), [this, name] { pressed_.push_back(name.toStdString()); });
        bar.add_button(QStringLiteral("No"), [this] { pressed_.emplace_back("No"); });
        return bar;
    }
    static QPushButton& button(const PageBar& bar, const char* caption = "Yes") {
        return *bar.findChild<QPushButton*>(QString::fromLatin1(caption));
    }
    // All of it can be seen.
    static bool whole(const QWidget& widget) {
        return widget.height() >= widget.minimumHeight() &&
               widget.visibleRegion().boundingRect() == widget.rect();
    }
    void look_on() { now_ += PageBar::settling_time; }
    // Layouts and movements come by posted events.
    static void settle() {
        for (int i = 0; i < 10; ++i)
            QCoreApplication::sendPostedEvents();
    }

    std::chrono::steady_clock::time_point now_ = std::chrono::steady_clock::now();
    QWidget place_;
    QLineEdit page_{&place_};
    PageBars& bars_ = child_of<PageBars>(place_);
    std::vector<std::string> pressed_;
};

} // namespace kestrune
