#include "platform/qt/caption_widgets.h"

#include <gtest/gtest.h>

#include <QWidget>

namespace kestrune {
namespace {

// The status bar shows links and addresses as pages write them.
TEST(FittedLabel, LineEndsControlCharactersAndMarksThatTurnTheWritingAreBlanks) {
    QWidget window;
    FittedLabel label(1.0, &window);
    FittedLabel plain(1.0, &window);
    plain.set_caption("Found Submit Link = 'Submit  exe. a b'");
    label.set_caption(QString::fromUtf8("Found Submit Link = 'Submit\r\nexe.\u202Ea\ab'"));
    label.resize(600, 30);
    plain.resize(600, 30);
    EXPECT_EQ(label.grab().toImage(), plain.grab().toImage());
}

} // namespace
} // namespace kestrune
