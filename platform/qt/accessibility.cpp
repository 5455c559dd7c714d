#include "platform/qt/accessibility.h"

#include "platform/qt/tab_panel.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QLineEdit>

#include <vector>

namespace kestrune {
namespace {

constexpr const char* hidden_property = "kestrune_hidden_from_assistance";

bool is_hidden(QAccessibleInterface* interface) {
    const QObject* const object = interface == nullptr ? nullptr : interface->object();
    return object != nullptr && object->property(hidden_property).toBool();
}

class AccessibleContainer final : public QAccessibleWidget {
public:
    explicit AccessibleContainer(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Grouping) {}

    [[nodiscard]] int childCount() const override { return static_cast<int>(children().size()); }

    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        const auto shown = children();
        return index >= 0 && index < static_cast<int>(shown.size()) ? shown[static_cast<std::size_t>(index)]
                                                                    : nullptr;
    }

    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto shown = children();
        for (std::size_t i = 0; i < shown.size(); ++i) {
            if (child != nullptr && shown[i]->object() == child->object())
                return static_cast<int>(i);
        }
        return -1;
    }

    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
        QAccessibleInterface* const found = QAccessibleWidget::childAt(x, y);
        return is_hidden(found) ? nullptr : found;
    }

private:
    [[nodiscard]] std::vector<QAccessibleInterface*> children() const {
        std::vector<QAccessibleInterface*> shown;
        for (int i = 0; i < QAccessibleWidget::childCount(); ++i) {
            QAccessibleInterface* const child = QAccessibleWidget::child(i);
            if (child != nullptr && !is_hidden(child))
                shown.push_back(child);
        }
        return shown;
    }
};

// The toolkit's own interface of a masked box hides its text, but the events of its changes hold it as it is.
// Bridges pass these on for what has a text interface only, so this one has none.
class AccessibleMaskedBox final : public QAccessibleWidget {
public:
    explicit AccessibleMaskedBox(QLineEdit* box) : QAccessibleWidget(box, QAccessible::EditableText) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Value)
            return QString(box().text().size(), u'*');
        return QAccessibleWidget::text(kind);
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.passwordEdit = true;
        state.readOnly = box().isReadOnly();
        state.editable = !box().isReadOnly();
        return state;
    }

private:
    [[nodiscard]] const QLineEdit& box() const { return *static_cast<const QLineEdit*>(widget()); }
};

void announce(QObject& object, QAccessible::Event what) {
    QAccessibleEvent event(&object, what);
    QAccessible::updateAccessibility(&event);
}

QAccessibleInterface* make_interface(const QString& /*class_name*/, QObject* object) {
    // Not dynamic_cast: the engine's objects come here, too, and carry no type information to look at.
    // The toolkit's registry owns what is made here; nobody else could delete it.
    // NOLINTBEGIN(cppcoreguidelines-owning-memory)
    if (auto* const container = qobject_cast<ControlContainer*>(object))
        return new AccessibleContainer(container);
    if (auto* const bar = qobject_cast<StatusPanels*>(object))
        return new QAccessibleWidget(bar, QAccessible::StatusBar);
    auto* const box = qobject_cast<QLineEdit*>(object);
    if (box != nullptr && box->echoMode() != QLineEdit::Normal)
        return new AccessibleMaskedBox(box);
    // NOLINTEND(cppcoreguidelines-owning-memory)
    return nullptr;
}

} // namespace

void hide_from_assistance(QWidget& widget) { widget.setProperty(hidden_property, true); }

void set_masked(QLineEdit& box, bool masked) {
    const auto mode = masked ? QLineEdit::Password : QLineEdit::Normal;
    if (box.echoMode() == mode)
        return;
    // The toolkit keeps an interface once made; the box needs one of the other kind from now on.
    announce(box, QAccessible::ObjectDestroyed);
    if (QAccessibleInterface* const kept = QAccessible::queryAccessibleInterface(&box))
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(kept));
    box.setEchoMode(mode);
    announce(box, QAccessible::ObjectCreated);
}

void install_accessibility() { QAccessible::installFactory(make_interface); }

} // namespace kestrune
