#include "platform/qt/page_tools.h"
#include "platform/qt/source_window.h"
#include "tests/desktop/comforts_fixture.h"
#include "tests/desktop/dialog_user.h"
#include "tests/desktop/painted.h"
#include "tests/temporary_folder.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QLayout>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRandomGenerator>
#include <QTest>
#include <QWebEnginePage>
#include <QWebEngineView>

namespace kestrune {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;
using namespace std::chrono_literals;

class PageToolsTest : public ComfortsTest {
protected:
    void key(Qt::Key key, Qt::KeyboardModifiers held = Qt::ControlModifier) {
        place_.activateWindow();
        ASSERT_TRUE(wait_until([&] { return place_.isActiveWindow(); }));
        QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : &place_, key,
                        held);
    }
    template <typename Widget = QWidget>
    [[nodiscard]] Widget& part(const char* name) {
        return *place_.findChild<Widget*>(QString::fromLatin1(name));
    }
    static QWidget* source_window() {
        QWidget* window = nullptr;
        EXPECT_TRUE(wait_until([&] {
            for (QWidget* top : QApplication::topLevelWidgets()) {
                if (top->objectName() == "PageSource")
                    window = top;
            }
            return window != nullptr;
        }));
        return window;
    }
    std::string count() { return part<QLabel>("FindCount").text().toStdString(); }
};

TEST_F(PageToolsTest, ctrl_f_finds_text_and_esc_closes_the_bar) {
    open_page("<p>one two one</p>");
    EXPECT_FALSE(part("FindBar").isVisible());
    key(Qt::Key_F);
    ASSERT_TRUE(part("FindBar").isVisible());
    QTest::keyClicks(&part("FindText"), "one");
    EXPECT_TRUE(wait_until([&] { return count() == "1 of 2"; })) << count();
    QTest::keyClick(&part("FindText"), Qt::Key_Return);
    EXPECT_TRUE(wait_until([&] { return count() == "2 of 2"; })) << count();
    QTest::keyClick(&part("FindText"), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_TRUE(wait_until([&] { return count() == "1 of 2"; })) << count();
    QTest::keyClicks(&part("FindText"), "xyz");
    EXPECT_TRUE(wait_until([&] { return count() == "not found"; })) << count();
    QTest::keyClick(&part("FindText"), Qt::Key_Escape);
    EXPECT_FALSE(part("FindBar").isVisible());
}

TEST_F(PageToolsTest, the_page_has_all_the_room_that_bars_do_not_need) {
    open_page("<p>one two one</p><script>alert('words')</script>");
    PageBar* const told = wait_for_bar("PageAlert");
    ASSERT_NE(told, nullptr);
    key(Qt::Key_F);
    const int needed =
        told->layout()->totalHeightForWidth(told->width()) + part("FindBar").sizeHint().height();
    ASSERT_TRUE(wait_until([&] { return browser_->view().height() >= place_.height() - needed; }, 5s))
        << browser_->view().height() << " of " << place_.height() << ", bars need " << needed;
    BarUser::press(*told, "OK");
    QTest::keyClick(&part("FindText"), Qt::Key_Escape);
    EXPECT_TRUE(wait_until([&] { return browser_->view().height() == place_.height(); }));
}

TEST_F(PageToolsTest, zoom_goes_in_steps_and_back_and_stays_for_the_next_page) {
    open_page("<p>text</p>");
    key(Qt::Key_Plus);
    EXPECT_NEAR(browser_->view().zoomFactor(), 1.1, 0.001);
    EXPECT_EQ(part<QLabel>("PageWords").text(), "110 %");
    let_everything_happen();
    EXPECT_NEAR(browser_->view().zoomFactor(), 1.1, 0.001);
    key(Qt::Key_0);
    EXPECT_NEAR(browser_->view().zoomFactor(), 1.0, 0.001);
    for (int i = 0; i < 20; ++i)
        key(Qt::Key_Minus);
    EXPECT_NEAR(browser_->view().zoomFactor(), PageTools::least_zoom, 0.001);
}

TEST_F(PageToolsTest, the_whole_address_of_a_link_is_shown_while_the_mouse_is_over_it) {
    open_page("<body style='margin:0'><a href='/where?it=leads' style='display:block;height:100px'>link</a>");
    QWidget* const page = browser_->view().focusProxy();
    EXPECT_TRUE(wait_until([&] {
        QTest::mouseMove(page, QPoint(20 + QRandomGenerator::global()->bounded(20), 30));
        return part<QLabel>("PageWords").isVisible();
    }));
    EXPECT_EQ(part<QLabel>("PageWords").text().toStdString(), server_.url("/where?it=leads"));
    EXPECT_TRUE(wait_until([&] {
        QTest::mouseMove(page, QPoint(20 + QRandomGenerator::global()->bounded(20), 400));
        return !part<QLabel>("PageWords").isVisible();
    }));
}

TEST_F(PageToolsTest, a_load_under_way_is_seen) {
    server_.never("/picture.png");
    server_.page("/page", "<p>text</p><img src=/picture.png>");
    browser_->Navigate(server_.url("/page"));
    EXPECT_TRUE(wait_until([&] { return part("LoadProgress").isVisible(); }));
    browser_->Stop();
    EXPECT_TRUE(wait_until([&] { return !part("LoadProgress").isVisible(); }));
}

TEST_F(PageToolsTest, the_source_is_shown_as_plain_text) {
    open_page("<p id=here>text</p>");
    key(Qt::Key_U);
    const QWidget* const window = source_window();
    ASSERT_NE(window, nullptr);
    const auto& source = *window->findChild<QPlainTextEdit*>("SourceText");
    EXPECT_THAT(source.toPlainText().toStdString(), HasSubstr("<p id=\"here\">text</p>"));
    EXPECT_TRUE(source.isReadOnly());
    EXPECT_EQ(window->findChild<QLabel*>("SourceNote"), nullptr) << "nothing is left out or changed";
    EXPECT_EQ(probe_.count("new window"), 0);
}

TEST_F(PageToolsTest, the_source_of_one_endless_line_is_shown_in_lines) {
    open_page("<p>" + std::string(3000000, 'x') + "</p>");
    key(Qt::Key_U);
    const QWidget* const window = source_window();
    ASSERT_NE(window, nullptr);
    QString text = window->findChild<QPlainTextEdit*>("SourceText")->toPlainText();
    for (const QString& line : text.split(u'\n'))
        EXPECT_LE(line.size(), SourceWindow::longest_line);
    EXPECT_TRUE(text.remove(u'\n').contains("<p>" + QString(3000000, u'x') + "</p>"));
    EXPECT_EQ(window->findChild<QLabel*>("SourceNote")->text(),
              "Lines of more than 2000 characters are broken.");
}

QStringList lines_of(const SourceWindow& window) {
    return window.findChild<QPlainTextEdit*>("SourceText")->toPlainText().split(u'\n');
}

TEST(SourceWindow, LinesAreBrokenOnlyWhereTheyAreTooLong) {
    const QString longest(SourceWindow::longest_line, u'a');
    EXPECT_EQ(lines_of(SourceWindow("Source", longest + "\nb\n\n" + longest + "cd\ne")),
              QStringList({longest, "b", "", longest, "cd", "e"}));
}

TEST(SourceWindow, LetterOfTwoUnitsIsNotBroken) {
    const QString before(SourceWindow::longest_line - 1, u'a');
    EXPECT_EQ(lines_of(SourceWindow("Source", before + "\U0001F600")),
              QStringList({before, QString("\U0001F600")}));
}

TEST(SourceWindow, EndOfASourceOfTooManyLinesIsLeftOut) {
    const SourceWindow window("Source", QString("\n").repeated(SourceWindow::most_lines) + "end");
    EXPECT_EQ(lines_of(window).size(), SourceWindow::most_lines + 1);
    EXPECT_EQ(lines_of(window).last(), "");
    EXPECT_EQ(window.findChild<QLabel*>("SourceNote")->text(), "Only the beginning of the source is shown.");
}

TEST_F(PageToolsTest, a_page_is_printed_to_a_pdf_file) {
    const TemporaryFolder folder;
    const QString path = QString::fromStdString(folder.path() + "/page.pdf");
    testing_desktop::DialogUser dialogs;
    dialogs.expect("PrintFileDialog", [&](QDialog& dialog) {
        auto& chooser = dynamic_cast<QFileDialog&>(dialog);
        EXPECT_THAT(chooser.selectedFiles().first().toStdString(), testing::EndsWith("/My _ page.pdf"));
        chooser.setDirectory(QString::fromStdString(folder.path()));
        chooser.selectFile("page.pdf");
        QMetaObject::invokeMethod(&chooser, "accept");
    });
    open_page("<title>My : page</title><p>text</p>");
    key(Qt::Key_P);
    EXPECT_NE(wait_for_bar("PageTold"), nullptr);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().startsWith("%PDF"));
}

