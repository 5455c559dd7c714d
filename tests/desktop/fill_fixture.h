#pragma once

#include "tests/desktop/menu_user.h"
#include "tests/desktop/program_fixture.h"
#include "tests/desktop/wait_until.h"

#include <QMenu>
#include <QWebEngineView>

#include <optional>
#include <string>

namespace kestrune {

// The whole program on a page with a submission form, filled by the right-click menu. In the profile every
// text says which box it is from.
class FillProgramTest : public ProgramTest {
protected:
    void open_form(const std::string& body) {
        server().page("/form", "<!doctype html><meta charset=utf-8>" + body);
        if (!started_) {
            start();
            started_ = true;
            for (const ProfileField& field : ProfileFields())
                (window().frmPreference().*field.box).Text = (window().frmPreference().*field.box).Name;
        }
        open_address(url("/form"));
        wait_for_drawing();
    }

    // The engine passes no mouse and no key on to a page that it has not drawn yet.
    void wait_for_drawing() {
        run("window.drawn = false; addEventListener('mousedown', e => { if (!drawn) { drawn = true; "
            "e.preventDefault() } }, true)");
        wait_for_page("the page to be drawn", [this] {
            QTest::mouseClick(view().focusProxy(), Qt::LeftButton, {},
                              view().rect().bottomRight() - QPoint(30, 30));
            return run("drawn").toBool();
        });
    }

    [[nodiscard]] static QWebEngineView& view(const QWidget& in) { return *in.findChild<QWebEngineView*>(); }
    [[nodiscard]] QWebEngineView& view() { return view(user().window()); }

    // What page code of the top document gives.
    QVariant run(const QString& code) {
        const auto answer = std::make_shared<std::optional<QVariant>>();
        view().page()->runJavaScript(code, [answer](const QVariant& value) { *answer = value; });
        EXPECT_TRUE(wait_until([&] { return answer->has_value(); })) << "the page did not answer";
        return answer->value_or(QVariant());
    }
    // Waits for something that is asked of the page.
    void wait_for_page(std::string_view what, const std::function<bool()>& condition) {
        user().check();
        ASSERT_TRUE(wait_until(condition)) << "waited in vain for " << what;
        user().check();
    }
    std::string value_of(const std::string& name) {
        return run(QStringLiteral("(e => e.type === 'select-one' ? e.options[e.selectedIndex].text : e.value)"
                                  "(document.querySelector('[name=\"%1\"]'))")
                       .arg(QString::fromStdString(name)))
            .toString()
            .toStdString();
    }

    // In the view, in the middle of what the selector finds.
    QPoint place_of(const std::string& selector) {
        const QVariantList middle =
            run(QStringLiteral("(r => [r.left + r.width / 2, r.top + r.height / 2])"
                               "(document.querySelector('%1').getBoundingClientRect())")
                    .arg(QString::fromStdString(selector)))
                .toList();
        return middle.size() == 2 ? QPoint(middle[0].toInt(), middle[1].toInt()) : QPoint();
    }
    QPoint place_of_field(const std::string& name) { return place_of("[name=\"" + name + "\"]"); }
    void press_left(QPoint place) { QTest::mouseClick(view().focusProxy(), Qt::LeftButton, {}, place); }
    void press_right(QPoint place) { QTest::mouseClick(view().focusProxy(), Qt::RightButton, {}, place); }

    // Right-clicks there and does this in the menu.
    void use_menu(QPoint place, testing_desktop::MenuUser::Action action) {
        menus_.expect("mnuRightClickMenu", std::move(action));
        press_right(place);
        wait_for_menu();
    }
    void wait_for_menu() {
        wait("the menu to be used", [this] { return menus_.done(); });
    }
    // Chooses the entry of the menu with the mouse.
    void choose(QPoint place, const std::string& entry) {
        use_menu(place, [entry](QMenu& menu) { click_entry(menu, entry); });
    }
    void choose(const std::string& field, const std::string& entry) { choose(place_of_field(field), entry); }

    static void click_entry(QMenu& menu, const std::string& entry) {
        if (entry == "mnuAll") {
            click(menu, entry);
            return;
        }
        click(menu, "mnuProduct");
        QMenu* const product = action_of(menu, "mnuProduct").menu();
        EXPECT_TRUE(wait_until([product] { return product->isVisible(); }));
        click(*product, entry);
    }
    static QAction& action_of(QMenu& menu, const std::string& name) {
        for (QAction* action : menu.actions()) {
            if (action->objectName().toStdString() == name)
                return *action;
        }
        throw drive::DriveError("the menu has no " + name);
    }
    static void click(QMenu& menu, const std::string& name) {
        const QPoint middle = menu.actionGeometry(&action_of(menu, name)).center();
        QTest::mouseMove(&menu, middle);
        QTest::mouseClick(&menu, Qt::LeftButton, {}, middle);
    }

    [[nodiscard]] static QMenu* open_menu() {
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }

    void TearDown() override {
        if (QWidget* const menu = QApplication::activePopupWidget())
            menu->close();
    }

    testing_desktop::MenuUser menus_;

private:
    bool started_ = false;
};

} // namespace kestrune
