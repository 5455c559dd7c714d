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
class Downloads : public QObject {
public:
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

    // Downloads that are asked about or under way.
    [[nodiscard]] std::size_t size() const { return downloads_.size(); }

private:
    class Download;
    struct Place {
        QPointer<QWebEnginePage> page;
        QPointer<PageBars> bars;
    };

    // Where the page is shown, or else the window in front; null when no window is left.
    [[nodiscard]] PageBars* place_for(const QWebEnginePage* page) const;
    void ended(const Download& download);

    QString folder_;
    std::vector<Place> places_;
    std::vector<std::unique_ptr<Download>> downloads_;
    int made_ = 0;
};

} // namespace kestrune
