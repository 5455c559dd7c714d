#pragma once

#include "platform/qt/page_bar.h"

#include <QApplication>
#include <QCheckBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kestrune {

// The user in front of the bars above pages: does in each one, once it is there, what the test said
// beforehand. Bars that nobody said anything about are left standing.
class BarUser final : public QObject {
public:
    using Action = std::function<void(PageBar&)>;

    BarUser() {
        qApp->installEventFilter(this);
        // A question that the test does not answer keeps its page, and the test, waiting.
        giving_up_.callOnTimeout([this] {
            std::string left;
            for (QWidget* widget : QApplication::allWidgets()) {
                auto* const frame = qobject_cast<QFrame*>(widget);
                if (frame == nullptr || dynamic_cast<PageBar*>(frame) == nullptr || frame->isHidden())
                    continue;
                left += " " + frame->objectName().toStdString();
                frame->findChildren<QPushButton*>().last()->click();
            }
            if (!left.empty())
                ADD_FAILURE() << "left unanswered:" << left;
        });
        giving_up_.start(std::chrono::seconds(20));
    }

    // What is done in the next bar of this name.
    void expect(std::string name, Action action) {
        expected_.emplace_back(std::move(name), std::move(action));
    }
    void expect_press(std::string name, const std::string& button) {
        expect(std::move(name), [button](PageBar& bar) { press(bar, button); });
    }

    // Names of the bars that came up, in order.
    [[nodiscard]] const std::vector<std::string>& seen() const { return seen_; }
    [[nodiscard]] bool done() const { return expected_.empty(); }

    // Does something in the bar when it has been looked at for a while.
    static void after_a_look(PageBar& bar, const std::function<void()>& act) {
        const QPointer<PageBar> looked_at(&bar);
        bar.set_clock([] { return std::chrono::steady_clock::now() + 2 * PageBar::settling_time; });
        act();
        if (looked_at)
            bar.set_clock(std::chrono::steady_clock::now);
    }
    static void press(PageBar& bar, const std::string& button) {
        after_a_look(bar, [&] { bar.findChild<QPushButton*>(QString::fromStdString(button))->click(); });
    }
    static void type(const PageBar& bar, const std::string& field, const std::string& text) {
        bar.findChild<QLineEdit*>(QString::fromStdString(field))->setText(QString::fromStdString(text));
    }
    static std::string text(const PageBar& bar, const char* label = "Text") {
        return bar.findChild<QLabel*>(QString::fromLatin1(label))->text().toStdString();
    }
    // The bar of this name that can be seen; null when there is none.
    static PageBar* shown(const QWidget& inside, const char* name) {
        for (PageBar* bar : inside.findChildren<PageBar*>(QString::fromLatin1(name))) {
            if (!bar->isHidden())
                return bar;
        }
        return nullptr;
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Show)
            return false;
        // The engine's own objects have no type that dynamic_cast could look at.
        auto* const frame = qobject_cast<QFrame*>(watched);
        auto* const bar = frame == nullptr ? nullptr : dynamic_cast<PageBar*>(frame);
        if (bar == nullptr)
            return false;
        seen_.push_back(bar->objectName().toStdString());
        if (expected_.empty() || expected_.front().first != seen_.back())
            return false;
        Action action = std::move(expected_.front().second);
        expected_.pop_front();
        // Once it has all its parts.
        QMetaObject::invokeMethod(
            bar, [bar, action = std::move(action)] { action(*bar); }, Qt::QueuedConnection);
        return false;
    }

private:
    QTimer giving_up_;
    std::deque<std::pair<std::string, Action>> expected_;
    std::vector<std::string> seen_;
};

} // namespace kestrune
