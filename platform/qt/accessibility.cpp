#include "platform/qt/accessibility.h"

#include "platform/qt/tab_panel.h"

#include <QAccessible>
#include <QAccessibleWidget>

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

QAccessibleInterface* make_interface(const QString& /*class_name*/, QObject* object) {
    // Not dynamic_cast: the engine's objects come here, too, and carry no type information to look at.
    // The toolkit's registry owns what is made here; nobody else could delete it.
    // NOLINTBEGIN(cppcoreguidelines-owning-memory)
    if (auto* const container = qobject_cast<ControlContainer*>(object))
        return new AccessibleContainer(container);
    if (auto* const bar = qobject_cast<StatusPanels*>(object))
        return new QAccessibleWidget(bar, QAccessible::StatusBar);
    // NOLINTEND(cppcoreguidelines-owning-memory)
    return nullptr;
}

} // namespace

void hide_from_assistance(QWidget& widget) { widget.setProperty(hidden_property, true); }

void install_accessibility() { QAccessible::installFactory(make_interface); }

} // namespace kestrune
