#include "tests/desktop/comforts_fixture.h"

#include <QFile>
#include <QWebEnginePage>
#include <QWebEngineView>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

// What frames and the top frame tell each other, where page code gets hold of it: by document.open() a page
// takes the top frame's listeners away, and adds its own before they are back.
class FrameMessages : public ComfortsTest {
protected:
    static constexpr const char* secret = "topsecret-4711";

    FrameMessages() {
        server_.page("/bank", std::string("<form action=/pay><input name=secret value=") + secret +
                                  "></form><a href=/x>own link</a><script>onmessage = e => "
                                  "e.source.postMessage('echo', '*')</script>");
    }
    // Page code for saying to the server what came to be known.
    static constexpr const char* say =
        "const said = data => fetch('/said?' + encodeURIComponent(data instanceof Uint8Array ? new "
        "TextDecoder().decode(data) : typeof data === 'string' ? data : JSON.stringify(data)));";
    // A page that holds a frame of the bank's and has got hold of the message by which that introduces
    // itself; `then` is page code that has it as `hello`. When the frame has loaded and has answered the
    // page's own messages a few times, the page says so.
    std::string thief(const std::string& then, const std::string& attributes = "") {
        return "<script>setTimeout(() => { document.open();" + std::string(say) +
               "let hello = null; addEventListener('message', e => { if (hello || e.ports.length !== 1) "
               "return;"
               "e.stopImmediatePropagation(); hello = e; " +
               then + "}, true); document.write('<input><iframe id=bank " + attributes + " src=\"" +
               server_.url("/bank", "127.0.0.2") +
               "\"></iframe>'); document.close(); let rounds = 0; const bank = "
               "document.getElementById('bank');"
               "onmessage = e => { if (e.data !== 'echo') return; if (++rounds < 20) "
               "bank.contentWindow.postMessage('', '*'); else fetch('/end') };"
               "bank.onload = () => { said(hello ? 'taken' : 'missed'); if (window.loaded) loaded();"
               "bank.contentWindow.postMessage('', '*') } }, 50)</script>";
    }
    // What the page got to know.
    std::string said() {
        EXPECT_TRUE(wait_until([this] { return server_.count_of("/end") > 0; }));
        std::string all;
        for (const SiteServer::Request& request : server_.requests()) {
            if (request.target.starts_with("/said"))
                all += request.target + "\n";
        }
        EXPECT_THAT(all, HasSubstr("taken")) << "the test is about a message that was taken";
        return all;
    }
};

TEST_F(FrameMessages, who_takes_the_port_of_a_frame_reads_and_orders_nothing_by_it) {
    open_page(thief("said(hello.data); const port = hello.ports[0]; port.onmessage = m => said(m.data);"
                    "window.loaded = () => [{ask: 'image', number: 1, value: {forms: true, labels: true}}, "
                    "hello.data, new Uint8Array(200)].forEach(m => port.postMessage(m))"));
    const std::string all = said();
    EXPECT_THAT(all, Not(HasSubstr(secret)));
    EXPECT_THAT(all, Not(HasSubstr("bank"))) << "not even what the frame is";
    EXPECT_THAT(all, Not(HasSubstr("answer")));
}

class PassedOn : public FrameMessages, public ::testing::WithParamInterface<const char*> {};

TEST_P(PassedOn, messages_of_a_frame_tell_nothing_and_make_nobody_that_frame) {
    const std::string sandbox = GetParam();
    // Another frame of the page's helps: it says to the top frame what the first one said, under its own
    // name.
    server_.page("/helper", "<script>" + std::string(say) +
                                "onmessage = e => { const c = new MessageChannel(), real = e.ports[0];"
                                "c.port1.onmessage = m => { said(m.data); real.postMessage(m.data) };"
                                "real.onmessage = m => { said(m.data); c.port1.postMessage(m.data) };"
                                "top.postMessage(e.data, '*', [c.port2]); fetch('/passed') }</script>");
    const PageDocument page = open_page(
        thief("const f = document.createElement('iframe');" +
                  std::string(sandbox.empty() ? "" : "f.sandbox = 'allow-scripts';") + "f.src = '" +
                  server_.url("/helper", "127.0.0.3") +
                  "'; f.onload = () => f.contentWindow.postMessage(hello.data, '*', [hello.ports[0]]);"
                  "document.body.append(f)",
              sandbox));
    ASSERT_TRUE(wait_until([this] { return server_.count_of("/passed") > 0; }));
    const PageDocument now = image_of(page);
    ASSERT_THAT(now.frames, SizeIs(2));
    if (sandbox.empty()) {
        EXPECT_NE(now.frames[1].url, server_.url("/bank", "127.0.0.2"));
    }
    const std::string all = said();
    EXPECT_THAT(all, Not(HasSubstr(secret)));
    EXPECT_THAT(all, Not(HasSubstr("bank")));
}

