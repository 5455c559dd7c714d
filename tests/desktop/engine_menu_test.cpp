#include "tests/desktop/engine_fixture.h"

#include "platform/qt/menu_requests.h"

#include <QApplication>
#include <QMenu>
#include <QTest>
#include <QWebEngineView>

#include <string>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

// The user asks for menus on the real engine. Boxes stand at fixed places of 100 by 20 pixels.
class EngineMenu : public EngineTest {
protected:
    EngineMenu() {
        server_.page("/end-of-test", "the end");
        probe_.on_menu = [this](const DocumentId&) { return choose_; };
    }
    ~EngineMenu() override {
        if (QWidget* const menu = QApplication::activePopupWidget())
            menu->close();
    }

    static std::string at(int left, int top, const std::string& tag) {
        return "<div style='position:fixed;left:" + std::to_string(left) + "px;top:" + std::to_string(top) +
               "px;width:100px;height:20px'>" + tag + "</div>";
    }
    static std::string box(int left, int top, const std::string& attributes) {
        return at(left, top,
                  "<input style='display:block;width:100px;height:20px;box-sizing:border-box' " + attributes +
                      ">");
    }
    // A box in which the page writes down what it hears of mouse buttons, keys and menus.
    static std::string listening() {
        return "<script>for (const type of ['mousedown', 'mouseup', 'contextmenu', 'keydown']) "
               "addEventListener(type, e => { if (!(e.clientX > 600)) "
               "document.querySelector('[name=log]').value += type + (e.key ? ' ' + e.key : '') + ';' "
               "}, true)"
               "</script>" +
               box(300, 300, "name=log");
    }

    PageDocument open_page(const std::string& html) {
        // The engine passes no mouse and no key on to a page that it has not drawn yet.
        server_.page("/page",
                     "<!doctype html><body style='margin:0'><form>" + html +
                         "</form><input hidden id=drawn><script>addEventListener('mousedown', e => { if "
                         "(e.clientX > 600) { drawn.value = 'drawn'; e.preventDefault() } }, true)</script>");
        PageDocument page = open(server_.url("/page"));
        EXPECT_TRUE(wait_until([&] {
            QTest::mouseClick(keys(), Qt::LeftButton, {}, drawn_probe);
            return image_of(page).inputs.back().value == "drawn";
        }));
        return page;
    }

    [[nodiscard]] QWidget* keys() const { return browser_->view().focusProxy(); }
    void press_right(int x, int y) { QTest::mouseClick(keys(), Qt::RightButton, {}, QPoint(x, y)); }
    void press_key(Qt::Key key, Qt::KeyboardModifiers held = {}) { QTest::keyClick(keys(), key, held); }

    // The document that the menu was asked for in.
    DocumentId asked() {
        const std::size_t before = seen_;
        EXPECT_TRUE(wait_until([&] { return probe_.menus.size() > before; }));
        seen_ = probe_.menus.size();
        return probe_.menus.empty() ? DocumentId{} : probe_.menus.back();
    }
    std::string focused(const DocumentId& document) {
        const auto image = browser_->take_image(document, {false, true});
        return image ? image->active_element.name : "no image";
    }
    std::string log_of(const PageDocument& page) {
        for (const PageElement& input : image_of(page).inputs) {
            if (input.name == "log")
                return input.value;
        }
        return "no log";
    }
    [[nodiscard]] bool own_menu_shows() {
        return wait_until([] { return qobject_cast<QMenu*>(QApplication::activePopupWidget()) != nullptr; });
    }

    bool choose_ = true;
    static constexpr QPoint drawn_probe{700, 550};

private:
    std::size_t seen_ = 0;
};

TEST_F(EngineMenu, the_field_under_the_mouse_has_the_focus_when_the_menu_is_asked_for) {
    const PageDocument page = open_page(box(0, 0, "name=a autofocus") + box(0, 50, "name=b"));
    std::string focus;
    probe_.on_menu = [&](const DocumentId& document) {
        focus = focused(document);
        return true;
    };
    press_right(50, 60);
    EXPECT_EQ(asked(), page.id);
    EXPECT_EQ(focus, "b");
}

