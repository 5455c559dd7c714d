#include "tests/desktop/comforts_fixture.h"

#include <QWebEnginePage>
#include <QWebEngineView>

namespace kestrune {
namespace {

using ::testing::SizeIs;

class HostileWorld : public ComfortsTest {};

TEST_F(HostileWorld, overwritten_prototypes_neither_hear_of_us_nor_mislead_us) {
    const PageDocument page = open_page(
        "<input><script>const heard = new Set(); let ready = false;"
        "const spy = (object, name) => { const was = object[name]; object[name] = function (...args) { "
        "if (ready) heard.add(name); return was.apply(this, args) } };"
        "for (const name of ['map', 'push', 'slice', 'filter', 'flatMap', 'join', 'concat']) "
        "spy(Array.prototype, name);"
        "for (const name of ['stringify', 'parse']) spy(JSON, name);"
        "for (const name of ['submit', 'requestSubmit']) spy(HTMLFormElement.prototype, name);"
        "spy(window, 'postMessage'); spy(MessagePort.prototype, 'postMessage');"
        "spy(Element.prototype, 'getAttribute'); spy(Document.prototype, 'getElementsByTagName');"
        "spy(EventTarget.prototype, 'dispatchEvent'); spy(HTMLElement.prototype, 'click');"
        "for (const name of ['elements', 'action', 'id']) Object.defineProperty(HTMLFormElement.prototype, "
        "name, "
        "{get() { if (ready) heard.add(name); return 'evil' }, set() {}});"
        "Object.defineProperty(HTMLInputElement.prototype, 'value', {get() { if (ready) heard.add('value'); "
        "return 'evil' }, set(v) { if (ready) heard.add('value'); }});"
        "Object.defineProperty(Document.prototype, 'forms', {get() { if (ready) heard.add('forms'); return "
        "[] }});"
        "onload = () => { ready = true }</script>"
        "<form id=real action=/real><input name=field value=kept></form><a href=/x>link</a>");
    const PageDocument image = image_of(page);
    ASSERT_THAT(image.forms, SizeIs(1));
    EXPECT_EQ(image.forms[0].id, "real");
    EXPECT_EQ(image.forms[0].action, "/real");
    ASSERT_THAT(image.forms[0].elements, SizeIs(1));
    EXPECT_EQ(image.forms[0].elements[0].value, "kept");
    browser_->apply({{PageEdit::Kind::value, image.forms[0].elements[0].ref, "written"}});
    EXPECT_EQ(image_of(page).forms.at(0).elements.at(0).value, "written");
    // What the page heard it says by an attribute, which it did not touch.
    std::string heard = "nothing came";
    browser_->view().page()->runJavaScript(
        "Array.from(heard).sort().toString()",
        [&](const QVariant& answer) { heard = answer.toString().toStdString(); });
    EXPECT_TRUE(wait_until([&] { return heard != "nothing came"; }));
    EXPECT_EQ(heard, "");
}

TEST_F(HostileWorld, a_flood_of_requests_for_the_window_is_survived) {
    open_page("<a href=/x>x</a><script>onload = () => { for (let i = 0; i < 50; ++i) { alert(i); print(); "
              "const a = document.createElement('a'); a.href = 'mailto:x' + i; a.click() } }</script>");
    let_everything_happen();
    std::vector<std::string> shown;
    for (const QFrame* frame : place_.findChildren<QFrame*>()) {
        // findChildren finds every frame, labels too: bars have no meta-object of their own.
        if (dynamic_cast<const PageBar*>(frame) != nullptr && !frame->isHidden())
            shown.push_back(frame->objectName().toStdString());
    }
    EXPECT_THAT(shown, SizeIs(::testing::Le(5U)));
}

} // namespace
} // namespace kestrune
