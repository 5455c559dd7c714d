#pragma once

#include "platform/qt/page_bars.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>
#include <vector>

class QWebEngineDownloadRequest;
class QWebEnginePage;

namespace kestrune {

// The downloads of one profile. Each is asked about and shown in the place of the page that it came from, and
// moves to another window when that one closes. Until it is complete a file lies in a folder of the program's
// own; the name that the user chose never leads to a part of it.
//
// Nobody has agreed to a file that is only offered: its first bytes come in when it is known to be small, and
// otherwise none do until a place is chosen. A page may have three offers waiting; what it offers beyond
// them is refused, and the user told.
class Downloads : public QObject {
public:
    static constexpr std::size_t most_offers = 3;   // of one page, unanswered
    static constexpr qint64 most_unasked = 4 << 20; // bytes of a file that is only offered
    static constexpr qint64 most_unasked_together = 8 << 20;

    // `folder` is there and holds nothing else.
    explicit Downloads(QString folder);
    ~Downloads() override;
    Downloads(const Downloads&) = delete;
    Downloads& operator=(const Downloads&) = delete;
    Downloads(Downloads&&) = delete;
    Downloads& operator=(Downloads&&) = delete;

    // Where downloads of the page are shown.
    void add_place(QWebEnginePage& page, PageBars& bars);

    void requested(QWebEngineDownloadRequest& item);

    // The user or the program has left the page for another host: what it offers is taken back.
    void page_left(const QWebEnginePage& page);

    // Downloads that are asked about or under way.
    [[nodiscard]] std::size_t size() const { return downloads_.size(); }

private:
    class Download;
    struct Place {
        QPointer<QWebEnginePage> page;
        QPointer<PageBars> bars;
        QPointer<PageBar> refusals = {}; // tells of what was refused
        int refused = 0;                 // that it tells of
    };

    // Where the page is shown, or else the window in front; null when no window is left.
    [[nodiscard]] PageBars* place_for(const QWebEnginePage* page) const;
    void refuse(QWebEngineDownloadRequest& item, PageBars& bars, const QString& why);
    [[nodiscard]] std::size_t offers_of(const QWebEnginePage* page) const;
    [[nodiscard]] qint64 let_in_unasked() const; // bytes
    void ended(const Download& download);

    QString folder_;
    std::vector<Place> places_;
    std::vector<std::unique_ptr<Download>> downloads_;
    int made_ = 0;
};

} // namespace kestrune