TEST_F(EngineMenu, a_right_click_beside_the_fields_leaves_the_focus_where_it_is) {
    const PageDocument page = open_page(box(0, 0, "name=a") + box(0, 50, "name=b"));
    browser_->apply({{PageEdit::Kind::focus, page.inputs.at(1).ref}});
    press_right(400, 200);
    EXPECT_EQ(focused(asked()), "b");
}

TEST_F(EngineMenu, a_click_that_led_to_a_choice_never_reaches_the_page) {
    const PageDocument page = open_page(box(0, 0, "name=a") + listening());
    press_right(50, 10);
    EXPECT_EQ(asked(), page.id);
    // What comes after it does.
    QTest::mouseClick(keys(), Qt::LeftButton, {}, QPoint(50, 10));
    EXPECT_TRUE(wait_until([&] { return log_of(page) == "mousedown;mouseup;"; })) << log_of(page);
    EXPECT_THAT(probe_.menus, SizeIs(1));
}

TEST_F(EngineMenu, a_dismissed_click_reaches_the_page_once_and_brings_the_browsers_own_menu) {
    choose_ = false;
    const PageDocument page = open_page(box(0, 0, "name=a") + listening());
    press_right(50, 10);
    EXPECT_EQ(asked(), page.id);
    EXPECT_TRUE(own_menu_shows());
    EXPECT_EQ(log_of(page), "mousedown;contextmenu;mouseup;");
    EXPECT_THAT(probe_.menus, SizeIs(1));
}

TEST_F(EngineMenu, a_frame_that_nobody_can_see_is_not_what_the_menu_was_asked_for) {
    server_.page("/over", "<!doctype html><body style='margin:0'>" + box(0, 0, "name=evil"));
    for (const char* hidden : {"opacity:0.01", "filter:opacity(0)"}) {
        for (const char* host : {"127.0.0.1", "127.0.0.2"}) {
            const PageDocument page = open_page(
                box(0, 0, "name=a") + "<div style='" + hidden + "'><iframe src='" +
                server_.url("/over", host) +
                "' style='position:fixed;left:0;top:0;width:200px;height:90px;border:0'></iframe></div>");
            press_right(50, 10);
            EXPECT_TRUE(own_menu_shows()) << "the browser's, as everywhere else";
            if (QWidget* const menu = QApplication::activePopupWidget())
                menu->close();
            browser_->apply({{PageEdit::Kind::focus, page.frames.at(0).inputs.at(0).ref}});
            EXPECT_TRUE(wait_until([&] { return focused(page.frames[0].id) == "evil"; }));
            press_key(Qt::Key_Menu);
            EXPECT_TRUE(own_menu_shows());
            if (QWidget* const menu = QApplication::activePopupWidget())
                menu->close();
            EXPECT_THAT(probe_.menus, ::testing::IsEmpty()) << hidden << " " << host;
        }
    }
}

TEST_F(EngineMenu, a_page_that_forbids_menus_does_not_keep_ours_away) {
    const PageDocument page =
        open_page("<script>oncontextmenu = onmousedown = () => false</script>" + box(0, 0, "name=a"));
    press_right(50, 10);
    EXPECT_EQ(asked(), page.id);
    EXPECT_EQ(focused(page.id), "a");
}

