#include "platform/qt/downloads.h"

#include "platform/diagnostics.h"
#include "platform/qt/file_name.h"
#include "platform/qt/shown_words.h"
#include "platform/qt/stand_above.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QStandardPaths>
#include <QTimer>
#include <QWebEngineDownloadRequest>
#include <QWebEnginePage>

#include <algorithm>
#include <utility>

namespace kestrune {
namespace {

constexpr std::size_t most_downloads = 20; // at a time; a page may ask without end
constexpr int progress_steps = 1000;
constexpr std::chrono::milliseconds progress_time{500};

QString size_words(qint64 bytes) { return QLocale::c().formattedDataSize(bytes); }

qint64 bytes_in(const QString& folder) {
    qint64 bytes = 0;
    for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files | QDir::Hidden))
        bytes += file.size();
    return bytes;
}

// The path, or the next one like it that nothing has: "tool (2).zip".
QString free_path(const QString& path) {
    const QFileInfo wanted(path);
    const QString ending = wanted.suffix().isEmpty() ? QString() : u'.' + wanted.suffix();
    QString free = path;
    for (int number = 2; QFileInfo::exists(free); ++number)
        free =
            wanted.path() + u'/' + wanted.completeBaseName() + QStringLiteral(" (%1)").arg(number) + ending;
    return free;
}

QString content_name() { return QStringLiteral("content"); }

} // namespace

class Downloads::Download : public QObject {
public:
    Download(Downloads& owner, QWebEngineDownloadRequest& item, QString folder);
    ~Download() override;
    Download(const Download&) = delete;
    Download& operator=(const Download&) = delete;
    Download(Download&&) = delete;
    Download& operator=(Download&&) = delete;

    [[nodiscard]] bool unanswered() const { return target_.isEmpty(); }
    [[nodiscard]] bool being_chosen() const { return choosing_; }
    [[nodiscard]] bool offered_by(const QWebEnginePage* page) const { return page_ == page; }
    // Bytes that may come in before the user has answered.
    [[nodiscard]] qint64 unasked() const { return unanswered() ? unasked_ : 0; }
    // A broken connection is taken up again by the engine, as a request of its own.
    [[nodiscard]] bool goes_on_as(const QWebEngineDownloadRequest& item) const {
        return item.id() == id_ && end_heading_.isEmpty();
    }
    void take(QWebEngineDownloadRequest& item);

private:
    using State = QWebEngineDownloadRequest::DownloadState;

    void show();
    PageBar& new_bar(const QString& name);
    void choose_place();
    void let_in();
    void follow();
    void finish();
    void tell_end(const QString& heading, const QString& text);
    void refuse();
    void ended();
    void remove_part() const { QDir(folder_).removeRecursively(); }

    Downloads& owner_;
    quint32 id_;
    QPointer<QWebEngineDownloadRequest> item_;
    QPointer<QWebEnginePage> page_; // the item's own pointer dangles once the page is gone
    QString folder_;                // of its own
    QString name_;
    QString from_;   // host
    QString target_; // "" while the user has not chosen
    bool choosing_ = false;
    bool replaces_ = false; // what was there when the user chose it
    qint64 unasked_ = 0;
    QString end_heading_; // set once it is over
    QString end_text_;
    QPointer<PageBar> bar_;
    QTimer tick_;
};

Downloads::Download::Download(Downloads& owner, QWebEngineDownloadRequest& item, QString folder)
    : owner_(owner), id_(item.id()), page_(item.page()), folder_(std::move(folder)),
      name_(clean_file_name(item.suggestedFileName())), from_(shown_host(item.url())) {
    QDir().mkpath(folder_);
    tick_.callOnTimeout([this] { follow(); });
    take(item);
    show();
}

void Downloads::Download::take(QWebEngineDownloadRequest& item) {
    if (item_)
        item_->disconnect(this);
    item_ = &item;
    item.setDownloadDirectory(folder_);
    item.setDownloadFileName(content_name());
    item.accept();
    // One that could be taken up again counts as interrupted only, not as finished.
    connect(&item, &QWebEngineDownloadRequest::stateChanged, this, [this] { finish(); });
    connect(&item, &QWebEngineDownloadRequest::isFinishedChanged, this, [this] { finish(); });
    // Not from inside the engine's own call: it would end that one as if it had not been paused.
    for (const auto change :
         {&QWebEngineDownloadRequest::totalBytesChanged, &QWebEngineDownloadRequest::receivedBytesChanged})
        connect(
            &item, change, this, [this] { let_in(); }, Qt::QueuedConnection);
    connect(&item, &QWebEngineDownloadRequest::receivedBytesChanged, this, [this] { follow(); });
    connect(&item, &QWebEngineDownloadRequest::totalBytesChanged, this, [this] { follow(); });
    let_in();
}

