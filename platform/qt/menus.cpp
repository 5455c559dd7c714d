#include "platform/qt/menus.h"

#include "platform/qt/child_of.h"
#include "platform/qt/qt_text.h"

#include <QAction>
#include <QMenu>
#include <QPointer>

namespace kestrune {
namespace {

void show_state(const MenuItem& item, QAction& action) {
    action.setText(literal(item.Caption.get()));
    action.setEnabled(item.Enabled.get());
    action.setVisible(item.Visible.get());
    if (action.isCheckable())
        action.setChecked(item.Checked.get());
}

QMenu& add_menu(QWidget& parent, MenuItem& title, Bindings& bindings);

void add_item(QMenu& menu, MenuItem& item, Bindings& bindings) {
    if (!item.Items.empty()) {
        menu.addMenu(&add_menu(menu, item, bindings));
        return;
    }
    auto& action = child_of<QAction>(menu);
    action.setObjectName(to_qt(item.Name));
    menu.addAction(&action);
    if (item.Caption == "-") {
        action.setSeparator(true);
        return;
    }
    action.setCheckable(item.IsSwitch);
    if (!item.Shortcut.empty())
        action.setShortcut(QKeySequence(to_qt(item.Shortcut), QKeySequence::PortableText));
    bindings.observe(item, [&item, &action] { show_state(item, action); });
    QObject::connect(
        &action, &QAction::triggered, bindings.context(),
        [&item, shown = QPointer<QAction>(&action), alive = QPointer<QObject>(bindings.context())] {
            item.choose();
            // The toolkit has flipped the mark by itself; the item may have stayed as it was.
            if (alive && shown)
                show_state(item, *shown);
        });
}

QMenu& add_menu(QWidget& parent, MenuItem& title, Bindings& bindings) {
    auto& menu = child_of<QMenu>(parent);
    menu.setObjectName(to_qt(title.Name));
    menu.menuAction()->setObjectName(to_qt(title.Name));
    bindings.observe(title, [&title, &menu] { show_state(title, *menu.menuAction()); });
    for (MenuItem* item : title.Items)
        add_item(menu, *item, bindings);
    return menu;
}

} // namespace

void add_menus(QMenuBar& bar, const std::vector<MenuItem*>& titles, Bindings& bindings) {
    for (MenuItem* title : titles)
        bar.addMenu(&add_menu(bar, *title, bindings));
}

} // namespace kestrune
