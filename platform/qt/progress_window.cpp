#include "platform/qt/progress_window.h"

#include "platform/qt/caption_widgets.h"
#include "platform/qt/child_of.h"
#include "platform/qt/qt_text.h"

#include <QCoreApplication>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kestrune {
namespace {

constexpr int least_width = 420; // pixels
constexpr int steps = 1000;      // of the bar, whatever is counted

QString counted(std::int64_t done, std::int64_t total) {
    const QLocale numbers{QLocale::English};
    return total <= 0 ? QString()
                      : numbers.toString(qlonglong{std::min(done, total)}) + QStringLiteral(" of ") +
                            numbers.toString(qlonglong{total});
}

} // namespace

class ProgressWindow::Dialog : public QDialog {
public:
    explicit Dialog(const Texts& texts)
        : bar_(child_of<QProgressBar>(*this)), count_(child_of<QLabel>(*this)) {
        setObjectName(QStringLiteral("Progress"));
        setWindowTitle(QStringLiteral("Kestrune"));
        auto& column = child_of<QVBoxLayout>(*this);
        column.setContentsMargins(18, 18, 18, 14);
        column.setSpacing(10);
        add_text(column, texts.heading, "Heading").setFont(bold());
        add_text(column, texts.text, "Text");
        bar_.setObjectName(QStringLiteral("Bar"));
        bar_.setAccessibleName(to_qt(texts.heading));
        bar_.setTextVisible(false);
        column.addWidget(&bar_);
        count_.setObjectName(QStringLiteral("Count"));
        auto row = std::make_unique<QHBoxLayout>();
        row->addWidget(&count_, 1);
        auto& stop = child_of<CaptionButton>(*this);
        stop.set_caption(texts.stop);
        stop.setObjectName(QStringLiteral("Stop"));
        stop.setMinimumSize(88, 30);
        // Whoever types ahead must not end the program by it.
        stop.setAutoDefault(false);
        connect(&stop, &QPushButton::clicked, this, &Dialog::reject);
        row->addWidget(&stop);
        column.addLayout(row.release());
        setMinimumWidth(least_width);
    }

    void set(std::int64_t done, std::int64_t total) {
        // Without a range the bar only says that something goes on.
        bar_.setRange(0, total > 0 ? steps : 0);
        bar_.setValue(total > 0 ? static_cast<int>(std::min(done, total) * steps / total) : 0);
        count_.setText(counted(done, total));
    }

    [[nodiscard]] bool stopped() const { return stopped_; }
    void reject() override {
        stopped_ = true;
        QDialog::reject();
    }

private:
    [[nodiscard]] QFont bold() const {
        QFont letters = font();
        letters.setBold(true);
        return letters;
    }
    WrappedLabel& add_text(QVBoxLayout& column, const std::string& text, const char* name) {
        auto& label = child_of<WrappedLabel>(*this);
        label.setObjectName(QString::fromLatin1(name));
        label.setText(to_qt(text));
        column.addWidget(&label);
        return label;
    }

    QProgressBar& bar_;
    QLabel& count_;
    bool stopped_ = false;
};

ProgressWindow::ProgressWindow(Texts texts, std::chrono::milliseconds after)
    : texts_(std::move(texts)), after_(after) {
    since_.start();
}

ProgressWindow::~ProgressWindow() = default;

bool ProgressWindow::show(std::int64_t done, std::int64_t total) {
    const bool due = since_.elapsed() >= after_.count();
    if (!dialog_ && due)
        dialog_ = std::make_unique<Dialog>(texts_);
    if (dialog_)
        dialog_->set(done, total);
    if (dialog_ && !dialog_->isVisible() && !dialog_->stopped())
        dialog_->show();
    QCoreApplication::processEvents();
    return !dialog_ || !dialog_->stopped();
}

} // namespace kestrune