Downloads::Download::~Download() {
    if (item_ && !item_->isFinished())
        item_->cancel();
    PageBars::remove(bar_);
    remove_part();
}

PageBar& Downloads::Download::new_bar(const QString& name) {
    PageBars::remove(bar_);
    PageBar& bar = owner_.place_for(page_)->add(name);
    bar_ = &bar;
    // Its window may close; then another one shows it.
    connect(&bar, &QObject::destroyed, this, [this, gone = &bar] {
        if (bar_.isNull() || bar_ == gone)
            QMetaObject::invokeMethod(
                this, [this] { show(); }, Qt::QueuedConnection);
    });
    return bar;
}

void Downloads::Download::show() {
    if (bar_ || owner_.place_for(nullptr) == nullptr)
        return;
    if (!end_heading_.isEmpty()) {
        tell_end(end_heading_, end_text_);
        return;
    }
    if (!item_) {
        ended();
        return;
    }
    if (target_.isEmpty()) {
        PageBar& bar = new_bar(QStringLiteral("Download"));
        bar.set_heading(from_ + QStringLiteral(" offers a file:"));
        bar.set_text(name_);
        bar.add_button(QStringLiteral("Save..."), [this] { choose_place(); });
        bar.add_button(QStringLiteral("Do not save"), [this] { refuse(); });
        follow();
        return;
    }
    PageBar& bar = new_bar(QStringLiteral("DownloadProgress"));
    bar.set_heading(QStringLiteral("Saving ") + QFileInfo(target_).fileName());
    bar.add_progress().setRange(0, item_->totalBytes() > 0 ? progress_steps : 0);
    bar.add_button(QStringLiteral("Cancel"), [this] { refuse(); });
    tick_.start(progress_time);
    follow();
}

