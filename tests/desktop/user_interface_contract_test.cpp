#include "platform/memory/memory_ui.h"
#include "platform/qt/qt_user_interface.h"
#include "tests/desktop/dialog_user.h"
#include "tests/desktop/window_fixture.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLineEdit>
#include <QRadioButton>

#include <memory>
#include <string>
#include <vector>

namespace kestrune {
namespace {

using testing_desktop::DialogUser;
using testing_desktop::NoEvents;
using testing_desktop::wait_until;

// A user interface with a user in front of it who does what the test says beforehand.
class Desk {
public:
    Desk() = default;
    virtual ~Desk() = default;
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;
    Desk(Desk&&) = delete;
    Desk& operator=(Desk&&) = delete;

    virtual UserInterface& ui() = 0;
    virtual void answer(std::string text, Answer answer, std::function<void()> meanwhile) = 0;
    // Types into the box and selects the option, then presses the button, in the next dialog of that name.
    virtual void fill(std::string form, std::string box, std::string text, std::string options, int option,
                      std::string button) = 0;
    // Lets everything run that was put off.
    virtual bool run_until(const std::function<bool()>& condition) = 0;
    virtual bool as_expected() = 0;
};

class MemoryDesk final : public Desk {
public:
    UserInterface& ui() override { return ui_; }
    void answer(std::string text, Answer answer, std::function<void()> meanwhile) override {
        ui_.expect_box(std::move(text), answer, std::move(meanwhile));
    }
    void fill(std::string form, std::string box, std::string text, std::string options, int option,
              std::string button) override {
        ui_.expect_form(std::move(form), [=](Form& shown) {
            EXPECT_TRUE(type_into(shown, box, text));
            EXPECT_TRUE(choose_option(shown, options, option));
            EXPECT_TRUE(press_button(shown, button));
        });
    }
    bool run_until(const std::function<bool()>& condition) override {
        ui_.run_later();
        return condition();
    }
    bool as_expected() override { return ui_.failures.empty() && ui_.script_done(); }

private:
    MemoryUserInterface ui_;
};

const char* button_of(Answer answer) {
    switch (answer) {
    case Answer::Ok:
        return "OK";
    case Answer::Cancel:
        return "Cancel";
    case Answer::Yes:
        return "Yes";
    case Answer::No:
        break;
    }
    return "No";
}

class QtDesk final : public Desk {
public:
    UserInterface& ui() override { return ui_; }
    void answer(std::string text, Answer answer, std::function<void()> meanwhile) override {
        user_.expect("MessageBox", [=](QDialog& box) {
            EXPECT_EQ(box.accessibleDescription().toStdString(), text);
            if (meanwhile)
                meanwhile();
            box.findChild<QAbstractButton*>(button_of(answer))->click();
        });
    }
    void fill(std::string form, std::string box, std::string text, std::string options, int option,
              std::string button) override {
        user_.expect(std::move(form), [=](QDialog& dialog) {
            auto* const line = dialog.findChild<QLineEdit*>(QString::fromStdString(box));
            line->selectAll();
            line->insert(QString::fromStdString(text));
            dialog.findChild<QRadioButton*>(QString::fromStdString(options) + QString("(%1)").arg(option))
                ->click();
            dialog.findChild<QAbstractButton*>(QString::fromStdString(button))->click();
        });
    }
    bool run_until(const std::function<bool()>& condition) override { return wait_until(condition); }
    bool as_expected() override { return user_.done(); }

private:
    QtUserInterface ui_;
    DialogUser user_;
};

template <typename Implementation>
class UserInterfaceContract : public testing::Test {
protected:
    void TearDown() override { EXPECT_TRUE(desk_.as_expected()); }
    Desk& desk() { return desk_; }
    UserInterface& ui() { return desk_.ui(); }

private:
    Implementation desk_;
};

using Implementations = testing::Types<MemoryDesk, QtDesk>;
TYPED_TEST_SUITE(UserInterfaceContract, Implementations, );

TYPED_TEST(UserInterfaceContract, BoxReturnsTheButtonThatWasPressed) {
    const std::vector<std::pair<Buttons, Answer>> cases{{Buttons::YesNo, Answer::Yes},
                                                        {Buttons::YesNo, Answer::No},
                                                        {Buttons::OkCancel, Answer::Ok},
                                                        {Buttons::OkCancel, Answer::Cancel},
                                                        {Buttons::Ok, Answer::Ok}};
    for (const auto& [buttons, answer] : cases) {
        this->desk().answer("Sure?", answer, {});
        EXPECT_EQ(this->ui().MessageBox("Sure?", buttons), answer);
    }
}

TYPED_TEST(UserInterfaceContract, BoxMayBeAskedWhileAnotherIsOpen) {
    Answer inner = Answer::Ok;
    this->desk().answer("outer", Answer::Yes,
                        [&] { inner = this->ui().MessageBox("inner", Buttons::YesNo); });
    this->desk().answer("inner", Answer::No, {});
    EXPECT_EQ(this->ui().MessageBox("outer", Buttons::YesNo), Answer::Yes);
    EXPECT_EQ(inner, Answer::No);
}

TYPED_TEST(UserInterfaceContract, DialogReturnsHiddenWithWhatTheUserLeftInIt) {
    Form form("frmNote", "Mark Submit Status");
    TextBox note("txtNote");
    OptionGroup status("optSubmit", {"one", "two", "three"});
    Button save("cmdSave", "Save");
    note.Text = "before";
    status.Selected = 0;
    form.Rows = {{"Note:", &note}, {"", &status}};
    form.Buttons = {&save};
    bool shown_at_save = false;
    save.Click = [&] {
        shown_at_save = form.Visible.get();
        form.Hide();
    };
    this->desk().fill("frmNote", "txtNote", "after", "optSubmit", 2, "cmdSave");
    this->ui().ShowModal(form);
    EXPECT_TRUE(shown_at_save);
    EXPECT_FALSE(form.Visible.get());
    EXPECT_EQ(note.Text.get(), "after");
    EXPECT_EQ(status.Selected.get(), 2);
}

TYPED_TEST(UserInterfaceContract, CallsPutOffRunLaterInTheirOrder) {
    std::vector<int> order;
    this->ui().call_later([&] {
        order.push_back(1);
        this->ui().call_later([&] { order.push_back(3); });
    });
    this->ui().call_later([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(this->desk().run_until([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TYPED_TEST(UserInterfaceContract, CallsPutOffWaitWhileAQuestionIsOpen) {
    bool called = false;
    bool called_during_question = true;
    this->desk().answer("Sure?", Answer::Yes, [&] {
        this->ui().call_later([&] { called = true; });
        this->ui().DoEvents();
        called_during_question = called;
    });
    this->ui().MessageBox("Sure?", Buttons::YesNo);
    EXPECT_FALSE(called_during_question);
    EXPECT_FALSE(called);
    EXPECT_TRUE(this->desk().run_until([&] { return called; }));
}

TYPED_TEST(UserInterfaceContract, OpenedWindowIsHiddenAndLaidOutOnce) {
    WindowControls controls;
    NoEvents events;
    int layouts = 0;
    controls.form.Resize = [&layouts] { ++layouts; };
    const auto browser = this->ui().open_window(controls.form, events);
    ASSERT_NE(browser, nullptr);
    EXPECT_FALSE(controls.form.Visible.get());
    EXPECT_EQ(layouts, 1);
    EXPECT_EQ(browser->LocationURL(), "about:blank");
}

TYPED_TEST(UserInterfaceContract, ScreenHasASizeInTwips) {
    EXPECT_GE(this->ui().screen().Width, 640 * 15);
    EXPECT_GE(this->ui().screen().Height, 480 * 15);
}

TYPED_TEST(UserInterfaceContract, EngineVersionIsNotEmpty) {
    EXPECT_FALSE(this->ui().engine_version().empty());
}

// A wait of somebody else's, such as for a page's answer, is a handler on the stack just as a question is.
TEST(QtUserInterface, CallsPutOffWaitForAForeignEventLoopToEnd) {
    QtUserInterface ui;
    bool called = false;
    bool called_within = true;
    QEventLoop outer;
    QMetaObject::invokeMethod(
        &outer,
        [&] {
            QEventLoop inner;
            ui.call_later([&] {
                called = true;
                outer.quit();
            });
            QMetaObject::invokeMethod(
                &inner,
                [&] {
                    called_within = called;
                    inner.quit();
                },
                Qt::QueuedConnection);
            inner.exec();
        },
        Qt::QueuedConnection);
    outer.exec();
    EXPECT_FALSE(called_within);
    EXPECT_TRUE(called);
}

} // namespace
} // namespace kestrune
