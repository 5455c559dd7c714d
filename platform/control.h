#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kestrune {

// Something with properties that a view mirrors. Each change of a property calls `Changed` once, after the
// change; assigning an equal value calls nothing. Not movable: properties point back at it.
class Observed {
public:
    Observed() = default;
    virtual ~Observed() = default;
    Observed(const Observed&) = delete;
    Observed& operator=(const Observed&) = delete;
    Observed(Observed&&) = delete;
    Observed& operator=(Observed&&) = delete;

    // Set by the one view of this object, if it has any.
    std::function<void()> Changed;
    // Set by the object's owner to keep other controls in step with this one; called before the view is.
    std::function<void()> Follow;

    void notify() const {
        if (Follow)
            Follow();
        if (Changed)
            Changed();
    }
};

// One property of an Observed object: reads like a value, tells its owner when it changes.
template <typename T>
class Property {
public:
    explicit Property(Observed& owner, T initial = {}) : owner_(owner), value_(std::move(initial)) {}
    ~Property() = default;
    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;
    Property(Property&&) = delete;
    Property& operator=(Property&&) = delete;

    Property& operator=(T value) {
        if (value_ != value) {
            value_ = std::move(value);
            owner_.notify();
        }
        return *this;
    }

    // NOLINTNEXTLINE(google-explicit-constructor): a property is read as its value.
    operator const T&() const { return value_; }
    [[nodiscard]] const T& get() const { return value_; }
    friend bool operator==(const Property& left, const T& right) { return left.value_ == right; }

private:
    Observed& owner_;
    T value_;
};

// What every control of a window has. Geometry is in twips (1/1440 inch; 15 twips are one device-independent
// pixel), relative to the container: the window's inner area, or the frame the control lies in.
class Control : public Observed {
public:
    explicit Control(std::string name) : Name(std::move(name)) {}

    // The control's own name, unique in its window; views use it as the widget's object name.
    const std::string Name;

    // What assistive technology calls the control when it has no caption of its own.
    std::string AccessibleName;

    Property<int> Left{*this};
    Property<int> Top{*this};
    Property<int> Width{*this};
    Property<int> Height{*this};
    Property<bool> Visible{*this, true};
    Property<bool> Enabled{*this, true};

    void place(int left, int top, int width, int height) {
        Left = left;
        Top = top;
        Width = width;
        Height = height;
    }
};

class Button : public Control {
public:
    Button(std::string name, std::string caption)
        : Control(std::move(name)), Caption(*this, std::move(caption)) {}

    Property<std::string> Caption;
    // Key sequence in the portable notation that presses the button, "" for none. A text box that holds the
    // focus keeps a key for which it has a use of its own at that moment.
    std::string Shortcut;
    // What pressing the button does. Views call `press`, never this directly.
    std::function<void()> Click;

    // A press by the user: does nothing while the button is disabled.
    void press() const {
        if (Enabled.get() && Click)
            Click();
    }
};

class Label : public Control {
public:
    Label(std::string name, std::string caption)
        : Control(std::move(name)), Caption(*this, std::move(caption)) {}

    Property<std::string> Caption;
};

class TextBox : public Control {
public:
    explicit TextBox(std::string name, bool multi_line = false)
        : Control(std::move(name)), MultiLine(multi_line) {}

    // UTF-8; what the user types arrives here as it is typed.
    Property<std::string> Text{*this};
    Property<bool> Locked{*this}; // shown, can be selected and copied, not edited
    Property<bool> Masked{*this}; // shown as dots; of a single line only
    const bool MultiLine;
};

// Option buttons of which at most one is selected.
class OptionGroup : public Control {
public:
    OptionGroup(std::string name, std::vector<std::string> captions)
        : Control(std::move(name)), Captions(std::move(captions)) {}

    const std::vector<std::string> Captions;
    Property<int> Selected{*this, -1}; // 0-based; -1 when none is
};

// The place of the embedded browser in its window.
class BrowserPlace : public Control {
public:
    using Control::Control;
};

// A container for other controls, without a caption or border of its own.
class Frame : public Control {
public:
    using Control::Control;
    std::vector<Control*> Controls; // in stacking order, lowest first; owned by the window
};

class StatusBar : public Control {
public:
    using Control::Control;

    struct Panel {
        std::string Text; // UTF-8
        int Width = 0;    // twips
        friend bool operator==(const Panel&, const Panel&) = default;
    };

    // index from 1 to 3, as panels are numbered.
    [[nodiscard]] const std::string& text(int index) const { return panels_.at(at(index)).Text; }
    void set_text(int index, std::string text) {
        auto panel = panels_.at(at(index));
        panel.Text = std::move(text);
        replace(index, std::move(panel));
    }
    [[nodiscard]] int width(int index) const { return panels_.at(at(index)).Width; }
    void set_width(int index, int width) {
        auto panel = panels_.at(at(index));
        panel.Width = width;
        replace(index, std::move(panel));
    }

private:
    static std::size_t at(int index) { return static_cast<std::size_t>(index - 1); }
    void replace(int index, Panel panel) {
        if (panels_.at(at(index)) == panel)
            return;
        panels_.at(at(index)) = std::move(panel);
        notify();
    }
    std::vector<Panel> panels_{3};
};

class Timer : public Observed {
public:
    explicit Timer(std::string name) : Name(std::move(name)) {}

    const std::string Name;
    Property<int> Interval{*this}; // milliseconds
    Property<bool> Enabled{*this};
    // What a tick does. Views call `tick`, which does nothing while the timer is disabled.
    std::function<void()> Tick;

    void tick() const {
        if (Enabled.get() && Tick)
            Tick();
    }
};

} // namespace kestrune
