#include "tests/desktop/bar_user.h"
#include "tests/desktop/comforts_fixture.h"
#include "tests/desktop/program_fixture.h"

#include <QWebEnginePage>
#include <QWebEngineView>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

// Pages that mean harm, in the whole program with a record of them: what was recorded must not come out.
class HostilePages : public ProgramTest {
protected:
    static constexpr const char* secret = "recorded-value";

    void record(const std::string& path, const std::string& action) {
        RecordSession record;
        record.Session = "A record";
        record.Type = "Form";
        record.Url = url(path);
        record.Action = action;
        record.Postdata = std::string("name=") + secret;
        program().record_files().prepare();
        program().record_files().write(record);
    }
    // Opens the page for playback and agrees to the filling once `meanwhile` has come about.
    void fill(const std::string& path, const std::function<bool()>& meanwhile) {
        user().answer_with([&, meanwhile](QDialog& box) {
            questions_.push_back(drive::Driver::text(box, "Text"));
            wait("what the page does meanwhile", meanwhile);
            user().answer(box, questions_.back() == "Do you want to auto fill-in this form" ? "OK" : "No");
        });
        window().OpenSiteForPlayback(url(path), "A site");
        wait("the question", [this] { return !questions_.empty() && !window().busy(); });
    }
    // Everything under way has had its chance.
    void let_everything_happen() {
        server().page("/end-of-test", "the end");
        open_address(url("/end-of-test"));
    }
    [[nodiscard]] std::string everything_sent() {
        std::string all;
        for (const SiteServer::Request& request : server().requests())
            all += request.method + " " + request.target + " " + request.body + "\n";
        return all;
    }

    std::vector<std::string> questions_;
    // Reports what is written into any field.
    const std::string spy_ =
        "<script>addEventListener('input', e => fetch('/leak?' + e.target.value), true)</script>";
};

TEST_F(HostilePages, AnHonestPageIsFilledSoThatTheOthersMeanSomething) {
    server().page("/page", spy_ + "<form action='" + url("/post") + "' method=post><input name=name></form>");
    record("/page", url("/post"));
    start();
    window().mnuManualClick.choose();
    fill("/page", [] { return true; });
    EXPECT_THAT(questions_, ElementsAre("Do you want to auto fill-in this form"));
    wait("the value", [this] { return server().count_of("/leak") > 0; });
    EXPECT_THAT(everything_sent(), HasSubstr(secret));
}

class SwappedForm : public HostilePages, public ::testing::WithParamInterface<const char*> {};

TEST_P(SwappedForm, GetsNothingOfWhatTheUserAgreedToForTheFormBefore) {
    server().page("/page", spy_ + "<form action='" + url("/post") +
                               "' method=post><input name=name></form>"
                               "<script>onload = () => setTimeout(() => { const form = document.forms[0];" +
                               GetParam() + "; fetch('/swapped') }, 300)</script>");
    record("/page", url("/post"));
    start();
    fill("/page", [this] { return server().count_of("/swapped") == 1; });
    let_everything_happen();
    EXPECT_THAT(everything_sent(), Not(HasSubstr(secret)));
}

INSTANTIATE_TEST_SUITE_P(
    WaysToSwap, SwappedForm,
    ::testing::Values(
        "form.remove()", "form.action = '/evil'",
        "form.outerHTML = '<form action=/evil method=post><input name=name></form>'",
        "document.body.innerHTML = '<form action=/evil><input name=name></form>'",
        "document.open(); document.write('<form action=/evil><input name=name></form>'); document.close()"));

TEST_F(HostilePages, AnInvisibleFrameOverTheFormGetsNothing) {
    // Its form is to the letter the recorded one.
    server().page("/overlay",
                  spy_ + "<form action='" + url("/post") + "' method=post><input name=name></form>");
    server().page("/page", "<form action='" + url("/post") +
                               "' method=post><input name=name></form><iframe src='" +
                               server().url("/overlay", "127.0.0.2") +
                               "' style='position:fixed;inset:0;opacity:0;z-index:9'></iframe>");
    record("/page", url("/post"));
    start();
    window().mnuManualClick.choose();
    fill("/page", [] { return true; });
    EXPECT_EQ(questions_.size(), 1U);
    let_everything_happen();
    EXPECT_THAT(everything_sent(), Not(HasSubstr(secret)));
}

TEST_F(HostilePages, AnAlertWithoutEndLeavesSubmitWorking) {
    server().page("/page", "<script>for (;;) alert('again')</script>");
    server().page("/next", "<p>next</p>");
    add_site(1, url("/page"), "Alerts");
    add_site(2, url("/next"), "Next");
    start();
    key(Qt::Key_F9);
    wait("the alert", [this] { return BarUser::shown(user().window(), "PageAlert") != nullptr; });
    user().answer_with([&](QDialog& dialog) {
        EXPECT_EQ(dialog.objectName(), "frmNote");
        user().press(dialog, "optSubmit(1)");
        user().press(dialog, "cmdSave");
    });
    key(Qt::Key_F9);
    wait_for_document(url("/next"));
    EXPECT_EQ(BarUser::shown(user().window(), "PageAlert"), nullptr);
}

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