TEST_F(EngineMenu, the_menu_key_and_shift_f10_ask_for_the_menu_at_the_focused_field) {
    const PageDocument page = open_page(box(0, 0, "name=a") + box(40, 100, "name=b") + listening());
    browser_->apply({{PageEdit::Kind::focus, page.inputs.at(1).ref}});
    std::optional<QPoint> place;
    probe_.on_menu = [&](const DocumentId&) {
        place = place_.findChild<MenuRequests*>()->menu_place();
        return true;
    };
    press_key(Qt::Key_Menu);
    EXPECT_EQ(asked(), page.id);
    EXPECT_EQ(place, std::optional(browser_->view().mapToGlobal(QPoint(40, 120))));
    place.reset();
    press_key(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(asked(), page.id);
    EXPECT_EQ(place, std::optional(browser_->view().mapToGlobal(QPoint(40, 120))));
    EXPECT_EQ(focused(page.id), "b");
    EXPECT_EQ(log_of(page), "keydown Shift;") << "the page hears of no key that led to a choice";
}

TEST_F(EngineMenu, a_field_that_the_page_has_put_out_of_sight_has_its_menu_on_the_page) {
    for (const char* moved : {"translate(90000px,90000px)", "translate(-90000px,-90000px)", "scale(1e30)"}) {
        const PageDocument page =
            open_page(at(0, 0, "<input name=a style='position:fixed;transform:" + std::string(moved) + "'>"));
        browser_->apply({{PageEdit::Kind::focus, page.inputs.at(0).ref}});
        std::optional<QPoint> place;
        probe_.on_menu = [&](const auto&) {
            place = place_.findChild<MenuRequests*>()->menu_place();
            return true;
        };
        press_key(Qt::Key_Menu);
        EXPECT_EQ(asked(), page.id);
        ASSERT_TRUE(place.has_value());
        EXPECT_TRUE(browser_->view().rect().contains(browser_->view().mapFromGlobal(*place)))
            << moved << ": " << place->x() << ',' << place->y();
    }
}

TEST_F(EngineMenu, a_key_whose_menu_was_dismissed_brings_the_browsers_own_menu) {
    choose_ = false;
    const PageDocument page = open_page(box(0, 0, "name=a") + listening());
    browser_->apply({{PageEdit::Kind::focus, page.inputs.at(0).ref}});
    keys()->setFocus();
    press_key(Qt::Key_Menu);
    EXPECT_EQ(asked(), page.id);
    EXPECT_TRUE(own_menu_shows());
    EXPECT_EQ(log_of(page), "keydown ContextMenu;contextmenu;");
    EXPECT_THAT(probe_.menus, SizeIs(1));
}

TEST_F(EngineMenu, f10_alone_and_other_keys_are_the_pages) {
    const PageDocument page = open_page(box(0, 0, "name=a") + listening());
    browser_->apply({{PageEdit::Kind::focus, page.inputs.at(0).ref}});
    keys()->setFocus();
    press_key(Qt::Key_F10);
    press_key(Qt::Key_X);
    EXPECT_TRUE(wait_until([&] { return log_of(page) == "keydown F10;keydown x;"; })) << log_of(page);
    EXPECT_THAT(probe_.menus, SizeIs(0));
}

TEST_F(EngineMenu, frames_of_any_origin_are_asked_for_themselves) {
    const std::string inner = "<!doctype html><body style='margin:0'>" + box(20, 30, "name=inner");
    server_.page("/inner", inner);
    server_.page("/outer", "<!doctype html><body style='margin:0'>" +
                               at(10, 10,
                                  "<iframe style='width:300px;height:200px;border:5px solid' src='" +
                                      server_.url("/inner", "127.0.0.7") + "'></iframe>"));
    const PageDocument page = open_page(
        at(0, 0, "<iframe style='border:0;padding:7px;width:200px;height:200px' src=/inner></iframe>") +
        at(250, 0,
           "<iframe style='border:3px solid;width:400px;height:300px' src='" +
               server_.url("/outer", "127.0.0.8") + "'></iframe>"));
    ASSERT_THAT(page.frames, SizeIs(2));
    ASSERT_THAT(page.frames[1].frames, SizeIs(1));
    press_right(7 + 25, 7 + 35);
    EXPECT_EQ(asked(), page.frames[0].id);
    EXPECT_EQ(focused(page.frames[0].id), "inner");
    press_right(250 + 3 + 10 + 5 + 25, 3 + 10 + 5 + 35);
    EXPECT_EQ(asked(), page.frames[1].frames[0].id);
    EXPECT_EQ(focused(page.frames[1].frames[0].id), "inner");
    // By key it is the frame that has the focus now.
    std::optional<QPoint> place;
    probe_.on_menu = [&](const DocumentId&) {
        place = place_.findChild<MenuRequests*>()->menu_place();
        return true;
    };
    press_key(Qt::Key_Menu);
    EXPECT_EQ(asked(), page.frames[1].frames[0].id);
    EXPECT_EQ(place, std::optional(
                         browser_->view().mapToGlobal(QPoint(250 + 3 + 10 + 5 + 20, 3 + 10 + 5 + 30 + 20))));
}

TEST_F(EngineMenu, the_place_within_a_scaled_frame_and_a_zoomed_page_is_found) {
    server_.page("/inner",
                 "<!doctype html><body style='margin:0'>" + box(100, 60, "name=a") + box(100, 80, "name=b"));
    const PageDocument page = open_page(
        at(0, 0,
           "<iframe style='border:0;width:300px;height:200px;transform:scale(0.5);transform-origin:0 "
           "0' src=/inner></iframe>"));
    press_right(75, 45);
    EXPECT_EQ(focused(asked()), "b");
    browser_->view().setZoomFactor(2);
    press_right(150, 70);
    EXPECT_EQ(focused(asked()), "a");
}

TEST_F(EngineMenu, a_label_an_option_and_a_shadow_root_lead_to_their_fields) {
    const PageDocument page = open_page(
        at(0, 0, "<label for=x style='display:block'>Label</label>") + box(0, 30, "id=x name=a") +
        at(0, 60, "<select name=l size=4 style='width:100px;height:80px'><option>1<option>2</select>") +
        at(0, 150, "<div id=host></div>") +
        "<script>host.attachShadow({mode: 'open'}).innerHTML = '<form><input name=deep "
        "style=\"width:100px;height:20px\"></form>'</script>");
    press_right(10, 10);
    EXPECT_EQ(focused(asked()), "a");
    press_right(10, 70);
    EXPECT_EQ(focused(asked()), "l");
    press_right(10, 160);
    EXPECT_EQ(focused(asked()), "deep");
}

TEST_F(EngineMenu, a_field_that_takes_no_focus_takes_it_from_the_others) {
    const PageDocument page = open_page(box(0, 0, "name=a") + box(0, 50, "name=off disabled"));
    browser_->apply({{PageEdit::Kind::focus, page.inputs.at(0).ref}});
    press_right(50, 60);
    EXPECT_EQ(focused(asked()), "") << "the menu is not for another field";
}

TEST_F(EngineMenu, a_second_right_click_while_the_menu_is_open_asks_anew) {
    const PageDocument page = open_page(box(0, 0, "name=a") + box(0, 50, "name=b") + listening());
    probe_.on_menu = [&](const DocumentId&) {
        if (probe_.menus.size() == 1)
            press_right(50, 60);
        return probe_.menus.size() > 1;
    };
    press_right(50, 10);
    EXPECT_TRUE(wait_until([&] { return probe_.menus.size() == 2; }));
    EXPECT_EQ(focused(page.id), "b");
    EXPECT_EQ(log_of(page), "");
}

TEST_F(EngineMenu, a_page_of_the_engines_own_has_the_browsers_own_menu) {
    browser_->Navigate("http://127.0.0.1:1/");
    EXPECT_TRUE(wait_until([this] { return keys() != nullptr && !browser_->view().page()->isLoading(); }));
    EXPECT_TRUE(wait_until([this] {
        if (QApplication::activePopupWidget() != nullptr)
            return true;
        if (!place_.findChild<MenuRequests*>()->busy())
            press_right(50, 60);
        return false;
    }));
    EXPECT_THAT(probe_.menus, SizeIs(0));
}

TEST_F(EngineMenu, a_page_that_hangs_keeps_no_menu_request_for_ever) {
    open_page(box(0, 0, "name=a") +
              "<script>addEventListener('mouseup', e => { if (e.clientX < 600) for (;;); })</script>");
    QTest::mouseClick(keys(), Qt::LeftButton, {}, QPoint(400, 200));
    browser_->set_answer_time(std::chrono::milliseconds(300));
    EXPECT_TRUE(wait_until([&] { return !browser_->take_image(probe_.last().id, everything).has_value(); }));
    press_right(50, 10);
    EXPECT_TRUE(place_.findChild<MenuRequests*>()->busy());
    EXPECT_TRUE(wait_until([this] { return !place_.findChild<MenuRequests*>()->busy(); }));
    EXPECT_THAT(probe_.menus, SizeIs(0));
}

TEST_F(EngineMenu, a_browser_may_end_while_its_menu_is_open) {
    open_page(box(0, 0, "name=a"));
    probe_.on_menu = [this](const DocumentId&) {
        browser_.reset();
        return false;
    };
    press_right(50, 10);
    EXPECT_TRUE(wait_until([this] { return browser_ == nullptr; }));
}

} // namespace
} // namespace kestrune