void Downloads::Download::choose_place() {
    QFileDialog dialog;
    stand_above(dialog, *bar_);
    dialog.setObjectName(QStringLiteral("SaveFileDialog"));
    dialog.setWindowTitle(QStringLiteral("Save ") + name_);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDirectory(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    dialog.selectFile(name_);
    const QPointer<Download> self(this);
    choosing_ = true;
    const bool chosen = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
    if (!self)
        return;
    choosing_ = false;
    if (!chosen)
        return;
    target_ = dialog.selectedFiles().first();
    replaces_ = QFileInfo::exists(target_);
    let_in();
    PageBars::remove(bar_);
    bar_.clear();
    show();
    finish();
}

// Whether it is small is known only after the engine has begun with it. A file that is sent packed grows
// beyond the size that was announced.
void Downloads::Download::let_in() {
    if (!item_ || item_->isFinished())
        return;
    const qint64 whole = item_->totalBytes();
    const bool small = whole > 0 && whole <= most_unasked && item_->receivedBytes() <= whole &&
                       owner_.let_in_unasked() - unasked() + whole <= most_unasked_together;
    unasked_ = small ? whole : 0;
    if (!unanswered() || small)
        item_->resume();
    else
        item_->pause();
}

void Downloads::Download::follow() {
    if (!bar_ || !item_ || !end_heading_.isEmpty())
        return;
    const qint64 whole = item_->totalBytes();
    if (target_.isEmpty()) {
        // Known only once it comes in.
        if (whole > 0)
            bar_->set_text(name_ + QStringLiteral(", ") + size_words(whole));
        return;
    }
    // The engine may say nothing of what came in right after a pause.
    const qint64 here = std::max(item_->receivedBytes(), bytes_in(folder_));
    if (auto* const progress = bar_->findChild<QProgressBar*>(); progress != nullptr && whole > 0)
        progress->setValue(static_cast<int>(here * progress_steps / whole));
    bar_->set_text(whole > 0 ? size_words(here) + QStringLiteral(" of ") + size_words(whole)
                             : size_words(here));
}

// It is over, or the user has chosen a place.
void Downloads::Download::finish() {
    if (!item_ || !end_heading_.isEmpty())
        return;
    if (!item_->isFinished() && item_->state() != State::DownloadInterrupted)
        return;
    if (item_->state() == State::DownloadCancelled) {
        ended();
        return;
    }
    if (item_->state() == State::DownloadInterrupted) {
        const QString why = item_->interruptReasonString();
        remove_part();
        tell_end(name_ + QStringLiteral(" could not be saved."), why);
        return;
    }
    if (target_.isEmpty())
        return;
    if (!replaces_)
        target_ = free_path(target_);
    const QString problem = move_into_place(folder_ + u'/' + item_->downloadFileName(), target_);
    if (problem.isEmpty())
        tell_end(QFileInfo(target_).fileName() + QStringLiteral(" is saved."),
                 QFileInfo(target_).absolutePath());
    else
        tell_end(QFileInfo(target_).fileName() + QStringLiteral(" could not be saved."), problem);
}

void Downloads::Download::tell_end(const QString& heading, const QString& text) {
    tick_.stop();
    end_heading_ = heading;
    end_text_ = text;
    if (owner_.place_for(nullptr) == nullptr) {
        ended();
        return;
    }
    PageBar& bar = new_bar(QStringLiteral("DownloadEnd"));
    bar.set_heading(heading);
    bar.set_text(text);
    bar.add_button(QStringLiteral("OK"), [this] { ended(); });
}

void Downloads::Download::refuse() {
    if (item_ && !item_->isFinished())
        item_->cancel(); // comes back as a change of its state
    else
        ended();
}

void Downloads::Download::ended() {
    PageBars::remove(bar_);
    QMetaObject::invokeMethod(
        this, [this] { owner_.ended(*this); }, Qt::QueuedConnection);
}

Downloads::Downloads(QString folder) : folder_(std::move(folder)) {}

Downloads::~Downloads() = default;

void Downloads::add_place(QWebEnginePage& page, PageBars& bars) {
    std::erase_if(places_, [](const Place& place) { return place.bars.isNull(); });
    places_.push_back({&page, &bars});
}

PageBars* Downloads::place_for(const QWebEnginePage* page) const {
    PageBars* front = nullptr;
    for (const Place& place : places_) {
        if (place.bars.isNull())
            continue;
        if (page != nullptr && place.page == page)
            return place.bars;
        if (front == nullptr || place.bars->window()->isVisible())
            front = place.bars;
    }
    return front;
}

void Downloads::requested(QWebEngineDownloadRequest& item) {
    const auto known = std::find_if(downloads_.begin(), downloads_.end(),
                                    [&item](const auto& download) { return download->goes_on_as(item); });
    if (known != downloads_.end()) {
        (*known)->take(item);
        return;
    }
    PageBars* const bars = place_for(item.page());
    if (bars == nullptr) {
        diagnostics::report("download refused", item.url().toString().toStdString());
        item.cancel();
    } else if (downloads_.size() >= most_downloads) {
        refuse(item, *bars, QStringLiteral("There are %1 downloads already.").arg(most_downloads));
    } else if (offers_of(item.page()) >= most_offers) {
        refuse(item, *bars,
               QStringLiteral("%1 offers of this page wait for your answer already.").arg(most_offers));
    } else {
        downloads_.push_back(
            std::make_unique<Download>(*this, item, folder_ + u'/' + QString::number(++made_)));
    }
}

void Downloads::refuse(QWebEngineDownloadRequest& item, PageBars& bars, const QString& why) {
    diagnostics::report("download refused", item.url().toString().toStdString());
    item.cancel();
    const auto place = std::find_if(places_.begin(), places_.end(),
                                    [&bars](const Place& candidate) { return candidate.bars == &bars; });
    if (!place->refusals || place->refusals->isHidden()) {
        place->refusals = &bars.tell(QStringLiteral("DownloadsRefused"), {}, {});
        place->refused = 0;
    }
    ++place->refused;
    place->refusals->set_heading(place->refused == 1
                                     ? QStringLiteral("Another file was refused.")
                                     : QStringLiteral("%1 more files were refused.").arg(place->refused));
    place->refusals->set_text(why);
}

void Downloads::page_left(const QWebEnginePage& page) {
    std::erase_if(downloads_, [&page](const auto& download) {
        return download->offered_by(&page) && download->unanswered() && !download->being_chosen();
    });
    for (const Place& place : places_) {
        if (place.page == &page)
            PageBars::remove(place.refusals);
    }
}

std::size_t Downloads::offers_of(const QWebEnginePage* page) const {
    return static_cast<std::size_t>(std::ranges::count_if(downloads_, [page](const auto& download) {
        return download->unanswered() && download->offered_by(page);
    }));
}

qint64 Downloads::let_in_unasked() const {
    qint64 bytes = 0;
    for (const auto& download : downloads_)
        bytes += download->unasked();
    return bytes;
}

void Downloads::ended(const Download& download) {
    std::erase_if(downloads_, [&](const auto& candidate) { return candidate.get() == &download; });
}

} // namespace kestrune
