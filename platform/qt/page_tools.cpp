#include "platform/qt/page_tools.h"

#include "platform/qt/child_of.h"
#include "platform/qt/file_name.h"
#include "platform/qt/find_bar.h"
#include "platform/qt/page_bars.h"
#include "platform/qt/page_overlay.h"
#include "platform/qt/source_window.h"
#include "platform/qt/stand_above.h"

#include <QAction>
#include <QBoxLayout>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QPushButton>
#include <QSaveFile>
#include <QShortcut>
#include <QStandardPaths>
#include <QWebEngineView>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <utility>

namespace kestrune {
namespace {

constexpr std::array<double, 17> zooms = {0.25, 0.33, 0.5,  0.67, 0.75, 0.8, 0.9, 1.0, 1.1,
                                          1.25, 1.5,  1.75, 2.0,  2.5,  3.0, 4.0, 5.0};

double next_zoom(double now, int step) {
    const auto nearest = std::min_element(zooms.begin(), zooms.end(), [now](double a, double b) {
        return std::abs(a - now) < std::abs(b - now);
    });
    const auto place = std::clamp<std::ptrdiff_t>(nearest - zooms.begin() + step, 0, std::ssize(zooms) - 1);
    return zooms.at(static_cast<std::size_t>(place));
}

QString pdf_name(const QString& title) {
    return clean_file_name((title.trimmed().isEmpty() ? QStringLiteral("page") : title) +
                           QStringLiteral(".pdf"));
}

} // namespace

PageTools::PageTools(QWidget& place, QWebEngineView& view, PageBars& bars)
    : place_(place), view_(view), bars_(bars), find_bar_(&child_of<FindBar>(place, *view.page())),
      overlay_(new PageOverlay(place, *view.page())) {
    overlay_->setParent(this);
    if (auto* const column = qobject_cast<QBoxLayout*>(place.layout()))
        column->addWidget(find_bar_);
    add_key("Ctrl+F", [this] { find(); });
    add_key("F3", [this] { find_bar_->isVisible() ? find_bar_->find(false) : find(); });
    add_key("Shift+F3", [this] { find_bar_->find(true); });
    add_key("Ctrl++", [this] { zoom(1); });
    add_key("Ctrl+=", [this] { zoom(1); });
    add_key("Ctrl+-", [this] { zoom(-1); });
    add_key("Ctrl+0", [this] { zoom(0); });
    add_key("Ctrl+P", [this] { print(); });
    add_key("Ctrl+U", [this] { show_source(); });
    add_key("F6", [this] {
        if (!bars_.focus_next())
            view_.setFocus();
    });
    connect(view.page(), &QWebEnginePage::printRequested, this, [this] {
        if (print_bar_ && !print_bar_->isHidden())
            return;
        PageBar& bar = bars_.add(QStringLiteral("PrintRequest"));
        print_bar_ = &bar;
        bar.set_heading(QStringLiteral("This page wants to be printed"));
        bar.add_answer(QStringLiteral("Print to PDF..."), [this] { print(); });
        bar.add_answer(QStringLiteral("Close"));
    });
}

PageTools::~PageTools() { delete source_.data(); }

void PageTools::add_key(const char* keys, std::function<void()> act) {
    auto& key = child_of<QShortcut>(place_);
    key.setKey(QKeySequence(QString::fromLatin1(keys), QKeySequence::PortableText));
    connect(&key, &QShortcut::activated, this, std::move(act));
}

void PageTools::find() { find_bar_->open(); }

void PageTools::zoom(int steps) {
    const double zoom = steps == 0 ? 1.0 : next_zoom(view_.zoomFactor(), steps);
    view_.setZoomFactor(zoom);
    overlay_->tell(QString::number(std::lround(zoom * 100)) + QStringLiteral(" %"));
}

void PageTools::leaving() { PageBars::remove(print_bar_); }

void PageTools::print() {
    QFileDialog dialog;
    stand_above(dialog, place_);
    dialog.setObjectName(QStringLiteral("PrintFileDialog"));
    dialog.setWindowTitle(QStringLiteral("Print to PDF"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilter(QStringLiteral("PDF files (*.pdf)"));
    dialog.setDefaultSuffix(QStringLiteral("pdf"));
    dialog.setDirectory(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    dialog.selectFile(pdf_name(view_.page()->title()));
    const QPointer<PageTools> self(this);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty() || !self)
        return;
    view_.page()->printToPdf([self, path = dialog.selectedFiles().first()](const QByteArray& pdf) {
        if (self)
            self->write_pdf(path, pdf);
    });
}

void PageTools::write_pdf(const QString& path, const QByteArray& pdf) {
    QSaveFile file(path);
    const QString name = QFileInfo(path).fileName();
    if (pdf.isEmpty())
        tell(name + QStringLiteral(" could not be printed."), {});
    else if (!file.open(QIODevice::WriteOnly) || file.write(pdf) != pdf.size() || !file.commit())
        tell(name + QStringLiteral(" could not be saved."), file.errorString());
    else
        tell(name + QStringLiteral(" is saved."), QFileInfo(path).absolutePath());
}

void PageTools::tell(const QString& heading, const QString& text) {
    bars_.tell(QStringLiteral("PageTold"), heading, text);
}

void PageTools::show_source() {
    const QString title = QStringLiteral("Source of ") + view_.page()->url().toDisplayString();
    view_.page()->toHtml([self = QPointer<PageTools>(this), title](const QString& html) {
        if (!self)
            return;
        delete self->source_.data();
        auto window = std::make_unique<SourceWindow>(title, html);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->resize(self->place_.size());
        self->source_ = window.get();
        window.release()->show();
    });
}

void PageTools::show_menu(QPoint place) {
    QMenu* const menu = view_.createStandardContextMenu();
    menu->setObjectName(QStringLiteral("BrowserMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // Replaced by ours: these would open windows or write files past the program's questions.
    menu->removeAction(view_.page()->action(QWebEnginePage::ViewSource));
    menu->removeAction(view_.page()->action(QWebEnginePage::SavePage));
    if (!menu->isEmpty())
        menu->addSeparator();
    menu->addAction(QStringLiteral("Find in page..."), this, [this] { find(); });
    menu->addAction(QStringLiteral("Print to PDF..."), this, [this] { print(); });
    menu->addAction(QStringLiteral("View source"), this, [this] { show_source(); });
    menu->popup(view_.mapToGlobal(place));
}

} // namespace kestrune
