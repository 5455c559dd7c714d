#pragma once

#include <QLabel>
#include <QPushButton>

#include <string_view>

namespace kestrune {

// A push button whose caption is literal text and wraps over as many lines as its height holds; letters get
// smaller before anything is cut off.
class CaptionButton : public QPushButton {
public:
    explicit CaptionButton(QWidget* parent);
    void set_caption(std::string_view caption);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString caption_;
};

// One line of plain text, with blanks for what is no letter, in whatever width there is. Too long a text is
// first squeezed down to `squeeze` of its natural width (1: not at all), then shortened in its middle, where
// an address can best spare it; the whole text is its tool tip then. Where it names a field, the field is
// made its buddy first.
class FittedLabel : public QLabel {
public:
    FittedLabel(double squeeze, QWidget* parent);
    void set_caption(const QString& caption);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QString line() const;
    [[nodiscard]] QString shown(int width) const;
    double squeeze_;
    QString caption_;
};

// Plain text that wraps between words, and inside a word where one is wider than the label (addresses are).
class WrappedLabel : public QLabel {
public:
    explicit WrappedLabel(QWidget* parent);

    // Width at which the text looks best: that of its longest line, but no more than `most` pixels.
    void set_preferred_width(int most);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int most_ = 480;
};

} // namespace kestrune
