#include "platform/qt/file_chooser.h"
#include "tests/desktop/dialog_user.h"

#include <gtest/gtest.h>

#include <QFileDialog>
#include <QMetaObject>

namespace kestrune {
namespace {

// What the dialog offers as the accepted files of a field with these types.
QString accepted(const QStringList& types) {
    QWidget page;
    page.show();
    testing_desktop::DialogUser user;
    QString filter;
    user.expect("UploadFileDialog", [&filter](QDialog& dialog) {
        const QStringList filters = dynamic_cast<QFileDialog&>(dialog).nameFilters();
        EXPECT_EQ(filters.last(), "All files (*)");
        filter = filters.first();
        QMetaObject::invokeMethod(&dialog, "reject");
    });
    EXPECT_TRUE(choose_files(page, QWebEnginePage::FileSelectOpen, types).isEmpty());
    EXPECT_TRUE(user.done());
    return filter;
}

TEST(FileChooser, EndingsAndTypesOfAFieldAreOffered) {
    EXPECT_EQ(accepted({".zip", "image/png"}), "Accepted files (*.zip *.png)");
    EXPECT_EQ(accepted({}), "All files (*)");
}

TEST(FileChooser, OfEndingsWithoutEndTheFirstFiftyAreTaken) {
    QStringList types;
    QStringList first;
    for (int i = 0; i < 200000; ++i)
        types << QStringLiteral(".e%1").arg(i);
    for (int i = 0; i < 50; ++i)
        first << QStringLiteral("*.e%1").arg(i);
    EXPECT_EQ(accepted(types), "Accepted files (" + first.join(u' ') + ")");
}

TEST(FileChooser, EndingOfMoreThanHundredCharactersIsPassedOver) {
    const QString longest = u'.' + QString(99, u'a');
    EXPECT_EQ(accepted({u'.' + QString(100, u'b'), longest}), "Accepted files (*" + longest + ")");
}

} // namespace
} // namespace kestrune