INSTANTIATE_TEST_SUITE_P(FramesOfAnOriginAndOfNone, PassedOn, ::testing::Values("", "sandbox=allow-scripts"));

TEST_F(FrameMessages, a_frame_of_no_origin_cannot_pose_as_a_page) {
    const std::string posed = "http://good.example/submit";
    open_page(thief(
        "const token = hello.data.token || 'x', f = document.createElement('iframe'); f.sandbox = "
        "'allow-scripts'; f.srcdoc = `<script>const c = new MessageChannel(); const me = {id: 'forged', url: "
        "'" +
        posed +
        "', origin: 'null'}; c.port1.onmessage = m => c.port1.postMessage({answer: m.data.number, value: "
        "me});"
        "onload = () => { top.postMessage({token: '${token}', ...me}, '*', [c.port2]); "
        "c.port1.postMessage({event: 'complete', url: me.url}) }<\\/script>`; document.body.append(f)"));
    said();
    EXPECT_FALSE(browser_->take_image("forged", everything).has_value());
    EXPECT_EQ(probe_.count("complete " + posed), 0);
}

TEST_F(FrameMessages, honest_frames_are_read_and_written_to_after_the_page_was_opened_anew) {
    server_.page(
        "/page",
        "<script>setTimeout(() => { document.open(); document.write('<a href=/x>new</a><iframe src=\"" +
            server_.url("/bank", "127.0.0.2") + "\"></iframe>'); document.close() }, 50)</script>");
    const PageDocument page = open(server_.url("/page"));
    ASSERT_TRUE(wait_for("complete " + server_.url("/bank", "127.0.0.2")));
    const PageDocument now = image_of(page);
    ASSERT_THAT(link_texts(now), ElementsAre("new"));
    ASSERT_THAT(now.frames, SizeIs(1));
    ASSERT_THAT(now.frames[0].inputs, SizeIs(1));
    browser_->apply({{PageEdit::Kind::value, now.frames[0].inputs[0].ref, "written"}});
    EXPECT_EQ(image_of(page).frames.at(0).inputs.at(0).value, "written");
}

// The sealing itself, against the example of RFC 8439, 2.8.2.
TEST_F(FrameMessages, are_sealed_as_the_standard_says) {
    open_page("<input>");
    QFile file(":/kestrune/page/seal.js");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString script =
        "(() => { const { seal, unseal, Sender, Receiver } = (" +
        QString::fromUtf8(file.readAll()).section("(function", 1).prepend("(function") +
        ")(); const bytes = hex => Uint8Array.from(hex.match(/../g), b => parseInt(b, 16));"
        "const hex = b => Array.from(b, v => v.toString(16).padStart(2, '0')).join('');"
        "const key = Uint8Array.from({length: 32}, (_, i) => 0x80 + i), nonce = "
        "bytes('070000004041424344454647'), shown = bytes('50515253c0c1c2c3c4c5c6c7');"
        "const text = \"Ladies and Gentlemen of the class of '99: If I could offer you only one tip for the "
        "future, sunscreen would be it.\";"
        "const sealed = seal(key, nonce, new TextEncoder().encode(text), shown);"
        "const out = [hex(sealed.tag), hex(sealed.hidden).slice(0, 32)];"
        "out.push(new TextDecoder().decode(unseal(key, nonce, sealed, shown)) === text);"
        "sealed.hidden[3] ^= 1; out.push(unseal(key, nonce, sealed, shown));"
        "const one = '11'.repeat(32), other = '22'.repeat(32), from = new Sender(one), to = new "
        "Receiver(one);"
        "const first = from.seal({n: 1}), second = from.seal({n: 2});"
        "out.push(to.open(second), to.open(new Sender(other).seal(1)), to.open(first).n, to.open(first), "
        "to.open(new Sender(one).seal(1)), to.open(second).n);"
        "return JSON.stringify(out.map(v => v === undefined ? 'refused' : v)) })()";
    std::string result;
    browser_->view().page()->runJavaScript(
        script, [&](const QVariant& answer) { result = answer.toString().toStdString(); });
    EXPECT_TRUE(wait_until([&] { return !result.empty(); }));
    EXPECT_EQ(result, "[\"1ae10b594f09e26a7e902ecbd0600691\",\"d31a8d34648e60db7b86afbc53ef7ec2\",true,null,"
                      "\"refused\",\"refused\",1,\"refused\",\"refused\",2]");
}

} // namespace
} // namespace kestrune