TEST_F(PageToolsTest, a_page_that_prints_itself_is_asked_about) {
    open_page("<script>onload = () => print()</script>");
    PageBar* const asked = wait_for_bar("PrintRequest");
    ASSERT_NE(asked, nullptr);
    BarUser::press(*asked, "Close");
    EXPECT_EQ(bar("PrintRequest"), nullptr);
}

TEST_F(PageToolsTest, what_is_selected_can_be_copied) {
    QGuiApplication::clipboard()->clear();
    open_page("<p>to be copied</p>");
    browser_->view().triggerPageAction(QWebEnginePage::SelectAll);
    EXPECT_TRUE(wait_until([&] { return browser_->view().hasSelection(); }));
    browser_->view().triggerPageAction(QWebEnginePage::Copy);
    EXPECT_TRUE(wait_until([&] { return QGuiApplication::clipboard()->text() == "to be copied"; }));
}

TEST_F(PageToolsTest, the_browsers_own_menu_offers_the_tools_and_nothing_that_goes_past_the_program) {
    open_page("<body style='margin:0'><p>words");
    ASSERT_TRUE(wait_until_painted(browser_->view()));
    QTest::mouseClick(browser_->view().focusProxy(), Qt::RightButton, {}, QPoint(200, 200));
    ASSERT_TRUE(
        wait_until([] { return qobject_cast<QMenu*>(QApplication::activePopupWidget()) != nullptr; }));
    auto& menu = *qobject_cast<QMenu*>(QApplication::activePopupWidget());
    EXPECT_EQ(menu.objectName(), "BrowserMenu");
    std::vector<std::string> captions;
    for (const QAction* action : menu.actions())
        captions.push_back(action->text().toStdString());
    EXPECT_THAT(captions, Contains("Find in page..."));
    EXPECT_THAT(captions, Contains("Print to PDF..."));
    EXPECT_THAT(captions, Contains("View source"));
    EXPECT_THAT(menu.actions(), Not(Contains(browser_->view().pageAction(QWebEnginePage::SavePage))));
    menu.close();
}

TEST_F(PageToolsTest, the_bars_of_the_page_leave_the_page_its_keys) {
    open_page("<input autofocus>words");
    EXPECT_TRUE(wait_until_painted(browser_->view()));
    QTest::keyClicks(browser_->view().focusProxy(), "typed");
    EXPECT_TRUE(wait_until([&] { return image_of(probe_.last()).inputs.at(0).value == "typed"; }));
}

} // namespace
} // namespace kestrune
